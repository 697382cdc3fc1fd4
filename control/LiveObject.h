// Counts the objects that keep the component in use, so that its host can ask
// whether it may be unloaded.
//
// Threads: any.
#pragma once

#include <atomic>

namespace velko::vkit {

class LiveObject {
public:
    static int Count() { return s_nCount.load(std::memory_order_relaxed); }

protected:
    LiveObject() { s_nCount.fetch_add(1, std::memory_order_relaxed); }
    ~LiveObject() { s_nCount.fetch_sub(1, std::memory_order_relaxed); }
    LiveObject(const LiveObject&) = delete;
    LiveObject& operator=(const LiveObject&) = delete;

private:
    static inline std::atomic<int> s_nCount{0};
};

}
