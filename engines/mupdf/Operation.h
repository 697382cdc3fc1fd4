// The limits of one piece of engine work: an abort flag and a time budget.
//
// The library's cookie stops a drawing, but somebody has to set it. Instead of
// a thread that watches, the working thread looks itself: the library calls
// our locks, our allocator and our reader all the time, and each of these
// calls `Poll`. So a stop is seen within a few drawing steps, and no other
// thread touches the cookie.
//
// Time in which the thread waits for bytes counts against no budget: a slow
// disk makes a page late, never incomplete.
//
// Threads: an operation belongs to the thread that made it; operations of a
// thread nest, the inner one is polled.
#pragma once

#include <mupdf/fitz.h>

#include <atomic>
#include <chrono>
#include <memory>

#include "document/engine/Progressive.h"

namespace velko::engines::mupdf {

// How long one piece of work may take before what it has done must do.
struct Budgets {
    std::chrono::milliseconds parse{10'000};  // a page's content, or its annotations
    std::chrono::milliseconds render{20'000}; // a drawing of one list
    // Page sizes read ahead while a file opens, waits included: what is not
    // read by then is read when it is asked for.
    std::chrono::milliseconds table{150};
};

// Those of the process. Threads: any; work under way keeps its own.
Budgets CurrentBudgets();
void SetBudgets(const Budgets& budgets);

class Operation {
public:
    using Clock = std::chrono::steady_clock;
    using AbortFlag = std::shared_ptr<const std::atomic<bool>>;

    Operation(AbortFlag pAbort, Clock::duration budget);
    ~Operation();
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

    fz_cookie* Cookie() { return &m_cookie; }

    bool IsAborted() const { return m_pAbort && m_pAbort->load(std::memory_order_acquire); }
    bool IsTimedOut() const { return m_bTimedOut; }

    // Raises `task_canceled` when the flag is set, `Paused` when the thread's caller
    // would not wait any longer.
    void ThrowIfAborted() const;

    // No failure: the work is to be done at another time.
    struct Paused {};

    // For its length the operations of the thread stop when the callback says so; it
    // may be empty.
    class Patience {
    public:
        explicit Patience(common::IPauseCallback* pPause);
        ~Patience();
        Patience(const Patience&) = delete;
        Patience& operator=(const Patience&) = delete;

    private:
        common::IPauseCallback* const m_pOuter;
    };

    // For its length the thread waits for bytes.
    class Waiting {
    public:
        Waiting() : m_start(Clock::now()) {}
        ~Waiting();
        Waiting(const Waiting&) = delete;
        Waiting& operator=(const Waiting&) = delete;

    private:
        Clock::time_point m_start;
    };

    // Looks at the flag and, now and then, at the clock. Cheap; never raises.
    static void Poll() noexcept;

private:
    void LookAtClock() noexcept;

    Operation* m_pOuter;
    AbortFlag m_pAbort;
    Clock::time_point m_deadline;
    unsigned m_nPolls = 0;
    bool m_bTimedOut = false;
    bool m_bPaused = false;
    fz_cookie m_cookie{};
};

}
