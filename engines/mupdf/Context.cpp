#include "engines/mupdf/Context.h"

#include <array>
#include <mutex>

#include "document/engine/ErrorCode.h"
#include "engines/mupdf/Allocator.h"
#include "engines/mupdf/Operation.h"

namespace velko::engines::mupdf {

namespace {

using common::EngineException;
using common::ErrorCode;

constexpr std::size_t kStoreBytes = std::size_t{96} << 20;

// Plain mutexes: the library takes them in its innermost loops, and its rules
// keep them leaves.
std::array<std::mutex, FZ_LOCK_MAX> g_locks;

void Lock(void*, int nLock) {
    Operation::Poll();
    g_locks[static_cast<std::size_t>(nLock)].lock();
}

void Unlock(void*, int nLock) {
    g_locks[static_cast<std::size_t>(nLock)].unlock();
}

// What the library warns about may quote the file's content; nobody hears it.
void Ignore(void*, const char*) {}

fz_context* NewBaseContext() {
    static const fz_locks_context locks = {nullptr, &Lock, &Unlock};
    fz_context* const ctx = fz_new_context(CappedAllocator(), &locks, kStoreBytes);
    if (ctx == nullptr) {
        throw EngineException(ErrorCode::e_ErrOutOfMemory, "no memory for the engine");
    }
    fz_set_warning_callback(ctx, &Ignore, nullptr);
    fz_set_error_callback(ctx, &Ignore, nullptr);
    return ctx;
}

fz_context* BaseContext() {
    static fz_context* const ctx = NewBaseContext(); // never dropped, see the header
    return ctx;
}

std::mutex g_cloneLock; // cloning reads what a thread that clones may write

class Clone {
public:
    Clone() {
        fz_context* const ctxBase = BaseContext();
        const std::scoped_lock lock(g_cloneLock);
        m_ctx = fz_clone_context(ctxBase);
        if (m_ctx == nullptr) {
            throw EngineException(ErrorCode::e_ErrOutOfMemory, "no memory for a thread");
        }
    }
    ~Clone() { fz_drop_context(m_ctx); }
    Clone(const Clone&) = delete;
    Clone& operator=(const Clone&) = delete;
    fz_context* Get() const { return m_ctx; }

private:
    fz_context* m_ctx;
};

}

fz_context* ThreadContext() {
    static thread_local const Clone clone;
    return clone.Get();
}

void EmptyStore() {
    fz_empty_store(ThreadContext());
}

}
