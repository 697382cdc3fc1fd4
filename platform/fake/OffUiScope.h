// Makes a stretch of a test's thread count as some other thread than the UI's.
//
// A test steps everything on one thread. Pool works and file completions hide
// the UI context while they run, so that code which asks where it is gets the
// answer that it would get in the real process.
#pragma once

#include "platform/concurrency/Scheduler.h"

namespace Platform::Fake {

class OffUiScope {
public:
    OffUiScope();
    ~OffUiScope();
    OffUiScope(const OffUiScope&) = delete;
    OffUiScope& operator=(const OffUiScope&) = delete;

    // True inside such a scope on the calling thread.
    static bool IsActive();

private:
    concurrency::context::scope m_hidden;
};

// The way back, for what the UI thread does inside such a scope.
class OnUiScope {
public:
    explicit OnUiScope(std::shared_ptr<concurrency::context> pContext);
    ~OnUiScope();
    OnUiScope(const OnUiScope&) = delete;
    OnUiScope& operator=(const OnUiScope&) = delete;

private:
    int m_nDepthBefore;
    concurrency::context::scope m_shown;
};

}
