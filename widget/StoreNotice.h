// Tells a view that settings and places cannot be stored at present.
//
// What was told before the view was there is told to it too, once it has been
// made. Lifetime: after the runtime, before or after the data.
// Threads: UI thread only; `fnTell` is called from its event loop.
#pragma once

#include <QString>
#include <functional>
#include <memory>

#include "platform/storage/ApplicationData.h"

namespace velko::vkit {

class StoreNotice {
public:
    using Failure = Windows::Storage::StoreFailure;
    using Tell = std::function<void(const Failure&)>;

    explicit StoreNotice(Tell fnTell);
    ~StoreNotice();
    StoreNotice(const StoreNotice&) = delete;
    StoreNotice& operator=(const StoreNotice&) = delete;

    // What a reader is told, and what to do about it.
    static QString TextOf(const Failure& failure);

private:
    const std::shared_ptr<const Tell> m_pTell; // gone: there is nobody left to tell
    std::weak_ptr<Windows::Storage::ApplicationData> m_wkData;
    Windows::Foundation::EventRegistrationToken m_token;
};

}
