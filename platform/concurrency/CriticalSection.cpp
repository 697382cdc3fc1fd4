#include "platform/concurrency/CriticalSection.h"

#include "platform/concurrency/Scheduler.h"

namespace concurrency {

void critical_section::lock() VLK_NO_THREAD_SAFETY_ANALYSIS {
    const std::thread::id idSelf = std::this_thread::get_id();
    std::unique_lock<std::mutex> lock(m_mutex);
    if (m_nDepth > 0 && m_idOwner == idSelf) {
        ++m_nDepth;
        return;
    }
    if (m_nDepth == 0) {
        m_idOwner = idSelf;
        m_nDepth = 1;
        return;
    }
    waiter self;
    self.idThread = idSelf;
    m_waiters.push_back(&self);
    lock.unlock();
    const blocking_scope blocking;
    lock.lock();
    self.granted.wait(lock, [&] { return self.bGranted; });
}

void critical_section::unlock() VLK_NO_THREAD_SAFETY_ANALYSIS {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (--m_nDepth > 0) {
        return;
    }
    m_idOwner = {};
    if (m_waiters.empty()) {
        return;
    }
    waiter* const pNext = m_waiters.front();
    m_waiters.pop_front();
    m_idOwner = pNext->idThread;
    m_nDepth = 1;
    pNext->bGranted = true;
    pNext->granted.notify_one(); // under the lock: the waiter's record lives on its stack
}

bool critical_section::is_held_by_caller() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_nDepth > 0 && m_idOwner == std::this_thread::get_id();
}

void event::set() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_bSet = true;
    m_changed.notify_one();
}

void event::wait() {
    const blocking_scope blocking;
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [&] { return m_bSet; });
    m_bSet = false;
}

}
