#include "widget/reload/FileWatch.h"

#include <utility>

#include "platform/storage/StorageFile.h"

namespace velko::vkit {

using Version = Settling::Version;
using Windows::Storage::StorageFile;

namespace {

constexpr int kPollMs = 2'000;    // where the system may not tell
constexpr int kSafetyMs = 60'000; // where it does

}

FileWatch::FileWatch() : m_events([this](FileEvents::Kind eKind) { OnEvent(eKind); }) {
    m_clock.start();
    m_next.setSingleShot(true);
    m_next.callOnTimeout(this, &FileWatch::Look);
    m_poll.callOnTimeout(this, &FileWatch::OnPoll);
}

void FileWatch::Begin(const FilePath& path, const std::optional<Version>& version) {
    End();
    m_path = path;
    m_bRunning = true;
    m_bTakeNext = !version;
    if (version) {
        m_settling.Show(*version);
    }
    m_watched = version;
    m_events.Watch(path); // and looks, once the watches stand
    if (!version) {
        Look();
    }
}

void FileWatch::End() {
    m_bRunning = false;
    m_bLooking = false;
    m_bLookAgain = false;
    ++m_nLooks;
    m_next.stop();
    m_poll.stop();
    m_events.Stop();
    m_settling = Settling();
}

// A look that is under way may have come too early for it.
void FileWatch::TakeNext() {
    m_bTakeNext = true;
    m_bLooking = false;
    ++m_nLooks;
    Look();
}

void FileWatch::Refuse(const Version& version) {
    m_settling.Refuse(version);
}

void FileWatch::Doubt(const Version& version) {
    m_settling.Doubt(version, Now());
    Look();
}

void FileWatch::OnEvent(FileEvents::Kind eKind) {
    m_settling.Touch(Now(), eKind == FileEvents::Kind::WriterDone);
    Look();
}

// Its folder may be another one by now, or may have come back.
void FileWatch::OnPoll() {
    if (m_watched && m_events.IsReliable()) {
        Look();
    } else {
        m_events.Watch(m_path); // and looks
    }
}

void FileWatch::Look() {
    if (!m_bRunning) {
        return;
    }
    m_next.stop();
    m_poll.start(m_watched && m_events.IsReliable() ? kSafetyMs : kPollMs);
    if (m_bLooking) {
        m_bLookAgain = true;
        return;
    }
    m_bLooking = true;
    LookAt(this, m_path.Bytes(), ++m_nLooks);
}

concurrency::task<void> FileWatch::LookAt(QPointer<FileWatch> pSelf, std::string strPath,
                                          int nLooks) {
    const auto looking = StorageFile::FromPath(strPath)->GetVersionAsync().AsTask();
    co_await looking.settled();
    looking.mark_observed();
    if (pSelf && pSelf->m_nLooks == nLooks) {
        pSelf->m_bLooking = false;
        pSelf->OnFound(looking.is_value() ? std::optional(looking.get()) : std::nullopt);
    }
}

void FileWatch::OnFound(const std::optional<Version>& found) {
    FollowFile(found);
    if (found && std::exchange(m_bTakeNext, false)) {
        m_settling.Show(*found);
    }
    const bool bAgain = std::exchange(m_bLookAgain, false);
    const Settling::Next next = m_settling.Note(found, Now());
    if (bAgain && next.eWhat != Settling::What::Wait) {
        m_next.start(0); // and nothing is told of what is old already
    } else {
        Tell(next);
    }
}

// Another file at the path has its own events.
void FileWatch::FollowFile(const std::optional<Version>& found) {
    const bool bOther = found && (!m_watched || m_watched->File != found->File ||
                                  m_watched->Device != found->Device);
    m_watched = found;
    if (bOther) {
        m_events.Watch(m_path);
    } else if (!found) {
        m_poll.start(kPollMs);
    }
}

void FileWatch::Tell(const Settling::Next& next) {
    switch (next.eWhat) {
        case Settling::What::Wait:
            m_next.start(next.wait);
            break;
        case Settling::What::Known:
            emit Known();
            break;
        case Settling::What::Refused:
            emit Refused();
            break;
        case Settling::What::Settled:
        case Settling::What::Final:
            emit Settled(next.eWhat == Settling::What::Final);
            break;
        case Settling::What::Gone:
            emit Gone();
            break;
    }
}

}
