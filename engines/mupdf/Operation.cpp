#include "engines/mupdf/Operation.h"

#include <cstdint>
#include <utility>

#include "platform/concurrency/Cancellation.h"

namespace velko::engines::mupdf {

namespace {

constexpr unsigned kPollsPerClock = 16;

thread_local Operation* t_pOperation = nullptr;
thread_local common::IPauseCallback* t_pPause = nullptr;

std::atomic<std::int64_t> g_nParseBudget{Budgets().parse.count()};
std::atomic<std::int64_t> g_nRenderBudget{Budgets().render.count()};
std::atomic<std::int64_t> g_nTableBudget{Budgets().table.count()};

}

Budgets CurrentBudgets() {
    return {std::chrono::milliseconds(g_nParseBudget.load()),
            std::chrono::milliseconds(g_nRenderBudget.load()),
            std::chrono::milliseconds(g_nTableBudget.load())};
}

void SetBudgets(const Budgets& budgets) {
    g_nParseBudget = budgets.parse.count();
    g_nRenderBudget = budgets.render.count();
    g_nTableBudget = budgets.table.count();
}

Operation::Operation(AbortFlag pAbort, Clock::duration budget)
    : m_pOuter(t_pOperation), m_pAbort(std::move(pAbort)), m_deadline(Clock::now() + budget) {
    t_pOperation = this;
}

Operation::~Operation() {
    t_pOperation = m_pOuter;
}

void Operation::ThrowIfAborted() const {
    if (IsAborted()) {
        throw concurrency::task_canceled();
    }
    if (m_bPaused) {
        throw Paused();
    }
}

Operation::Waiting::~Waiting() {
    const Clock::duration waited = Clock::now() - m_start;
    for (Operation* pOperation = t_pOperation; pOperation != nullptr;
         pOperation = pOperation->m_pOuter) {
        pOperation->m_deadline += waited;
    }
}

void Operation::Poll() noexcept {
    Operation* const pOperation = t_pOperation;
    if (pOperation == nullptr || pOperation->m_cookie.abort != 0) {
        return;
    }
    if (pOperation->IsAborted()) {
        pOperation->m_cookie.abort = 1;
    } else if (++pOperation->m_nPolls % kPollsPerClock == 0) {
        pOperation->LookAtClock();
    }
}

void Operation::LookAtClock() noexcept {
    if (t_pPause != nullptr && t_pPause->NeedToPauseNow()) {
        m_bPaused = true;
        m_cookie.abort = 1;
    } else if (Clock::now() > m_deadline) {
        m_bTimedOut = true;
        m_cookie.abort = 1;
    }
}

Operation::Patience::Patience(common::IPauseCallback* pPause)
    : m_pOuter(std::exchange(t_pPause, pPause)) {}

Operation::Patience::~Patience() {
    t_pPause = m_pOuter;
}

}
