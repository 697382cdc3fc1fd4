// What stands in for pages that are not rendered yet: one store for a viewer.
//
// It has three shelves, and knows how they hang together:
// - bitmaps that blocks have given up, each with the share of its page that it
//   shows, the oldest first. They are stretched under whatever is missing of
//   their page, from gesture to gesture, until that page is sharp;
// - during a gesture, the bitmaps of the blocks at its start by page and number
//   (the scale cache), so that the blocks of each step take them over as they
//   are, in the grid that they had;
// - the last frame of a gesture (the snapshot), a backdrop as long as nothing
//   moves.
// Nothing is let go of before its successor is on the screen: the scale cache
// and the snapshot may end at any time, since the first shelf holds all that
// they show. A bitmap of a whole page stays as its overview while the page is
// shown larger: what comes in by a move or by zooming out is blurred, not blank.
//
// A bitmap of a lost device counts as none. Threads: the UI thread only.
// Units: device pixels; shares of a page's sides as it lies on the screen.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "surface/D2DBitmapSource.h"
#include "viewers/core/Records.h"

namespace velko::vkit {

class PDFViewCanvas;
class ViewerPageItem;

class StandIns {
public:
    struct StandIn {
        std::int32_t nPageIndex = 0;
        std::int32_t nRotate = 0;
        PageShare share;
        std::shared_ptr<D2DBitmapSource> pSource;
        bool bIsOverview = false; // of the whole page, as it still looks
    };

    // --- bitmaps with their share of a page ---

    // Keeps what the blocks of the page show; older ones which that covers go.
    // All together hold at most `nMostPixels`: then the ones that show least go.
    void Keep(const ViewerPageItem& item, std::int64_t nMostPixels);

    // Lets go of those for which `fnIsNeeded(standIn)` is false.
    template <class F>
    void Release(F fnIsNeeded) {
        std::erase_if(m_kept, [&](const StandIn& kept) { return !fnIsNeeded(kept); });
    }

    // The pages look otherwise from now on, or the one of that index does: what
    // is kept of them stands in once more at most.
    void MarkStale();
    void MarkStale(std::int32_t nPageIndex);

    // Of one page, in the order of drawing.
    template <class F>
    void ForEachOf(std::int32_t nPageIndex, std::int32_t nRotate, F fnVisit) const {
        for (const StandIn& kept : m_kept) {
            if (kept.nPageIndex == nPageIndex && kept.nRotate == nRotate &&
                kept.pSource->HasBitmap()) {
                fnVisit(kept);
            }
        }
    }
    std::size_t Count() const { return m_kept.size(); }
    std::size_t CountOverviews() const;

    // --- the scale cache of a gesture ---

    // Adds the bitmaps of the page's blocks, where there is none of that page
    // and number. No limit: a gesture adds each block on the screen once.
    void FillScaleCache(const ViewerPageItem& item);
    std::shared_ptr<D2DBitmapSource> FindScaleBitmap(std::int32_t nPageIndex,
                                                     std::int32_t nBlockId) const;
    // The grid of the page's bitmaps; both 0 when it has none.
    Render_PageDavidBlock FindScaleDavidBlock(std::int32_t nPageIndex) const;
    std::uint32_t ScaleCacheSize() const {
        return static_cast<std::uint32_t>(m_pScaleBitmapCache.size());
    }
    void EmptyScaleCache() { m_pScaleBitmapCache.clear(); }

    // --- the snapshot ---

    // A canvas that cannot give one leaves none; that is no failure.
    void TakeSnapshot(PDFViewCanvas& canvas);
    // Whether there was one on the screen.
    bool EndSnapshot();
    bool HasSnapshot() const { return m_bShowScaleSnapshot; } // asked for, if not taken
    // Empty when it is not to be shown, or died with its device.
    const Windows::Graphics::ID2D1Bitmap* ShownSnapshot() const;
    const std::shared_ptr<Windows::Graphics::ID2D1Bitmap>& Snapshot() const {
        return m_pScaleSnapshot;
    }

    void Clear();

private:
    void Add(StandIn standIn);
    void LimitTo(std::int64_t nMostPixels);
    bool IsInScaleCache(const D2DBitmapSource& source) const;

    std::vector<StandIn> m_kept; // the oldest first
    std::vector<std::shared_ptr<D2DBitmapSource>> m_pScaleBitmapCache;
    std::shared_ptr<Windows::Graphics::ID2D1Bitmap> m_pScaleSnapshot;
    bool m_bShowScaleSnapshot = false;
};

}
