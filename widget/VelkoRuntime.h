// What the viewer control needs around it in a Qt process: the platform on Qt,
// the settings store, an engine and the component.
//
// Make one at the start of `main`, before any view; it may come before the
// application object, so that a document opens while Qt still starts. It goes
// after the last view: it joins the pool and drops what was posted.
// Threads: UI thread only. One at a time.
#pragma once

#include <QString>
#include <functional>
#include <memory>

#include "platform/qt/QtRuntime.h"

namespace velko::vkit {

class VelkoRuntime {
public:
    struct Options {
        // Registers the engine that opens the documents, such as
        // `velko::engines::mupdf::RegisterEngine`. Empty: the program has done so.
        std::function<void()> fnRegisterEngine{};
        // Settings and the recently used list; empty: a folder of this
        // component in the user's data folder. Where it cannot be used, settings
        // last as long as the runtime (see `ApplicationData::StoreFailed`).
        QString strDataFolder{};
        Platform::Qt::QtEnvironment::Options environment{};
        bool bDebugOutput = false; // the debug output goes to standard error
    };

    explicit VelkoRuntime(Options options);
    ~VelkoRuntime();
    VelkoRuntime(const VelkoRuntime&) = delete;
    VelkoRuntime& operator=(const VelkoRuntime&) = delete;

    // The runtime's environment; raises when there is no runtime.
    static std::shared_ptr<Platform::Qt::QtEnvironment> Environment();

private:
    Platform::Qt::QtRuntime m_platform;
};

}
