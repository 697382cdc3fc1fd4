// What the viewer control needs around it in a Qt process: the UI dispatcher,
// the task pool, the machine's facts, the settings store and the engine.
//
// Make one at the start of `main`, before any view; it may come before the
// application object, so that a document opens while Qt still starts. It goes
// after the last view: it joins the pool and drops what was posted.
// Threads: UI thread only. One at a time.
#pragma once

#include <QString>
#include <QTemporaryDir>
#include <memory>

#include "platform/qt/QtEnvironment.h"

namespace concurrency {
class ThreadPool;
}

namespace velko::vkit {

class VelkoRuntime {
public:
    struct Options {
        // Settings and the recently used list; empty: a folder of this
        // component in the user's data folder. Where it cannot be used, a folder
        // for the runtime's length stands in, and the debug output tells.
        QString strDataFolder;
        Platform::Qt::QtEnvironment::Options environment;
        bool bDebugOutput = false; // the debug output goes to standard error
    };

    VelkoRuntime();
    explicit VelkoRuntime(Options options);
    ~VelkoRuntime();
    VelkoRuntime(const VelkoRuntime&) = delete;
    VelkoRuntime& operator=(const VelkoRuntime&) = delete;

    // The runtime's environment; raises when there is no runtime.
    static std::shared_ptr<Platform::Qt::QtEnvironment> Environment();

private:
    void OpenData(const QString& strFolder);

    std::unique_ptr<QTemporaryDir> m_pStandIn; // for a data folder that cannot be used
    std::shared_ptr<Platform::Qt::QtDispatcher> m_pDispatcher;
    std::shared_ptr<concurrency::ThreadPool> m_pPool;
};

}
