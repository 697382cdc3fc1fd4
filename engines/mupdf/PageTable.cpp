#include "engines/mupdf/PageTable.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace velko::engines::mupdf {

namespace {

using Lock = concurrency::critical_section::scoped_lock;

constexpr float kMaxSide = 14400.0F;
constexpr float kMinSide = 1.0F;

// A larger extent than any real page; sums and products of such stay finite.
constexpr float kAbsurdSide = 1.0E9F;

constexpr fz_rect kLetter = {0.0F, 0.0F, 612.0F, 792.0F};

bool IsUsable(const fz_rect& rc) {
    for (const float fSide : {rc.x0, rc.y0, rc.x1, rc.y1}) {
        if (!std::isfinite(fSide) || std::abs(fSide) > kAbsurdSide) {
            return false;
        }
    }
    return rc.x1 > rc.x0 && rc.y1 > rc.y0;
}

// The turn that a page's matrix carries: where the page's upward axis points.
std::int32_t TurnOf(const fz_matrix& m) {
    if (std::abs(m.d) >= std::abs(m.c)) {
        return m.d < 0.0F ? 0 : 2;
    }
    return m.c > 0.0F ? 1 : 3;
}

// Brings a size into the limits without changing its proportions, as far as
// both sides allow it.
void FitSize(float& fWidth, float& fHeight) {
    const float fShrink = std::min(1.0F, kMaxSide / std::max(fWidth, fHeight));
    const float fGrow = std::max(1.0F, kMinSide / (std::min(fWidth, fHeight) * fShrink));
    fWidth = std::clamp(fWidth * fShrink * fGrow, kMinSide, kMaxSide);
    fHeight = std::clamp(fHeight * fShrink * fGrow, kMinSide, kMaxSide);
}

PageFacts MakeFacts(const fz_rect& rcBox, const fz_matrix& mList, std::int32_t nAnnots) {
    PageFacts facts;
    facts.rcBox = {rcBox.x0, rcBox.y0, rcBox.x1, rcBox.y1};
    facts.nRotation = TurnOf(mList);
    facts.nAnnots = nAnnots;
    facts.mListFromPage = mList;
    const fz_rect rcPage = fz_transform_rect(rcBox, mList);
    facts.fWidth = rcPage.x1 - rcPage.x0;
    facts.fHeight = rcPage.y1 - rcPage.y0;
    if (!std::isfinite(facts.fWidth) || !std::isfinite(facts.fHeight) || facts.fWidth <= 0.0F ||
        facts.fHeight <= 0.0F) {
        facts.fWidth = rcBox.x1 - rcBox.x0;
        facts.fHeight = rcBox.y1 - rcBox.y0;
    }
    FitSize(facts.fWidth, facts.fHeight);
    return facts;
}

// Crop box within the media box; a crop box that leaves nothing is ignored. The
// library's own box is not the same for odd files.
fz_rect ReadBox(fz_context* ctx, pdf_obj* pPage) {
    const fz_rect rcMedia =
        pdf_to_rect(ctx, pdf_dict_get_inheritable(ctx, pPage, PDF_NAME(MediaBox)));
    const fz_rect rcCrop =
        pdf_to_rect(ctx, pdf_dict_get_inheritable(ctx, pPage, PDF_NAME(CropBox)));
    const fz_rect rcPaper = IsUsable(rcMedia) ? rcMedia : kLetter;
    const fz_rect rcBoth =
        fz_make_rect(std::max(rcPaper.x0, rcCrop.x0), std::max(rcPaper.y0, rcCrop.y0),
                     std::min(rcPaper.x1, rcCrop.x1), std::min(rcPaper.y1, rcCrop.y1));
    return IsUsable(rcBoth) ? rcBoth : rcPaper;
}

}

PageFacts ReadPageFacts(fz_context* ctx, const OpenedFile& file, std::int32_t nPage) {
    pdf_obj* pPage = nullptr;
    fz_rect rcBox = kLetter;
    fz_rect rcLibrary = fz_empty_rect;
    fz_matrix mList = fz_make_matrix(1.0F, 0.0F, 0.0F, -1.0F, 0.0F, 792.0F);
    int nAnnots = 0;
    fz_var(pPage);
    fz_var(rcBox);
    fz_var(mList);
    fz_var(nAnnots);
    fz_try(ctx) {
        pPage = file.LoadPageObject(ctx, nPage);
        if (pdf_is_dict(ctx, pPage)) {
            pdf_page_obj_transform(ctx, pPage, &rcLibrary, &mList);
            rcBox = ReadBox(ctx, pPage);
            nAnnots = pdf_array_len(ctx, pdf_dict_get(ctx, pPage, PDF_NAME(Annots)));
        }
    }
    fz_always(ctx) {
        pdf_drop_obj(ctx, pPage);
    }
    fz_catch(ctx) {
        fz_rethrow_if(ctx, FZ_ERROR_TRYLATER);
        fz_rethrow_if(ctx, FZ_ERROR_MEMORY);
    }
    return MakeFacts(rcBox, mList, nAnnots);
}

PageTable::PageTable(std::int32_t nPages)
    : m_nPages(nPages), m_chunks(static_cast<std::size_t>((nPages + kChunk - 1) / kChunk)) {}

bool PageTable::IsFull() const {
    const Lock lock(m_lock);
    return m_nKnown == m_nPages;
}

std::optional<PageFacts> PageTable::Find(std::int32_t nPage) const {
    const Lock lock(m_lock);
    const auto& pChunk = m_chunks[static_cast<std::size_t>(nPage / kChunk)];
    return pChunk ? (*pChunk)[static_cast<std::size_t>(nPage % kChunk)] : std::nullopt;
}

void PageTable::Put(std::int32_t nPage, const PageFacts& facts) {
    const Lock lock(m_lock);
    auto& pChunk = m_chunks[static_cast<std::size_t>(nPage / kChunk)];
    if (!pChunk) {
        pChunk = std::make_unique<Chunk>();
    }
    auto& entry = (*pChunk)[static_cast<std::size_t>(nPage % kChunk)];
    if (!entry) {
        entry = facts;
        ++m_nKnown;
        m_largest = {std::max(m_largest.fWidth, facts.fWidth),
                     std::max(m_largest.fHeight, facts.fHeight)};
    }
}

void PageTable::RenewAnnots(std::int32_t nPage, std::int32_t nAnnots, std::uint64_t nGeneration) {
    const Lock lock(m_lock);
    auto& entry = (*m_chunks[static_cast<std::size_t>(nPage / kChunk)])[static_cast<std::size_t>(
        nPage % kChunk)];
    entry->nAnnots = nAnnots;
    entry->nGeneration = nGeneration;
}

pdf::PageExtent PageTable::Largest() const {
    const Lock lock(m_lock);
    return m_largest;
}

}
