#include "platform/concurrency/SerialQueue.h"

#include <utility>

namespace concurrency {

// What the pool holds: the right to run the first of the line. One that is
// destroyed without having run takes the line with it.
class serial_queue::turn {
public:
    explicit turn(std::shared_ptr<serial_queue> pQueue) : m_pQueue(std::move(pQueue)) {}
    turn(turn&& other) noexcept : m_pQueue(std::move(other.m_pQueue)) {}
    turn& operator=(turn&&) = delete;
    ~turn() {
        if (m_pQueue) {
            m_pQueue->drop_all();
        }
    }
    void operator()() { std::exchange(m_pQueue, nullptr)->run_first(); }

private:
    std::shared_ptr<serial_queue> m_pQueue;
};

void serial_queue::schedule(work fnWork) {
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        m_waiting.push_back(std::move(fnWork));
        if (std::exchange(m_bTurnGiven, true)) {
            return;
        }
    }
    give_turn();
}

void serial_queue::give_turn() {
    work fnTurn = turn(shared_from_this());
    task_pool()->schedule(std::move(fnTurn));
}

void serial_queue::run_first() {
    work fnWork;
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        fnWork = std::move(m_waiting.front());
        m_waiting.pop_front();
    }
    fnWork();
    fnWork = work(); // what it owns goes before the next one begins
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        if (m_waiting.empty()) {
            m_bTurnGiven = false;
            return;
        }
    }
    try {
        give_turn();
    } catch (...) { // the pool has ended; the turn took the line with it
        return;
    }
}

void serial_queue::drop_all() {
    std::deque<work> dropped; // destroyed last, without the lock
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        std::swap(dropped, m_waiting);
        m_bTurnGiven = false;
    }
}

}
