// The steps of a zoom, as far as they are the same for every viewer of pages.
//
// During a gesture nothing is rendered: the blocks of the new layout take the
// bitmaps of the old scale, by page and block number. The end of the gesture
// keeps the last frame as a backdrop while the blocks are rendered.
#include <cmath>
#include <exception>

#include "platform/system/Debug.h"
#include "viewers/core/PageViewerBase.h"

namespace velko::vkit {

void PageViewerBase::FillScaleCache(const ViewerPageItem& item) {
    item.ForEachBlock(
        [&](const ViewerPageItemBlock& block) { m_pScaleBitmapCache.Add(block.m_pBitmapSource); });
}

void PageViewerBase::ShowZoomStep(bool bComplete) {
    StartRenders(!bComplete);
    if (bComplete) {
        CompleteGesture();
    } else {
        PaintCanvas();
    }
}

// A frame that fails must not keep the gesture from ending.
void PageViewerBase::CompleteGesture() {
    std::exception_ptr pFailure;
    try {
        PaintCanvas();
    } catch (...) {
        pFailure = std::current_exception();
    }
    EndGesture();
    if (pFailure) {
        std::rethrow_exception(pFailure);
    }
}

void PageViewerBase::EndGesture() {
    if (HasItems()) {
        TakeScaleSnapshot();
        RenewRenders();
        for (const PageItem& pItem : *m_pPageItems) {
            pItem->DividToBlock(CalcPageDavidBlock(*pItem));
        }
        StartVisibleRenders();
    }
    m_pScaleBitmapCache.Clear();
}

void PageViewerBase::ZoomAtScreenCentre(double dbScale) {
    const Point ptCentre = {static_cast<float>(m_dbScreenWidth * 0.5),
                            static_cast<float>(m_dbScreenHeight * 0.5)};
    OnPageScaled(ptCentre, std::isfinite(dbScale) ? dbScale : GetScale(), false, false);
}

// --- the frame before a zoom ---

bool PageViewerBase::IsSnapshotShown() const {
    return m_bShowScaleSnapshot && m_pScaleSnapshot && m_pScaleSnapshot->IsDeviceAlive();
}

// Without a snapshot the pages show blank until they are rendered; that is no
// reason to fail a zoom.
void PageViewerBase::TakeScaleSnapshot() {
    m_bShowScaleSnapshot = true;
    m_pScaleSnapshot.reset();
    const auto pTarget = m_pCanvas ? m_pCanvas->TargetBitmap() : nullptr;
    if (!pTarget) {
        return;
    }
    try {
        m_pScaleSnapshot = m_pCanvas->CopyTarget(pTarget);
    } catch (const Platform::Exception&) {
        Platform::Debug::OutputDebugString("the frame before a zoom could not be kept\n");
    }
}

void PageViewerBase::EndSnapshot() {
    m_bShowScaleSnapshot = false;
    m_pScaleSnapshot.reset();
}

}
