// Tasks: asynchronous operations that end with a value, a failure or as
// cancelled, written as coroutines or as continuations.
//
// A coroutine that returns `task<T>` starts at once on its caller's thread and
// runs to its first wait. `co_await` of a task gives its value, raises its
// failure, or raises `task_canceled`; a `task_canceled` that leaves a coroutine
// ends it as cancelled. A coroutine resumes in the context in which it waited:
// after a wait on the UI thread it is on the UI thread again; elsewhere it goes
// on where the task ended. A coroutine of a class holds a strong reference to
// its object for its whole length (`auto pSelf = shared_from_this();`).
//
// A failure that nobody looked at goes to the debug output when the last
// reference to its task goes.
//
// g++ 12 destroys temporaries of a `co_await` expression twice when they are
// aggregates or capturing lambdas: name such arguments first.
//
// Threads: a task may be shared and awaited from any thread.
#pragma once

#include <condition_variable>
#include <coroutine>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/concurrency/Cancellation.h"
#include "platform/concurrency/Scheduler.h"

namespace concurrency {

template <class T>
class task;

namespace detail {

enum class outcome { pending, value, failure, canceled };

// The part of a task's state that does not depend on the type of its value.
class state_base {
public:
    state_base() = default;
    state_base(const state_base&) = delete;
    state_base& operator=(const state_base&) = delete;
    ~state_base();

    bool is_done() const;
    outcome result() const;
    void set_failure(std::exception_ptr pError);
    void set_canceled();

    // Runs `fnWork` on the thread that ends the task. False, and `fnWork`
    // untouched, when the task has ended already.
    bool on_done(work& fnWork);
    void wait();

    // Raises the failure or the cancelled state; returns for a value.
    void throw_outcome();
    void mark_observed();

protected:
    // Stores with `fnStore` under the lock, then runs the continuations.
    // A task ends once; a second ending is ignored.
    void finish(outcome eOutcome, const std::function<void()>& fnStore);

private:
    mutable std::mutex m_lock;
    std::condition_variable m_ended;
    outcome m_eOutcome = outcome::pending;
    std::exception_ptr m_pError;
    bool m_bObserved = false;
    std::vector<work> m_continuations;
};

template <class T>
class state : public state_base {
public:
    void set_value(T value) {
        finish(outcome::value, [&] { m_value.emplace(std::move(value)); });
    }
    const T& get() {
        throw_outcome();
        return *m_value;
    }

private:
    std::optional<T> m_value;
};

template <>
class state<void> : public state_base {
public:
    void set_value() {
        finish(outcome::value, [] {});
    }
    void get() { throw_outcome(); }
};

// Owns a suspended coroutine until it resumes it; one that never gets its turn
// is destroyed, and its task ends as cancelled.
class resumer {
public:
    explicit resumer(std::coroutine_handle<> handle) : m_handle(handle) {}
    resumer(resumer&& other) noexcept : m_handle(std::exchange(other.m_handle, nullptr)) {}
    resumer& operator=(resumer&&) = delete;
    ~resumer() {
        if (m_handle) {
            m_handle.destroy();
        }
    }
    void operator()() { std::exchange(m_handle, nullptr).resume(); }
    void release() { m_handle = nullptr; }

private:
    std::coroutine_handle<> m_handle;
};

// Suspends the coroutine until the task ends, then resumes it in `pContext`
// (on the ending thread when that is empty). True when it suspended.
bool suspend_until_done(state_base& state, std::coroutine_handle<> handle,
                        std::shared_ptr<context> pContext);

template <class T>
class task_awaiter {
public:
    task_awaiter(std::shared_ptr<state<T>> pState, std::shared_ptr<context> pContext)
        : m_pState(std::move(pState)), m_pContext(std::move(pContext)) {}
    bool await_ready() const { return m_pState->is_done(); }
    bool await_suspend(std::coroutine_handle<> handle) {
        const std::shared_ptr<state<T>> pState = m_pState; // the awaiter may go before this ends
        return suspend_until_done(*pState, handle, std::move(m_pContext));
    }
    T await_resume() {
        if constexpr (std::is_void_v<T>) {
            m_pState->get();
        } else {
            return m_pState->get();
        }
    }

private:
    std::shared_ptr<state<T>> m_pState;
    std::shared_ptr<context> m_pContext;
};

// As `task_awaiter`, but only waits: the outcome is for the caller to look at.
class settled_awaiter {
public:
    settled_awaiter(std::shared_ptr<state_base> pState, std::shared_ptr<context> pContext)
        : m_pState(std::move(pState)), m_pContext(std::move(pContext)) {}
    bool await_ready() const { return m_pState->is_done(); }
    bool await_suspend(std::coroutine_handle<> handle) {
        const std::shared_ptr<state_base> pState = m_pState;
        return suspend_until_done(*pState, handle, std::move(m_pContext));
    }
    void await_resume() const {}

private:
    std::shared_ptr<state_base> m_pState;
    std::shared_ptr<context> m_pContext;
};

// As `settled_awaiter`, but always through the context's queue.
class in_turn_awaiter {
public:
    in_turn_awaiter(std::shared_ptr<state_base> pState, std::shared_ptr<context> pContext)
        : m_pState(std::move(pState)), m_pContext(std::move(pContext)) {}
    bool await_ready() const { return false; }
    void await_suspend(std::coroutine_handle<> handle) {
        const std::shared_ptr<state_base> pState = m_pState;
        const std::shared_ptr<context> pContext = m_pContext;
        if (!suspend_until_done(*pState, handle, pContext)) {
            pContext->post(priority::normal, work(resumer(handle)));
        }
    }
    void await_resume() const {}

private:
    std::shared_ptr<state_base> m_pState;
    std::shared_ptr<context> m_pContext;
};

template <class T>
class promise_base {
public:
    promise_base() : m_pState(std::make_shared<state<T>>()) {}
    ~promise_base() {
        if (m_pState) { // destroyed while suspended
            m_pState->set_canceled();
        }
    }

    std::suspend_never initial_suspend() const noexcept { return {}; }
    auto final_suspend() noexcept { return final_awaiter(); }
    void unhandled_exception() noexcept { m_pError = std::current_exception(); }

protected:
    // Ends the task when the coroutine's own objects are gone, so that whoever
    // waited finds nothing of it alive.
    class final_awaiter {
    public:
        bool await_ready() const noexcept { return false; }
        template <class Promise>
        void await_suspend(std::coroutine_handle<Promise> handle) const noexcept {
            auto fnEnd = handle.promise().take_end();
            handle.destroy();
            fnEnd();
        }
        void await_resume() const noexcept {}
    };

    static void end_with_error(state<T>& state, const std::exception_ptr& pError) noexcept {
        try {
            std::rethrow_exception(pError);
        } catch (const task_canceled&) {
            state.set_canceled();
        } catch (...) {
            state.set_failure(pError);
        }
    }

    std::shared_ptr<state<T>> m_pState;
    std::exception_ptr m_pError;
};

template <class T>
class promise : public promise_base<T> {
public:
    task<T> get_return_object();
    template <class U>
    void return_value(U&& value) {
        m_value.emplace(std::forward<U>(value));
    }
    auto take_end() noexcept {
        return [pState = std::move(this->m_pState), pError = std::move(this->m_pError),
                value = std::move(m_value)]() mutable {
            if (pError) {
                promise_base<T>::end_with_error(*pState, pError);
            } else {
                pState->set_value(std::move(*value));
            }
        };
    }

private:
    std::optional<T> m_value;
};

template <>
class promise<void> : public promise_base<void> {
public:
    task<void> get_return_object();
    void return_void() const noexcept {}
    auto take_end() noexcept {
        return [pState = std::move(m_pState), pError = std::move(m_pError)]() mutable {
            if (pError) {
                end_with_error(*pState, pError);
            } else {
                pState->set_value();
            }
        };
    }
};

}

template <class T>
class task {
public:
    using promise_type = detail::promise<T>;
    using result_type = T;

    task() = default; // no operation; only to be assigned to
    explicit task(std::shared_ptr<detail::state<T>> pState) : m_pState(std::move(pState)) {}

    bool valid() const { return m_pState != nullptr; }
    bool is_done() const { return m_pState->is_done(); }
    bool is_value() const { return m_pState->result() == detail::outcome::value; }
    bool is_failure() const { return m_pState->result() == detail::outcome::failure; }
    bool is_canceled() const { return m_pState->result() == detail::outcome::canceled; }

    // Blocks until the task has ended, then gives its outcome as `co_await`
    // would. Never on a UI thread.
    decltype(auto) get() const {
        m_pState->wait();
        return m_pState->get();
    }
    void wait() const { m_pState->wait(); }

    detail::task_awaiter<T> operator co_await() const {
        return detail::task_awaiter<T>(m_pState, context::current());
    }

    // Waits without raising; look at the outcome afterwards.
    detail::settled_awaiter settled() const {
        return detail::settled_awaiter(m_pState, context::current());
    }

    // The same, but a task that has ended already does not let the coroutine
    // go on at once: those that wait for tasks which end one after the other
    // resume in that order. Only on a thread with a context.
    detail::in_turn_awaiter settled_in_turn() const {
        return detail::in_turn_awaiter(m_pState, context::current());
    }

    // Waits without raising and goes on on the thread that ended the task.
    detail::settled_awaiter settled_anywhere() const {
        return detail::settled_awaiter(m_pState, nullptr);
    }

    // Says that a failure of the ended task was looked at by other means.
    void mark_observed() const { m_pState->mark_observed(); }

    // A continuation: of the value (skipped when there is none, the outcome
    // passing on), or of the task itself when `F` takes a task.
    template <class F>
    auto then(F fnNext) const;

private:
    std::shared_ptr<detail::state<T>> m_pState;
};

namespace detail {

template <class T>
task<T> promise<T>::get_return_object() {
    return task<T>(this->m_pState);
}

inline task<void> promise<void>::get_return_object() {
    return task<void>(m_pState);
}

template <class F, class T>
struct continuation_result {
    using type = std::invoke_result_t<F, T>;
};
template <class F>
struct continuation_result<F, void> {
    using type = std::invoke_result_t<F>;
};

template <class R, class T, class F>
task<R> continue_with_task(task<T> antecedent, F fnNext) {
    co_await antecedent.settled();
    co_return fnNext(antecedent);
}

template <class R, class T, class F>
task<R> continue_with_value(task<T> antecedent, F fnNext) {
    if constexpr (std::is_void_v<T>) {
        co_await antecedent;
        co_return fnNext();
    } else {
        co_return fnNext(co_await antecedent);
    }
}

class background_awaiter {
public:
    background_awaiter(std::shared_ptr<scheduler> pScheduler, cancellation_token token)
        : m_pScheduler(std::move(pScheduler)), m_token(std::move(token)) {}
    bool await_ready() const { return m_token.is_canceled(); }
    void await_suspend(std::coroutine_handle<> handle) const {
        const std::shared_ptr<scheduler> pScheduler = m_pScheduler;
        pScheduler->schedule(work(resumer(handle)));
    }
    void await_resume() const { m_token.throw_if_canceled(); }

private:
    std::shared_ptr<scheduler> m_pScheduler;
    cancellation_token m_token;
};

class foreground_awaiter {
public:
    foreground_awaiter(std::shared_ptr<context> pContext, priority ePriority)
        : m_pContext(std::move(pContext)), m_ePriority(ePriority) {}
    bool await_ready() const { return false; }
    void await_suspend(std::coroutine_handle<> handle) const {
        const std::shared_ptr<context> pContext = m_pContext;
        pContext->post(m_ePriority, work(resumer(handle)));
    }
    void await_resume() const {}

private:
    std::shared_ptr<context> m_pContext;
    priority m_ePriority;
};

}

template <class T>
template <class F>
auto task<T>::then(F fnNext) const {
    if constexpr (std::is_invocable_v<F, task<T>>) {
        using R = std::invoke_result_t<F, task<T>>;
        return detail::continue_with_task<R>(*this, std::move(fnNext));
    } else {
        using R = typename detail::continuation_result<F, T>::type;
        return detail::continue_with_value<R>(*this, std::move(fnNext));
    }
}

// Moves the coroutine to a pool thread. Raises `task_canceled` when the token
// is cancelled before the thread gets to it.
inline detail::background_awaiter resume_background(
    cancellation_token token = cancellation_token::none()) {
    return detail::background_awaiter(task_pool(), std::move(token));
}

// The same by way of `pScheduler`, for works that keep an order of their own.
inline detail::background_awaiter resume_on(std::shared_ptr<scheduler> pScheduler,
                                            cancellation_token token) {
    return detail::background_awaiter(std::move(pScheduler), std::move(token));
}

// Moves the coroutine into `pContext`, always through its queue.
inline detail::foreground_awaiter resume_foreground(std::shared_ptr<context> pContext,
                                                    priority ePriority = priority::normal) {
    return detail::foreground_awaiter(std::move(pContext), ePriority);
}

// Runs `fnBody` on the pool; cancelled when the token is before it starts.
template <class F>
task<std::invoke_result_t<F>> create_task(F fnBody,
                                          cancellation_token token = cancellation_token::none()) {
    co_await resume_background(std::move(token));
    co_return fnBody();
}

// A task that ends when told to. Copies tell the same task; when the last of
// them goes and nobody has told, the task ends as cancelled.
template <class T>
class task_completion_event {
public:
    task_completion_event()
        : m_pState(std::make_shared<detail::state<T>>()),
          m_pTeller(std::make_shared<const teller>(m_pState)) {}
    template <class... U>
    void set(U&&... value) const {
        m_pState->set_value(std::forward<U>(value)...);
    }
    void set_exception(std::exception_ptr pError) const {
        m_pState->set_failure(std::move(pError));
    }
    void set_canceled() const { m_pState->set_canceled(); }
    task<T> get_task() const { return task<T>(m_pState); }

private:
    class teller {
    public:
        explicit teller(std::shared_ptr<detail::state<T>> pState) : m_pState(std::move(pState)) {}
        teller(const teller&) = delete;
        teller& operator=(const teller&) = delete;
        ~teller() { m_pState->set_canceled(); }

    private:
        std::shared_ptr<detail::state<T>> m_pState;
    };

    std::shared_ptr<detail::state<T>> m_pState;
    std::shared_ptr<const teller> m_pTeller;
};

template <class T, class... U>
task<T> task_from_result(U&&... value) {
    task_completion_event<T> completion;
    completion.set(std::forward<U>(value)...);
    return completion.get_task();
}

// How many tasks of this process have ended as cancelled so far; for tools.
std::uint64_t canceled_task_count();

// Ends when all have ended: with the first failure in list order, else as
// cancelled when one was or the token is by then, else with a value.
task<void> when_all(std::vector<task<void>> tasks,
                    cancellation_token token = cancellation_token::none());

}
