// Follows the file of a shown document and tells when another version of it has settled,
// and when it has gone.
//
// Looks at the file when something happens to it, and from time to time where the system
// may not tell; each look is made on the threads of file operations.
// Threads: UI thread only. Errors: none is raised; what cannot be read counts as gone.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <optional>

#include "platform/concurrency/Task.h"
#include "widget/FilePath.h"
#include "widget/reload/FileEvents.h"
#include "widget/reload/Settling.h"

namespace velko::vkit {

class FileWatch : public QObject {
    Q_OBJECT

public:
    FileWatch();

    // `version` is what is shown of it; empty: what is found first is.
    void Begin(const FilePath& path, const std::optional<Settling::Version>& version);
    void End();
    bool IsRunning() const { return m_bRunning; }

    // What is found next is what is shown.
    void TakeNext();
    // As `Settling`.
    void Refuse(const Settling::Version& version);
    void Doubt(const Settling::Version& version);
    void Look();

signals:
    void Known();
    void Refused();
    void Settled(bool bFinal);
    void Gone();

private:
    static concurrency::task<void> LookAt(QPointer<FileWatch> pSelf, std::string strPath,
                                          int nLooks);
    void OnEvent(FileEvents::Kind eKind);
    void OnFound(const std::optional<Settling::Version>& found);
    void OnPoll();
    void FollowFile(const std::optional<Settling::Version>& found);
    void Tell(const Settling::Next& next);
    Settling::Time Now() const { return Settling::Time(m_clock.elapsed()); }

    FilePath m_path;
    FileEvents m_events;
    Settling m_settling;
    QElapsedTimer m_clock;
    QTimer m_next; // look
    QTimer m_poll;
    std::optional<Settling::Version> m_watched; // the file that events tell of
    bool m_bRunning = false;
    bool m_bTakeNext = false;
    bool m_bLooking = false;
    bool m_bLookAgain = false; // something came up meanwhile
    int m_nLooks = 0;          // which of them counts
};

}
