// The operations that change the layout, as far as they are the same for every
// viewer: who may call, what is left of the arguments, and that a handler of the
// host which is in the middle of a step does not begin another.
#include <utility>

#include "platform/foundation/FirstFailure.h"
#include "platform/ui/CoreDispatcher.h"
#include "viewers/core/ViewerCore.h"

namespace velko::vkit {

void ViewerCore::WhenNotAsking(Operation fnOperation) {
    ThrowIfDisposed();
    const auto pSelf = shared_from_this();
    if (m_bAskingSize) {
        m_putOff.push_back(std::move(fnOperation));
    } else {
        fnOperation(*this);
    }
}

void ViewerCore::WhileAsking(const std::function<void()>& fnAsk) {
    const auto pSelf = shared_from_this();
    const std::uint64_t nClosings = m_nClosings;
    const bool bWasAsking = std::exchange(m_bAskingSize, true);
    Platform::FirstFailure steps;
    steps.Run(fnAsk);
    m_bAskingSize = bWasAsking;
    if (!m_bAskingSize) {
        PostPutOff();
    }
    steps.Rethrow();
    if (nClosings != m_nClosings) {
        throw Platform::ObjectDisposedException();
    }
}

// Once, however many wait: the step that asked goes on first.
void ViewerCore::PostPutOff() {
    if (m_putOff.empty() || m_bPutOffPosted) {
        return;
    }
    m_bPutOffPosted = true;
    m_pDispatcher->RunAsync(concurrency::priority::normal, [wkSelf = weak_from_this()] {
        if (const auto pViewer = wkSelf.lock()) {
            pViewer->RunPutOff();
        }
    });
}

// A handler with an event loop of its own may have led here: then the asking
// that is under way posts again when it ends.
void ViewerCore::RunPutOff() {
    m_bPutOffPosted = false;
    if (m_bAskingSize) {
        return;
    }
    Platform::FirstFailure steps;
    for (const Operation& fnOperation : std::exchange(m_putOff, {})) {
        steps.Run([&] {
            const auto fnRun = [&] { WhenNotAsking(fnOperation); };
            if (m_bDisposed) {
                return;
            }
            if (const auto pOwner = Owner()) {
                pOwner->RunOperation(fnRun);
            } else {
                fnRun();
            }
        });
    }
    steps.Rethrow();
}

void ViewerCore::ChangeByItself(Operation fnChange) {
    if (!m_bDisposed) {
        m_putOff.emplace_back([fnChange = std::move(fnChange)](ViewerCore& viewer) {
            viewer.ChangeLayout(fnChange);
        });
        RunPutOff();
    }
}

void ViewerCore::ChangeLayout(Operation fnChange) {
    WhenNotAsking([fnChange = std::move(fnChange)](ViewerCore& viewer) {
        viewer.BeginChange();
        fnChange(viewer);
    });
}

void ViewerCore::ChangePlace(Operation fnChange) {
    ChangeLayout([fnChange = std::move(fnChange)](ViewerCore& viewer) {
        viewer.LeavePlace();
        Platform::FirstFailure steps;
        steps.Run([&] { fnChange(viewer); });
        steps.Run([&] { viewer.ReachPlace(); });
        steps.Rethrow();
    });
}

void ViewerCore::PageScaled(Point pCentrePt, double dbScale, bool bIsInertial,
                            bool isScrollComplete) {
    ChangeLayout([=](ViewerCore& viewer) {
        viewer.OnPageScaled(pCentrePt, dbScale, bIsInertial, isScrollComplete);
    });
}

void ViewerCore::MoveScreen(double dbOffsetY, double dbOffsetX) {
    ChangePlace([=](ViewerCore& viewer) {
        viewer.OnMoveScreen(FiniteOrZero(dbOffsetY), FiniteOrZero(dbOffsetX));
    });
}

void ViewerCore::RotateViewer(std::int32_t nRotate) {
    ChangePlace([=](ViewerCore& viewer) { viewer.OnRotateViewer(nRotate); });
}

void ViewerCore::InvaildateLayout() {
    ChangePlace([](ViewerCore& viewer) { viewer.OnInvaildateLayout(); });
}

void ViewerCore::InitLayOut(std::int32_t nPageIndex, double dbScale, double dbOffsetX,
                            double dbOffsetY) {
    ChangePlace([=](ViewerCore& viewer) {
        viewer.OnInitLayOut(nPageIndex, FiniteOrZero(dbScale), FiniteOrZero(dbOffsetX),
                            FiniteOrZero(dbOffsetY));
    });
}

void ViewerCore::GotoPage(std::int32_t nPageIndex) {
    ChangePlace([=](ViewerCore& viewer) { viewer.OnGotoPage(nPageIndex); });
}

// Moves nothing anew: a destination that waits for its page goes on waiting.
void ViewerCore::AlignPageAfterScroll(double dbOffsetY, double dbOffsetX) {
    WhenNotAsking([=](ViewerCore& viewer) {
        viewer.OnAlignPageAfterScroll(FiniteOrZero(dbOffsetY), FiniteOrZero(dbOffsetX));
    });
}

void ViewerCore::PageSizeChanged(double dbOffsetX, double dbOffsetY) {
    ChangePlace([=](ViewerCore& viewer) {
        viewer.OnPageSizeChanged(FiniteOrZero(dbOffsetX), FiniteOrZero(dbOffsetY));
    });
}

void ViewerCore::GotoDestination(std::int32_t nPageIndex, std::int32_t nZoomMode,
                                 const std::vector<float>& values) {
    ChangePlace([=](ViewerCore& viewer) {
        if (viewer.CanLayOut() && viewer.IsPage(nPageIndex)) {
            viewer.OnGotoDestination(nPageIndex, nZoomMode, values);
        }
    });
}

}
