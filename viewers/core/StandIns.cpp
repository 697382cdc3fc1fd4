#include "viewers/core/StandIns.h"

#include <algorithm>
#include <utility>

#include "platform/system/Debug.h"
#include "surface/PDFViewCanvas.h"
#include "viewers/core/ViewerPageItem.h"

namespace velko::vkit {

namespace {

std::int64_t PixelsOf(const StandIns::StandIn& kept) {
    return std::int64_t{kept.pSource->nWidth} * kept.pSource->nHeight;
}

constexpr double kWholePage = 0.999;

bool IsOfSamePage(const StandIns::StandIn& a, const StandIns::StandIn& b) {
    return a.nPageIndex == b.nPageIndex && a.nRotate == b.nRotate;
}

}

// --- bitmaps with their share of a page ---

void StandIns::Keep(const ViewerPageItem& item, std::int64_t nMostPixels) {
    item.ForEachBlock([&](const ViewerPageItemBlock& block) {
        if (block.HasBitmap()) {
            const bool bIsOverview = block.IsSharp() && block.Share().Area() > kWholePage;
            Add({item.nPageIndex, item.m_nRotate, block.Share(), block.BitmapSource(),
                 bIsOverview});
        }
    });
    LimitTo(nMostPixels);
}

// What was handed to a block from here comes back as the same bitmap.
void StandIns::Add(StandIn standIn) {
    const bool bIsKept = std::any_of(m_kept.begin(), m_kept.end(), [&](const StandIn& kept) {
        return kept.pSource == standIn.pSource && IsOfSamePage(kept, standIn);
    });
    if (bIsKept) {
        return;
    }
    std::erase_if(m_kept, [&](const StandIn& kept) {
        return !kept.pSource->HasBitmap() ||
               (IsOfSamePage(kept, standIn) && standIn.share.Contains(kept.share));
    });
    m_kept.push_back(std::move(standIn));
}

void StandIns::MarkStale() {
    for (StandIn& kept : m_kept) {
        kept.bIsOverview = false;
    }
}

void StandIns::MarkStale(std::int32_t nPageIndex) {
    for (StandIn& kept : m_kept) {
        kept.bIsOverview = kept.bIsOverview && kept.nPageIndex != nPageIndex;
    }
}

std::size_t StandIns::CountOverviews() const {
    return static_cast<std::size_t>(std::count_if(
        m_kept.begin(), m_kept.end(), [](const StandIn& kept) { return kept.bIsOverview; }));
}

// A small part is most likely to lie on a larger one.
void StandIns::LimitTo(std::int64_t nMostPixels) {
    std::int64_t nPixels = 0;
    for (const StandIn& kept : m_kept) {
        nPixels += PixelsOf(kept);
    }
    while (nPixels > nMostPixels && m_kept.size() > 1) {
        const auto it = std::min_element(
            m_kept.begin(), m_kept.end(),
            [](const StandIn& a, const StandIn& b) { return a.share.Area() < b.share.Area(); });
        nPixels -= PixelsOf(*it);
        m_kept.erase(it);
    }
}

// --- the scale cache ---

void StandIns::FillScaleCache(const ViewerPageItem& item) {
    item.ForEachBlock([&](const ViewerPageItemBlock& block) {
        if (block.HasBitmap() && !IsInScaleCache(*block.BitmapSource())) {
            m_pScaleBitmapCache.push_back(block.BitmapSource());
        }
    });
}

bool StandIns::IsInScaleCache(const D2DBitmapSource& source) const {
    return FindScaleBitmap(source.nPageIndex, source.m_nBlockId) != nullptr;
}

std::shared_ptr<D2DBitmapSource> StandIns::FindScaleBitmap(std::int32_t nPageIndex,
                                                           std::int32_t nBlockId) const {
    for (const auto& pSource : m_pScaleBitmapCache) {
        if (pSource->nPageIndex == nPageIndex && pSource->m_nBlockId == nBlockId &&
            pSource->HasBitmap()) {
            return pSource;
        }
    }
    return nullptr;
}

Render_PageDavidBlock StandIns::FindScaleDavidBlock(std::int32_t nPageIndex) const {
    for (const auto& pSource : m_pScaleBitmapCache) {
        if (pSource->nPageIndex == nPageIndex) {
            return {pSource->nRows, pSource->nCols};
        }
    }
    return {};
}

// --- the snapshot ---

void StandIns::TakeSnapshot(PDFViewCanvas& canvas) {
    m_bShowScaleSnapshot = true;
    m_pScaleSnapshot.reset();
    const auto pTarget = canvas.TargetBitmap();
    if (!pTarget) {
        return;
    }
    try {
        m_pScaleSnapshot = canvas.CopyTarget(pTarget);
    } catch (const Platform::Exception&) {
        Platform::Debug::OutputDebugString("the frame before a zoom could not be kept\n");
    }
}

bool StandIns::EndSnapshot() {
    const bool bWasShown = std::exchange(m_bShowScaleSnapshot, false);
    m_pScaleSnapshot.reset();
    return bWasShown;
}

const Windows::Graphics::ID2D1Bitmap* StandIns::ShownSnapshot() const {
    const bool bIsShown =
        m_bShowScaleSnapshot && m_pScaleSnapshot && m_pScaleSnapshot->IsDeviceAlive();
    return bIsShown ? m_pScaleSnapshot.get() : nullptr;
}

void StandIns::Clear() {
    m_kept.clear();
    EmptyScaleCache();
    EndSnapshot();
}

}
