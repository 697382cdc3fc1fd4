// A fair, recursive lock, and an event to wait for.
//
// Threads that wait for a `critical_section` get it in the order in which they
// came. The thread that holds it may take it again. A thread of the task pool
// that has to wait tells the pool so. The lock is annotated: clang checks that
// guarded fields are touched under it.
#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#if defined(__clang__)
#define VLK_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define VLK_THREAD_ANNOTATION(x)
#endif
#define VLK_CAPABILITY(x) VLK_THREAD_ANNOTATION(capability(x))
#define VLK_SCOPED_CAPABILITY VLK_THREAD_ANNOTATION(scoped_lockable)
#define VLK_GUARDED_BY(x) VLK_THREAD_ANNOTATION(guarded_by(x))
#define VLK_REQUIRES(...) VLK_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define VLK_EXCLUDES(...) VLK_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))
#define VLK_ACQUIRE(...) VLK_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define VLK_RELEASE(...) VLK_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define VLK_NO_THREAD_SAFETY_ANALYSIS VLK_THREAD_ANNOTATION(no_thread_safety_analysis)

namespace concurrency {

class VLK_CAPABILITY("mutex") critical_section {
public:
    critical_section() = default;
    critical_section(const critical_section&) = delete;
    critical_section& operator=(const critical_section&) = delete;

    void lock() VLK_ACQUIRE();
    void unlock() VLK_RELEASE();
    bool is_held_by_caller() const;

    class VLK_SCOPED_CAPABILITY scoped_lock {
    public:
        explicit scoped_lock(critical_section& section) VLK_ACQUIRE(section) : m_section(section) {
            m_section.lock();
        }
        ~scoped_lock() VLK_RELEASE() { m_section.unlock(); }
        scoped_lock(const scoped_lock&) = delete;
        scoped_lock& operator=(const scoped_lock&) = delete;

    private:
        critical_section& m_section;
    };

private:
    struct waiter {
        std::condition_variable granted;
        bool bGranted = false;
        std::thread::id idThread;
    };

    mutable std::mutex m_mutex;
    std::thread::id m_idOwner;
    int m_nDepth = 0;
    std::deque<waiter*> m_waiters; // in order of arrival
};

// Auto-reset: `set` lets one `wait` through, now or later.
class event {
public:
    void set();
    void wait();

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_bSet = false;
};

}
