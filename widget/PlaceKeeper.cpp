#include "widget/PlaceKeeper.h"

#include <QPointer>
#include <mutex>
#include <utility>

#include "platform/concurrency/Task.h"

namespace velko::vkit {

namespace {

constexpr int kFirstMs = 1'000; // the file stands in the recently used list from here on
constexpr int kLaterMs = 30'000;

}

// Written in the order in which the places were taken: one that comes late, when
// a later one is stored, is dropped.
struct PlaceKeeper::Writing {
    std::mutex lock;           // held while the store is written
    std::uint64_t nTaken = 0;  // UI thread only
    std::uint64_t nStored = 0; // guarded by lock

    void Store(const KeptView& view, std::uint64_t nTurn) {
        const std::lock_guard<std::mutex> hold(lock);
        if (nTurn > nStored) {
            StoreView(view);
            nStored = nTurn;
        }
    }
};

PlaceKeeper::PlaceKeeper(Take fnTake, QObject* pParent)
    : QObject(pParent), m_fnTake(std::move(fnTake)), m_pWriting(std::make_shared<Writing>()) {
    connect(&m_timer, &QTimer::timeout, this,
            [this] { m_timer.start(Save(false) ? kLaterMs : kFirstMs); });
}

PlaceKeeper::~PlaceKeeper() {
    OnFailure = nullptr; // there is no one left to tell
    Flush();
}

void PlaceKeeper::Begin() {
    m_last.reset();
    m_timer.start(kFirstMs);
}

void PlaceKeeper::End() {
    m_timer.stop();
    Save(true);
}

bool PlaceKeeper::Save(bool bLeft) {
    std::optional<KeptView> view;
    try {
        view = m_fnTake(bLeft);
    } catch (...) {
        Tell(std::current_exception());
    }
    const bool bFound = view.has_value();
    if (view && (m_bFailing || !m_last || !IsSamePlace(*view, *m_last))) {
        m_last = std::move(view);
        ++m_pWriting->nTaken;
        Store();
    }
    return bFound;
}

void PlaceKeeper::Store() {
    const std::uint64_t nTurn = m_pWriting->nTaken;
    const auto fnStore = [pWriting = m_pWriting, view = *m_last, nTurn] {
        pWriting->Store(view, nTurn);
    };
    concurrency::create_task(fnStore).then(
        [pKeeper = QPointer<PlaceKeeper>(this)](const concurrency::task<void>& storing) {
            std::exception_ptr pError;
            try {
                storing.get();
            } catch (...) {
                pError = std::current_exception();
            }
            if (pKeeper) {
                pKeeper->Tell(pError);
            }
        });
}

void PlaceKeeper::Flush() {
    if (!m_last) {
        return;
    }
    try {
        m_pWriting->Store(*m_last, m_pWriting->nTaken);
        Tell(nullptr);
    } catch (...) {
        Tell(std::current_exception());
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
