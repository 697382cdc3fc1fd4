// What the document says of itself, for hosts.
#include "engines/mupdf/Document.h"
#include "engines/mupdf/facts/Attachments.h"
#include "engines/mupdf/facts/Labels.h"
#include "engines/mupdf/facts/Outline.h"
#include "engines/mupdf/facts/Properties.h"

namespace velko::engines::mupdf {

std::vector<pdf::OutlineEntry> Document::GetOutline() {
    const auto pState = LoadedState();
    const Lock lock(m_lock);
    const std::shared_ptr<OpenedFile> pFile = UsableFile();
    return ReadOutline(*pFile, pState->table.Count(),
                       [&](std::int32_t nPage) { return PageTop(*pFile, *pState, nPage); });
}

pdf::PageLabels Document::GetPageLabels() {
    LoadedState();
    const Lock lock(m_lock);
    return ReadPageLabels(*UsableFile());
}

pdf::DocumentProperties Document::GetProperties() {
    LoadedState();
    const Lock lock(m_lock);
    return ReadProperties(*UsableFile());
}

std::vector<pdf::FontFact> Document::GetFonts(std::int32_t nPageIndex) {
    CheckPage(*LoadedState(), nPageIndex);
    const Lock lock(m_lock);
    return ReadFonts(*UsableFile(), nPageIndex);
}

std::vector<pdf::AttachedFile> Document::GetAttachedFiles() {
    LoadedState();
    const Lock lock(m_lock);
    return ReadAttachedFiles(*UsableFile());
}

std::vector<std::uint8_t> Document::LoadAttachedFile(std::int32_t nFile) {
    LoadedState();
    const Lock lock(m_lock);
    return ReadAttachedBytes(*UsableFile(), nFile);
}

}
