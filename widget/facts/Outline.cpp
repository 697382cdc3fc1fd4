#include "widget/facts/Outline.h"

#include <algorithm>
#include <numeric>
#include <tuple>
#include <utility>

#include "viewers/core/Destinations.h"

namespace velko::vkit {

using velko::pdf::IDestination;
using velko::pdf::PDFDoc;

namespace {

// Zoom modes that name a height; of the others the page's top is meant.
bool NamesTop(const IDestination& target) {
    constexpr std::int32_t kFitBoxWidth = 7;
    const std::int32_t nMode = target.GetZoomMode();
    return nMode == kExplicit || nMode == kFitWidth || nMode == kFitRectangle ||
           nMode == kFitBoxWidth;
}

DocumentHeight HeightOf(const IDestination& target, PDFDoc& document) {
    constexpr int kSide = 16'384; // fine enough for any page
    const std::int32_t nPage = target.GetPageIndex(document);
    if (nPage < 0 || nPage >= document.GetPageCount()) {
        return {};
    }
    if (!NamesTop(target)) {
        return {nPage, 0.0F};
    }
    const auto matrix = document.GetPage(nPage)->GetDisplayMatrix(0, 0, kSide, kSide, 0);
    const float fY = matrix.TransformPoint({target.GetLeft(), target.GetTop()}).Y;
    return {nPage, std::clamp(fY / static_cast<float>(kSide), 0.0F, 1.0F)};
}

}

Outline Outline::Of(PDFDoc& document) {
    auto* const pFacts = dynamic_cast<velko::pdf::IDocumentFacts*>(&document);
    std::vector<Entry> entries = pFacts != nullptr ? pFacts->GetOutline() : std::vector<Entry>();
    std::vector<DocumentHeight> heights;
    heights.reserve(entries.size());
    for (const Entry& entry : entries) {
        const auto pTarget = entry.pAction ? entry.pAction->GetDestination() : nullptr;
        heights.push_back(pTarget ? vkit::HeightOf(*pTarget, document) : DocumentHeight());
    }
    return {std::move(entries), std::move(heights)};
}

Outline::Outline(std::vector<Entry> entries, std::vector<DocumentHeight> heights)
    : m_entries(std::move(entries)), m_heights(std::move(heights)) {
    MakeTree();
    SortHeights();
}

void Outline::MakeTree() {
    std::vector<int> open; // the way down to the entry before
    std::vector<int> counts(m_entries.size() + 1, 0);
    for (int nEntry = 0; nEntry < Count(); ++nEntry) {
        open.resize(std::min(open.size(), At(m_entries[At(nEntry)].nDepth)));
        const int nParent = open.empty() ? kRoot : open.back();
        m_parents.push_back(nParent);
        m_rows.push_back(counts[At(nParent + 1)]++);
        open.push_back(nEntry);
    }
    m_firstChild.resize(counts.size() + 1, 0);
    std::partial_sum(counts.begin(), counts.end(), m_firstChild.begin() + 1);
    m_children.resize(m_entries.size());
    for (int nEntry = 0; nEntry < Count(); ++nEntry) {
        m_children[FirstChildSlot(ParentOf(nEntry), RowOf(nEntry))] = nEntry;
    }
}

void Outline::SortHeights() {
    for (int nEntry = 0; nEntry < Count(); ++nEntry) {
        if (HeightOf(nEntry).nPage >= 0) {
            m_byHeight.push_back(nEntry);
        }
    }
    std::stable_sort(m_byHeight.begin(), m_byHeight.end(), [this](int nOne, int nOther) {
        const DocumentHeight& one = HeightOf(nOne);
        const DocumentHeight& other = HeightOf(nOther);
        return std::tie(one.nPage, one.fShare) < std::tie(other.nPage, other.fShare);
    });
}

int Outline::CountUnder(int nParent) const {
    return m_firstChild[At(nParent + 2)] - m_firstChild[At(nParent + 1)];
}

int Outline::ReadAt(const DocumentHeight& height) const {
    const auto fnIsBelow = [this](const DocumentHeight& wanted, int nEntry) {
        const DocumentHeight& own = HeightOf(nEntry);
        return std::tie(wanted.nPage, wanted.fShare) < std::tie(own.nPage, own.fShare);
    };
    const auto end = std::upper_bound(m_byHeight.begin(), m_byHeight.end(), height, fnIsBelow);
    return end == m_byHeight.begin() ? -1 : *(end - 1);
}

}
