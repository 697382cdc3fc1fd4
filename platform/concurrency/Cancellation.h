// Cancellation: a source asks, tokens tell.
//
// Asking is all that a source does; the work ends by itself where it looks at
// its token. A source cannot be used again once cancelled: put a fresh one in
// its place. Threads: any.
#pragma once

#include <atomic>
#include <exception>
#include <memory>
#include <utility>

namespace concurrency {

// The third outcome of a task beside a value and a failure.
class task_canceled : public std::exception {
public:
    const char* what() const noexcept override { return "task cancelled"; }
};

class cancellation_token {
public:
    // A token that is never cancelled.
    static cancellation_token none() { return cancellation_token(nullptr); }

    bool is_canceled() const { return m_pFlag && m_pFlag->load(std::memory_order_acquire); }

    void throw_if_canceled() const {
        if (is_canceled()) {
            throw task_canceled();
        }
    }

    // The flag itself, for code that polls it (an engine's abort); empty for `none`.
    std::shared_ptr<const std::atomic<bool>> flag() const { return m_pFlag; }

private:
    friend class cancellation_token_source;
    explicit cancellation_token(std::shared_ptr<const std::atomic<bool>> pFlag)
        : m_pFlag(std::move(pFlag)) {}

    std::shared_ptr<const std::atomic<bool>> m_pFlag;
};

class cancellation_token_source {
public:
    cancellation_token_source() : m_pFlag(std::make_shared<std::atomic<bool>>(false)) {}

    // A source that is absent: it gives `none` and cannot be cancelled.
    static cancellation_token_source absent() { return cancellation_token_source(nullptr); }

    bool is_live() const { return m_pFlag != nullptr; }
    bool is_canceled() const { return m_pFlag && m_pFlag->load(std::memory_order_acquire); }
    cancellation_token get_token() const { return cancellation_token(m_pFlag); }
    void cancel() const {
        if (m_pFlag) {
            m_pFlag->store(true, std::memory_order_release);
        }
    }

    // Cancels a live source and puts a fresh one in its place; a source that
    // is absent or already cancelled stays as it is. Returns whether it did.
    bool renew() {
        if (!is_live() || is_canceled()) {
            return false;
        }
        cancel();
        m_pFlag = std::make_shared<std::atomic<bool>>(false);
        return true;
    }

private:
    explicit cancellation_token_source(std::nullptr_t) {}

    std::shared_ptr<std::atomic<bool>> m_pFlag;
};

}
