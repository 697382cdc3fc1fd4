#include "widget/PlaceKeeper.h"

#include <utility>

namespace velko::vkit {

namespace {

constexpr int kRestMs = 2'000;    // without a change
constexpr int kLongestMs = 5'000; // while the reader goes on and on

}

PlaceKeeper::PlaceKeeper(Take fnTake, QObject* pParent)
    : QObject(pParent), m_fnTake(std::move(fnTake)) {
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        m_changing.invalidate();
        if (!Keep(false)) {
            m_timer.start(kRestMs);
        }
    });
}

void PlaceKeeper::Begin() {
    m_last.reset();
    m_changing.invalidate();
    m_bRunning = true;
    Changed(); // the file stands in the recently used list from then on
}

void PlaceKeeper::Changed() {
    if (!m_bRunning) {
        return;
    }
    if (!m_changing.isValid()) {
        m_changing.start();
    }
    if (!m_timer.isActive() || m_changing.elapsed() < kLongestMs) {
        m_timer.start(kRestMs);
    }
}

void PlaceKeeper::End() {
    m_timer.stop();
    m_bRunning = false;
    Keep(true);
}

bool PlaceKeeper::Keep(bool bLeft) {
    try {
        std::optional<KeptView> view = m_fnTake(bLeft);
        const bool bFound = view.has_value();
        if (view && (!m_last || !IsSamePlace(*view, *m_last))) {
            StoreView(*view);
            m_last = std::move(view);
        }
        Tell(nullptr);
        return bFound;
    } catch (...) {
        Tell(std::current_exception());
        return false;
    }
}

void PlaceKeeper::Tell(const std::exception_ptr& pError) {
    const bool bFailing = pError != nullptr;
    if (bFailing && !m_bFailing && OnFailure) {
        OnFailure(pError);
    }
    m_bFailing = bFailing;
}

}
