#include "platform/concurrency/Scheduler.h"

#include <mutex>
#include <utility>

#include "platform/foundation/Exception.h"

namespace concurrency {

namespace {

std::mutex g_poolLock;
std::shared_ptr<scheduler> g_pPool; // guarded by g_poolLock

thread_local std::shared_ptr<context> t_pContext;
thread_local blocking_scope::observer* t_pObserver = nullptr;

}

void set_task_pool(std::shared_ptr<scheduler> pPool) {
    const std::lock_guard<std::mutex> lock(g_poolLock);
    std::swap(g_pPool, pPool);
}

std::shared_ptr<scheduler> task_pool() {
    const std::lock_guard<std::mutex> lock(g_poolLock);
    if (!g_pPool) {
        throw Platform::Exception(Platform::E_FAIL, "no task pool is installed");
    }
    return g_pPool;
}

std::shared_ptr<context> context::current() {
    return t_pContext;
}

context::scope::scope(std::shared_ptr<context> pContext)
    : m_pBefore(std::exchange(t_pContext, std::move(pContext))) {}

context::scope::~scope() {
    t_pContext = std::move(m_pBefore);
}

blocking_scope::blocking_scope() : m_pObserver(t_pObserver) {
    if (m_pObserver != nullptr) {
        m_pObserver->begin_blocking();
    }
}

blocking_scope::~blocking_scope() {
    if (m_pObserver != nullptr) {
        m_pObserver->end_blocking();
    }
}

void blocking_scope::set_thread_observer(observer* pObserver) {
    t_pObserver = pObserver;
}

}
