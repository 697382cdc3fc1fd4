#include <utility>

#include "engines/mupdf/Document.h"
#include "engines/mupdf/PageCache.h"
#include "engines/mupdf/edit/AnnotKinds.h"
#include "engines/mupdf/edit/ApplyEdit.h"
#include "engines/mupdf/edit/FileAnnots.h"

namespace velko::engines::mupdf {

using common::EngineException;
using common::ErrorCode;
using pdf::AnnotId;
using pdf::AnnotRecord;

std::vector<pdf::ListedAnnot> Document::ListAnnots(std::int32_t nPageIndex) {
    FactsOf(nPageIndex); // raises for a page that there is not
    const Lock lock(m_lock);
    return UsableFile()->Annots().Describe(nPageIndex);
}

AnnotId Document::AddAnnot(std::int32_t nPageIndex, const AnnotRecord& record) {
    if (!CanBeMade(record.nType)) {
        throw EngineException(ErrorCode::e_ErrUnsupported,
                              "annotations of this kind cannot be made");
    }
    AnnotId nId = 0;
    {
        const Lock lock(m_stateLock);
        nId = m_edits.NewId();
    }
    CarryOut({AnnotEdit::Kind::Add, nPageIndex, nId, record});
    return nId;
}

void Document::ChangeAnnot(std::int32_t nPageIndex, AnnotId nId, const AnnotRecord& record) {
    CarryOut({AnnotEdit::Kind::Change, nPageIndex, nId, record});
}

void Document::RemoveAnnot(std::int32_t nPageIndex, AnnotId nId) {
    CarryOut({AnnotEdit::Kind::Remove, nPageIndex, nId, {}});
}

void Document::RestoreAnnot(std::int32_t nPageIndex, AnnotId nId) {
    CarryOut({AnnotEdit::Kind::Restore, nPageIndex, nId, {}});
}

std::uint64_t Document::Revision() const {
    const Lock lock(m_stateLock);
    return m_nRevision;
}

EditLog Document::Edits() const {
    const Lock lock(m_stateLock);
    return m_edits;
}

// On the file that is shown, then for good in the list: an edit that fails is in neither.
void Document::CarryOut(AnnotEdit edit) {
    const std::int32_t nPage = edit.nPage;
    const AnnotId nId = edit.nId;
    FactsOf(nPage); // the table knows it from here on
    const Lock lock(m_lock);
    const std::shared_ptr<OpenedFile> pFile = UsableFile();
    const EditOutcome outcome = ApplyEdit(*pFile, edit);
    try {
        Keep(std::move(edit), outcome.bIsOriginal);
    } catch (...) {
        pFile->MarkDamaged();
        throw;
    }
    LoadedState()->table.RenewAnnots(nPage, outcome.nAnnots, ++m_nGeneration);
    PageCache::Instance().DropWithAnnots(m_nKey, nPage);
    PageCache::Instance().DropOfKind(m_nKey, PageCache::Kind::Annots, [nId](const CacheItem& item) {
        return static_cast<const Drawing&>(item).PartOf(nId).has_value(); // of two pages
    });
}

void Document::Keep(AnnotEdit edit, bool bIsOriginal) {
    const Lock lock(m_stateLock);
    if (bIsOriginal) {
        m_edits.ForgetChange(edit.nId);
    } else {
        m_edits.Append(std::move(edit));
    }
    ++m_nRevision;
}

}
