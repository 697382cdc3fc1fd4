#include "platform/qt/QtDispatcher.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <algorithm>
#include <utility>

#include "platform/foundation/Describe.h"
#include "platform/system/Debug.h"

namespace Platform::Qt {

namespace {

const QEvent::Type kWorkPosted = static_cast<QEvent::Type>(QEvent::registerEventType());

std::size_t IndexOf(concurrency::priority ePriority) {
    return static_cast<std::size_t>(static_cast<int>(concurrency::priority::high) -
                                    static_cast<int>(ePriority));
}

int EventPriorityOf(concurrency::priority ePriority) {
    switch (ePriority) {
        case concurrency::priority::high:
            return ::Qt::HighEventPriority;
        case concurrency::priority::normal:
            return ::Qt::NormalEventPriority;
        case concurrency::priority::low:
            return ::Qt::LowEventPriority;
        case concurrency::priority::idle:
            break;
    }
    return ::Qt::LowEventPriority - 1;
}

}

// Each event that arrives stands for one work of the queue.
class QtDispatcher::Receiver final : public QObject {
public:
    explicit Receiver(std::weak_ptr<QtDispatcher> wkOwner) : m_wkOwner(std::move(wkOwner)) {}
    bool event(QEvent* pEvent) override {
        if (pEvent->type() != kWorkPosted) {
            return QObject::event(pEvent);
        }
        // A work may shut the dispatcher down and let go of it.
        if (const std::shared_ptr<QtDispatcher> pOwner = m_wkOwner.lock()) {
            pOwner->RunForemost();
        }
        return true;
    }

private:
    const std::weak_ptr<QtDispatcher> m_wkOwner;
};

std::shared_ptr<QtDispatcher> QtDispatcher::Create() {
    std::shared_ptr<QtDispatcher> pDispatcher(new QtDispatcher);
    pDispatcher->m_pReceiver = std::make_unique<Receiver>(pDispatcher);
    pDispatcher->m_scope.emplace(pDispatcher);
    return pDispatcher;
}

QtDispatcher::QtDispatcher() = default;
QtDispatcher::~QtDispatcher() = default;

bool QtDispatcher::HasThreadAccess() const {
    return std::this_thread::get_id() == m_idThread;
}

void QtDispatcher::post(concurrency::priority ePriority, concurrency::work fnWork) {
    const std::lock_guard<std::mutex> lock(m_lock);
    if (!m_pReceiver) {
        return; // the argument, and with it the work, goes after the lock
    }
    m_queues.at(IndexOf(ePriority)).push_back(std::move(fnWork));
    ++m_nPending;
    QCoreApplication::postEvent(m_pReceiver.get(), new QEvent(kWorkPosted),
                                EventPriorityOf(ePriority));
}

std::size_t QtDispatcher::PendingCount() const {
    const std::lock_guard<std::mutex> lock(m_lock);
    return m_nPending;
}

concurrency::work QtDispatcher::TakeForemost() {
    const std::lock_guard<std::mutex> lock(m_lock);
    const auto it = std::find_if(m_queues.begin(), m_queues.end(),
                                 [](const auto& queue) { return !queue.empty(); });
    if (it == m_queues.end()) {
        return {};
    }
    concurrency::work fnWork = std::move(it->front());
    it->pop_front();
    return fnWork;
}

void QtDispatcher::RunForemost() {
    concurrency::work fnWork = TakeForemost();
    if (!fnWork) {
        return;
    }
    ++m_nRunning;
    RunGuarded("a work of the dispatcher", [&] { fnWork(); });
    fnWork = {}; // what it owned goes before it stops counting as pending
    --m_nRunning;
    const std::lock_guard<std::mutex> lock(m_lock);
    m_nPending -= std::min<std::size_t>(m_nPending, 1); // a shut-down in between left none
}

void QtDispatcher::RunPending() {
    if (m_pReceiver) { // only the UI thread takes it away
        QCoreApplication::sendPostedEvents(m_pReceiver.get(), kWorkPosted);
    }
}

void QtDispatcher::ShutDown() {
    std::array<std::deque<concurrency::work>, kPriorities> unrun;
    std::unique_ptr<Receiver> pReceiver;
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        unrun.swap(m_queues);
        pReceiver = std::move(m_pReceiver);
        m_nPending = 0;
    }
    m_scope.reset();
    if (pReceiver && m_nRunning > 0) {
        pReceiver.release()->deleteLater(); // its own event runs
    }
}

void QtDispatcher::RunGuarded(const char* szWhat, const std::function<void()>& fnBody) {
    try {
        fnBody();
    } catch (...) {
        Platform::Debug::OutputDebugString(std::string("unhandled failure in ") + szWhat + ": " +
                                           Platform::Describe(std::current_exception()) + "\n");
    }
}

}
