// The platform of a process on Qt: the UI thread's dispatcher, the task pool,
// the environment and the application's data, in force for the whole process.
//
// Lifetime: one at a time; it may be made before the application object. What
// uses the platform goes before it. It ends in one order: the pool is joined, so
// that nothing posts any more; what was posted is dropped; the data is stored as
// far as it is not yet; then the data, the
// environment and a folder of its own go. A constructor that raises leaves
// nothing in force. Threads: the UI thread.
#pragma once

#include <QTemporaryDir>
#include <memory>
#include <optional>
#include <string>

#include "platform/concurrency/ThreadPool.h"
#include "platform/qt/QtEnvironment.h"

namespace Platform::Qt {

class QtRuntime {
public:
    explicit QtRuntime(QtEnvironment::Options options);
    ~QtRuntime();
    QtRuntime(const QtRuntime&) = delete;
    QtRuntime& operator=(const QtRuntime&) = delete;

    // Makes the application's data of this folder the process's. Whatever is
    // wrong with the folder, the data can be used.
    void UseData(const std::string& strFolder);
    // The same with a new folder, which goes with the runtime. A name like
    // "velko-XXXXXX": an unused one takes the place of the last six letters.
    void UseTemporaryData(const std::string& strNameTemplate);

    const std::shared_ptr<QtEnvironment>& Environment() const { return m_pEnvironment; }
    concurrency::ThreadPool& Pool() const { return *m_pPool; }

private:
    void StoreData();

    std::optional<QTemporaryDir> m_ownFolder;
    bool m_bHasData = false;
    const std::shared_ptr<QtDispatcher> m_pDispatcher;
    const std::shared_ptr<concurrency::ThreadPool> m_pPool;
    const std::shared_ptr<QtEnvironment> m_pEnvironment;
};

}
