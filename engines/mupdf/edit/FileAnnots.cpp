#include "engines/mupdf/edit/FileAnnots.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "engines/mupdf/LenientUse.h"
#include "engines/mupdf/PageTable.h"
#include "engines/mupdf/edit/AnnotKinds.h"
#include "engines/mupdf/edit/AnnotReading.h"

namespace velko::engines::mupdf {

namespace {

// Below all object numbers; places beyond it fall together, which only hides them.
pdf::AnnotId IdOfPlace(std::int32_t nPage, int nPlace) {
    constexpr unsigned kPlaceBits = 24U;
    return -((pdf::AnnotId{nPage} + 1) << kPlaceBits) - nPlace;
}

// May throw as the library does.
void ReadEntry(fz_context* ctx, pdf_obj* pEntry, pdf::AnnotId nIdOfPlace,
               PageAnnots::Entry& entry) {
    if (pEntry != nullptr) {
        entry.object.Out() = pdf_deep_copy_obj(ctx, pEntry); // a reference stays one
    }
    if (pdf_is_dict(ctx, pEntry) == 0) {
        return;
    }
    entry.nId = pdf_is_indirect(ctx, pEntry) != 0 ? pdf_to_num(ctx, pEntry) : nIdOfPlace;
    entry.nKind = KindOf(pdf_dict_get_name(ctx, pEntry, PDF_NAME(Subtype)));
    entry.nPopup = pdf_to_num(ctx, pdf_dict_get(ctx, pEntry, PDF_NAME(Popup)));
}

// A popup goes and comes with the annotation that it belongs to.
void FindOwners(std::vector<PageAnnots::Entry>& entries) {
    std::unordered_map<pdf::AnnotId, std::int32_t> owners; // by the popup's number
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (entries[i].nPopup != 0 && entries[i].nPopup != entries[i].nId) {
            owners.emplace(entries[i].nPopup, static_cast<std::int32_t>(i));
        }
    }
    for (PageAnnots::Entry& entry : entries) {
        if (const auto it = owners.find(entry.nId); it != owners.end()) {
            entry.nOwner = it->second;
        }
    }
}

}

PageAnnots::Entry* PageAnnots::Find(pdf::AnnotId nId) {
    const auto it = std::find_if(entries.begin(), entries.end(),
                                 [nId](const Entry& entry) { return entry.nId == nId; });
    return nId == 0 || it == entries.end() ? nullptr : &*it;
}

bool PageAnnots::IsShown(const Entry& entry) const {
    return !entry.bTakenOut &&
           (entry.nOwner < 0 || !entries[static_cast<std::size_t>(entry.nOwner)].bTakenOut);
}

PageAnnots FileAnnots::Read(std::int32_t nPage) {
    fz_context* const ctx = ThreadContext();
    PageAnnots page;
    ObjectHandle pageObject;
    int nEntries = 0;
    m_file.Use([&] {
        page.nRotation = ReadPageFacts(ctx, m_file, nPage).nRotation;
        pageObject.Out() = m_file.LoadPageObject(ctx, nPage);
        page.bIsPage = pdf_is_dict(ctx, pageObject.Get()) != 0;
        nEntries = pdf_array_len(ctx, pdf_dict_get(ctx, pageObject.Get(), PDF_NAME(Annots)));
    });
    page.entries.resize(static_cast<std::size_t>(nEntries));
    for (int i = 0; i < nEntries; ++i) {
        PageAnnots::Entry& entry = page.entries[static_cast<std::size_t>(i)];
        UseLeniently(m_file, [&] {
            pdf_obj* const pList = pdf_dict_get(ctx, pageObject.Get(), PDF_NAME(Annots));
            ReadEntry(ctx, pdf_array_get(ctx, pList, i), IdOfPlace(nPage, i), entry);
        });
    }
    FindOwners(page.entries);
    return page;
}

PageAnnots& FileAnnots::Edited(std::int32_t nPage) {
    const auto it = m_pages.find(nPage);
    return it != m_pages.end() ? it->second : m_pages.emplace(nPage, Read(nPage)).first->second;
}

std::vector<AnnotEntry> FileAnnots::List(std::int32_t nPage) {
    const auto it = m_pages.find(nPage);
    const PageAnnots read = it == m_pages.end() ? Read(nPage) : PageAnnots();
    const PageAnnots& page = it == m_pages.end() ? read : it->second;
    std::vector<AnnotEntry> entries;
    for (const PageAnnots::Entry& entry : page.entries) {
        if (page.IsShown(entry)) {
            entries.push_back(entry);
        }
    }
    return entries;
}

std::vector<pdf::ListedAnnot> FileAnnots::Describe(std::int32_t nPage) {
    const auto it = m_pages.find(nPage);
    const PageAnnots read = it == m_pages.end() ? Read(nPage) : PageAnnots();
    const PageAnnots& page = it == m_pages.end() ? read : it->second;
    std::vector<pdf::ListedAnnot> annots;
    for (const PageAnnots::Entry& entry : page.entries) {
        if (entry.nId != 0 && page.IsShown(entry)) {
            annots.push_back(
                {entry.nId, ReadAnnotRecord(m_file, entry.object.Get(), page.nRotation)});
        }
    }
    return annots;
}

const FileAnnots::Original& FileAnnots::OriginalOf(const PageAnnots& page,
                                                   const PageAnnots::Entry& entry) {
    const auto it = m_originals.find(entry.nId);
    if (it != m_originals.end()) {
        return it->second;
    }
    fz_context* const ctx = ThreadContext();
    Original original;
    original.record = ReadAnnotRecord(m_file, entry.object.Get(), page.nRotation);
    m_file.Use([&] {
        original.dictionary.Out() =
            pdf_deep_copy_obj(ctx, pdf_resolve_indirect_chain(ctx, entry.object.Get()));
    });
    return m_originals.emplace(entry.nId, std::move(original)).first->second;
}

}
