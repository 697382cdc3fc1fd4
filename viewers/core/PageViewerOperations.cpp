// The operations that change the layout, as far as they are the same for every
// viewer of whole pages: who may call, what is left of the arguments, and that a
// handler of the host which is in the middle of a step does not begin another.
#include <utility>

#include "platform/ui/CoreDispatcher.h"
#include "viewers/core/PageViewerBase.h"

namespace velko::vkit {

template <class F>
void PageViewerBase::WhenNotAsking(F fnOperation) {
    ThrowIfDisposed();
    const auto pSelf = shared_from_this();
    if (!m_bAskingSize) {
        fnOperation(*this);
        return;
    }
    m_pDispatcher->RunAsync(concurrency::priority::normal,
                            [wkSelf = weak_from_this(), fnOperation = std::move(fnOperation)] {
                                const auto pViewer = wkSelf.lock();
                                if (pViewer && !pViewer->m_bDisposed) {
                                    pViewer->WhenNotAsking(fnOperation);
                                }
                            });
}

template <class F>
void PageViewerBase::ChangeLayout(F fnChange) {
    WhenNotAsking([fnChange = std::move(fnChange)](PageViewerBase& viewer) {
        viewer.m_ctsDestination.Renew();
        fnChange(viewer);
    });
}

// The frame from before a zoom is no backdrop for another place.
template <class F>
void PageViewerBase::ChangePlace(F fnChange) {
    ChangeLayout([fnChange = std::move(fnChange)](PageViewerBase& viewer) {
        viewer.EndSnapshot();
        fnChange(viewer);
    });
}

void PageViewerBase::PageScaled(Point pCentrePt, double dbScale, bool bIsInertial,
                                bool isScrollComplete) {
    ChangeLayout([=](PageViewerBase& viewer) {
        viewer.OnPageScaled(pCentrePt, dbScale, bIsInertial, isScrollComplete);
    });
}

void PageViewerBase::MoveScreen(double dbOffsetY, double dbOffsetX) {
    ChangePlace([=](PageViewerBase& viewer) {
        viewer.OnMoveScreen(FiniteOrZero(dbOffsetY), FiniteOrZero(dbOffsetX));
    });
}

void PageViewerBase::RotateViewer(std::int32_t nRotate) {
    ChangePlace([=](PageViewerBase& viewer) { viewer.OnRotateViewer(nRotate); });
}

void PageViewerBase::InvaildateLayout() {
    ChangePlace([](PageViewerBase& viewer) { viewer.OnInvaildateLayout(); });
}

void PageViewerBase::InitLayOut(std::int32_t nPageIndex, double dbScale, double dbOffsetX,
                                double dbOffsetY) {
    ChangePlace([=](PageViewerBase& viewer) {
        viewer.OnInitLayOut(nPageIndex, FiniteOrZero(dbScale), FiniteOrZero(dbOffsetX),
                            FiniteOrZero(dbOffsetY));
    });
}

void PageViewerBase::GotoPage(std::int32_t nPageIndex) {
    ChangePlace([=](PageViewerBase& viewer) { viewer.OnGotoPage(nPageIndex); });
}

// Moves nothing anew: a destination that waits for its page goes on waiting.
void PageViewerBase::AlignPageAfterScroll(double dbOffsetY, double dbOffsetX) {
    WhenNotAsking([=](PageViewerBase& viewer) {
        viewer.OnAlignPageAfterScroll(FiniteOrZero(dbOffsetY), FiniteOrZero(dbOffsetX));
    });
}

void PageViewerBase::PageSizeChanged(double dbOffsetX, double dbOffsetY) {
    ChangePlace([=](PageViewerBase& viewer) {
        viewer.OnPageSizeChanged(FiniteOrZero(dbOffsetX), FiniteOrZero(dbOffsetY));
    });
}

void PageViewerBase::GotoDestination(std::int32_t nPageIndex, std::int32_t nZoomMode,
                                     const std::vector<float>& values) {
    ChangePlace([=](PageViewerBase& viewer) {
        if (viewer.CanLayOut() && viewer.IsPage(nPageIndex)) {
            viewer.OnGotoDestination(nPageIndex, nZoomMode, values);
        }
    });
}

}
