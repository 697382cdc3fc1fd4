#include "widget/PlaceKeeper.h"

#include <utility>

namespace velko::vkit {

namespace {

constexpr int kFirstMs = 1'000; // the file stands in the recently used list from here on
constexpr int kLaterMs = 30'000;

}

PlaceKeeper::PlaceKeeper(Take fnTake, QObject* pParent)
    : QObject(pParent), m_fnTake(std::move(fnTake)) {
    connect(&m_timer, &QTimer::timeout, this,
            [this] { m_timer.start(Keep(false) ? kLaterMs : kFirstMs); });
}

void PlaceKeeper::Begin() {
    m_last.reset();
    m_timer.start(kFirstMs);
}

void PlaceKeeper::End() {
    m_timer.stop();
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
