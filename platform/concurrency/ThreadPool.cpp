#include "platform/concurrency/ThreadPool.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <iterator>
#include <utility>

namespace concurrency {

namespace {

constexpr unsigned kMaxThreads = 256;
constexpr std::chrono::seconds kIdleLife(5);

}

class ThreadPool::worker final : public blocking_scope::observer {
public:
    explicit worker(ThreadPool& pool) : m_pool(pool) {
        blocking_scope::set_thread_observer(this);
        stop_signal::install(&pool.m_stopSignal);
    }
    ~worker() override {
        stop_signal::install(nullptr);
        blocking_scope::set_thread_observer(nullptr);
    }
    worker(const worker&) = delete;
    worker& operator=(const worker&) = delete;

    void begin_blocking() override {
        if (m_nDepth++ == 0) {
            m_pool.BeginBlocking();
        }
    }
    void end_blocking() override {
        if (--m_nDepth == 0) {
            m_pool.EndBlocking();
        }
    }

private:
    ThreadPool& m_pool;
    int m_nDepth = 0;
};

ThreadPool::ThreadPool(unsigned nThreads) : m_nWanted(std::max(1U, nThreads)) {}

ThreadPool::~ThreadPool() {
    stop();
}

void ThreadPool::stop() {
    m_stopSignal.stop();
    std::deque<work> dropped;
    std::vector<std::thread> threads;
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        m_bStopping = true;
        dropped.swap(m_queue);
        threads.swap(m_threads);
        std::move(m_ended.begin(), m_ended.end(), std::back_inserter(threads));
        m_ended.clear();
        m_changed.notify_all();
    }
    dropped.clear();
    for (std::thread& thread : threads) {
        thread.join();
    }
}

void ThreadPool::abandon() {
    m_stopSignal.stop();
    std::deque<work> dropped;
    std::vector<std::thread> ended;
    {
        std::unique_lock<std::mutex> lock(m_lock);
        m_bStopping = true;
        m_bAbandoned = true;
        dropped.swap(m_queue);
        m_changed.notify_all();
        m_left.wait(lock, [this] { return m_nThreads == m_nBlocked; });
        for (std::thread& thread : m_threads) {
            thread.detach();
        }
        m_threads.clear();
        ended.swap(m_ended);
    }
    for (std::thread& thread : ended) {
        thread.join();
    }
}

void ThreadPool::schedule(work fnWork) {
    const std::lock_guard<std::mutex> lock(m_lock);
    if (m_bStopping) {
        return;
    }
    m_queue.push_back(std::move(fnWork));
    GrowIfNeeded();
    m_changed.notify_one();
}

bool ThreadPool::is_idle() const {
    const std::lock_guard<std::mutex> lock(m_lock);
    return m_queue.empty() && m_nIdle == m_nThreads;
}

void ThreadPool::GrowIfNeeded() {
    for (std::thread& thread : m_ended) {
        thread.join();
    }
    m_ended.clear();
    // When more works wait than threads idle, each idle thread has one to take.
    const bool bWorkWaits = m_queue.size() > m_nIdle;
    if (bWorkWaits && m_nThreads - m_nBlocked < m_nWanted && m_nThreads < kMaxThreads &&
        !m_bStopping) {
        StartThread();
    }
}

void ThreadPool::StartThread() {
    try {
        m_threads.emplace_back([this] { RunWorker(); });
        ++m_nThreads;
    } catch (const std::exception&) {
        // The machine gives no more threads, or no memory for one. The work stays in the queue, for
        // a thread that there is or for the next try: it is not the caller's again.
    }
}

void ThreadPool::BeginBlocking() {
    const std::lock_guard<std::mutex> lock(m_lock);
    ++m_nBlocked;
    m_left.notify_all();
    GrowIfNeeded();
}

void ThreadPool::EndBlocking() {
    std::unique_lock<std::mutex> lock(m_lock);
    if (m_bAbandoned) {
        m_changed.wait(lock, [] { return false; }); // what it would go back to may be gone
    }
    --m_nBlocked;
}

void ThreadPool::RunWorker() {
    worker self(*this);
    std::unique_lock<std::mutex> lock(m_lock);
    for (;;) {
        ++m_nIdle;
        const bool bWoken =
            m_changed.wait_for(lock, kIdleLife, [this] { return m_bStopping || !m_queue.empty(); });
        --m_nIdle;
        if (!m_queue.empty()) {
            work fnWork = std::move(m_queue.front());
            m_queue.pop_front();
            lock.unlock();
            fnWork();
            fnWork = work();
            lock.lock();
        } else if (m_bStopping || (!bWoken && m_nThreads > m_nWanted)) {
            break;
        }
    }
    --m_nThreads;
    m_left.notify_all();
    const auto itSelf = std::find_if(m_threads.begin(), m_threads.end(), [](const std::thread& t) {
        return t.get_id() == std::this_thread::get_id();
    });
    if (itSelf != m_threads.end()) {
        m_ended.push_back(std::move(*itSelf));
        m_threads.erase(itSelf);
    }
}

}
