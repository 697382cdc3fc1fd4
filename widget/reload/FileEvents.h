// Tells when something happens to a file: to its bytes, to its name, or to a link's target.
//
// The system is asked on the task pool, as a path may lead to a disk that does not answer.
// What happens on another machine's disk is not told of here; `IsReliable` says so.
// Lifetime: events end with this object. Threads: UI thread only.
#pragma once

#include <QObject>
#include <QPointer>
#include <QSocketNotifier>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/concurrency/Task.h"
#include "widget/FilePath.h"

namespace velko::vkit {

class FileEvents : public QObject {
public:
    enum class Kind { Written, WriterDone };

    // `fnTell` may call back.
    explicit FileEvents(std::function<void(Kind)> fnTell);
    ~FileEvents() override;

    // From now on of this file, which need not be there; again where another file has
    // come to the path.
    void Watch(const FilePath& path);
    void Stop();

    // Whether nothing can happen to the file untold.
    bool IsReliable() const { return m_pWatches && m_pWatches->bComplete; }

private:
    // A folder's entry, or with an empty name the watched thing itself.
    struct Watches {
        ~Watches();
        int nDescriptor = -1;
        std::multimap<int, std::string> names; // by the system's number
        bool bComplete = false;
    };
    using WatchesPtr = std::shared_ptr<const Watches>;

    static WatchesPtr Arm(const std::string& strPath);
    static concurrency::task<void> Begin(QPointer<FileEvents> pSelf, std::string strPath,
                                         int nWatching);
    void Take(WatchesPtr pWatches);
    void Read();

    const std::function<void(Kind)> m_fnTell;
    WatchesPtr m_pWatches;
    std::unique_ptr<QSocketNotifier> m_pNotifier;
    int m_nWatching = 0; // which of the watches asked for counts
};

}
