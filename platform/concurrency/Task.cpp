#include "platform/concurrency/Task.h"

#include <atomic>

#include "platform/foundation/Describe.h"
#include "platform/system/Debug.h"

namespace concurrency {

namespace {

std::atomic<std::uint64_t> g_nCanceled{0};

}

std::uint64_t canceled_task_count() {
    return g_nCanceled.load(std::memory_order_relaxed);
}

namespace detail {

state_base::~state_base() {
    if (m_eOutcome == outcome::failure && !m_bObserved) {
        Platform::Debug::OutputDebugString(
            "unobserved failure of a task: " + Platform::Describe(m_pError) + "\n");
    }
}

bool state_base::is_done() const {
    const std::lock_guard<std::mutex> lock(m_lock);
    return m_eOutcome != outcome::pending;
}

outcome state_base::result() const {
    const std::lock_guard<std::mutex> lock(m_lock);
    return m_eOutcome;
}

void state_base::set_failure(std::exception_ptr pError) {
    finish(outcome::failure, [&] { m_pError = std::move(pError); });
}

void state_base::set_canceled() {
    finish(outcome::canceled, [] {});
}

void state_base::finish(outcome eOutcome, const std::function<void()>& fnStore) {
    std::vector<work> continuations;
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        if (m_eOutcome != outcome::pending) {
            return;
        }
        fnStore();
        m_eOutcome = eOutcome;
        if (eOutcome == outcome::canceled) {
            g_nCanceled.fetch_add(1, std::memory_order_relaxed);
        }
        continuations.swap(m_continuations);
        m_ended.notify_all();
    }
    for (work& fnContinuation : continuations) {
        fnContinuation();
    }
}

bool state_base::on_done(work& fnWork) {
    const std::lock_guard<std::mutex> lock(m_lock);
    if (m_eOutcome != outcome::pending) {
        return false;
    }
    m_continuations.push_back(std::move(fnWork));
    return true;
}

void state_base::wait() {
    const blocking_scope blocking;
    std::unique_lock<std::mutex> lock(m_lock);
    m_ended.wait(lock, [&] { return m_eOutcome != outcome::pending; });
}

void state_base::throw_outcome() {
    std::exception_ptr pError;
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        if (m_eOutcome == outcome::value) {
            return;
        }
        m_bObserved = true;
        pError = m_pError;
    }
    if (!pError) {
        throw task_canceled();
    }
    std::rethrow_exception(pError);
}

void state_base::mark_observed() {
    const std::lock_guard<std::mutex> lock(m_lock);
    m_bObserved = true;
}

bool suspend_until_done(state_base& state, std::coroutine_handle<> handle,
                        std::shared_ptr<context> pContext) {
    // Only `fnResume` owns the coroutine. It is handed over whole or, when the
    // task has ended meanwhile, gives the coroutine back to its caller.
    auto pResumer = std::make_shared<resumer>(handle);
    work fnResume([pResumer, pContext = std::move(pContext)]() mutable {
        resumer turn(std::move(*pResumer));
        if (!pContext || pContext == context::current()) {
            turn();
        } else {
            pContext->post(priority::normal, work(std::move(turn)));
        }
    });
    if (state.on_done(fnResume)) {
        return true;
    }
    pResumer->release();
    return false;
}

}

task<void> when_all(std::vector<task<void>> tasks, cancellation_token token) {
    for (const task<void>& item : tasks) {
        co_await item.settled_anywhere();
    }
    for (const task<void>& item : tasks) {
        if (item.is_failure()) {
            item.get();
        }
    }
    for (const task<void>& item : tasks) {
        if (item.is_canceled()) {
            throw task_canceled();
        }
    }
    token.throw_if_canceled();
}

}
