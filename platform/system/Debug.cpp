#include "platform/system/Debug.h"

#include <memory>
#include <mutex>
#include <utility>

namespace Platform::Debug {

namespace {

struct SinkSlot {
    std::mutex lock;
    std::shared_ptr<Sink> pSink;
};

SinkSlot& Slot() {
    static SinkSlot* const s_pSlot = new SinkSlot; // outlives threads that log during exit
    return *s_pSlot;
}

}

void OutputDebugString(std::string_view strText) {
    std::shared_ptr<Sink> pSink;
    {
        const std::lock_guard<std::mutex> lock(Slot().lock);
        pSink = Slot().pSink;
    }
    if (pSink && *pSink) {
        (*pSink)(strText);
    }
}

Sink SetSink(Sink fnSink) {
    auto pNew = std::make_shared<Sink>(std::move(fnSink));
    const std::lock_guard<std::mutex> lock(Slot().lock);
    std::swap(Slot().pSink, pNew);
    return pNew ? *pNew : Sink();
}

}
