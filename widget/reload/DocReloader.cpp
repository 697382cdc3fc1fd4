#include "widget/reload/DocReloader.h"

#include <utility>

#include "platform/storage/StorageFile.h"
#include "widget/reload/OpenedFile.h"

namespace velko::vkit {

using Kind = JudgedFile::Kind;

namespace {

constexpr int kDelayMs = 400;
constexpr int kRetryMs = 100;
constexpr int kPrepareMs = 150; // at the longest

}

DocReloader::DocReloader(Hands hands) : m_hands(std::move(hands)) {
    m_delay.setSingleShot(true);
    m_delay.setInterval(kDelayMs);
    m_delay.callOnTimeout(this, &DocReloader::Follow);
    m_retry.setSingleShot(true);
    m_retry.setInterval(kRetryMs);
    m_retry.callOnTimeout(this, [this] { m_ready ? Try() : m_watch.Look(); });
    m_preparing.setSingleShot(true);
    m_preparing.setInterval(kPrepareMs);
    m_preparing.callOnTimeout(this, &DocReloader::Try);
    connect(&m_watch, &FileWatch::Known, this, [this] {
        SetReady({}); // what had come is gone again
        m_bChanging = false;
        Tell(Why::None);
    });
    connect(&m_watch, &FileWatch::Refused, this, &DocReloader::Try);
    connect(&m_watch, &FileWatch::Settled, this, &DocReloader::OnSettled);
    connect(&m_watch, &FileWatch::Gone, this, [this] {
        SetReady({});
        Tell(Why::Gone);
    });
}

void DocReloader::Begin(const FilePath& path, std::shared_ptr<OpenedFile> pFile,
                        Platform::SecretText password) {
    End();
    m_path = path;
    m_pOpened = std::move(pFile);
    m_password = Platform::MaskedText(password.Text());
    if (!path.IsEmpty()) {
        m_delay.start();
    }
}

void DocReloader::End() {
    ++m_nDocument;
    m_delay.stop();
    m_retry.stop();
    m_watch.End();
    m_pOpened.reset();
    SetReady({});
    m_bForce = false;
    m_bJudging = false;
    m_bChanging = false;
    Tell(Why::None);
}

void DocReloader::Follow() {
    Start(this, std::exchange(m_pOpened, nullptr), m_nDocument);
}

// With the version that the document was opened with, which the path may not name any more.
concurrency::task<void> DocReloader::Start(QPointer<DocReloader> pSelf,
                                           std::shared_ptr<OpenedFile> pFile, int nDocument) {
    const auto pPinned = pFile ? pFile->Pinned() : nullptr;
    if (!pPinned) {
        pSelf->m_watch.Begin(pSelf->m_path, std::nullopt);
        co_return;
    }
    const auto asking = pPinned->GetVersionAsync().AsTask();
    co_await asking.settled();
    asking.mark_observed();
    if (pSelf && pSelf->m_nDocument == nDocument) {
        pSelf->m_watch.Begin(pSelf->m_path,
                             asking.is_value() ? std::optional(asking.get()) : std::nullopt);
    }
}

void DocReloader::SetAutomatic(bool bAutomatic) {
    m_bAutomatic = bAutomatic;
    Try();
}

void DocReloader::TakeSaved() {
    SetReady({});
    m_bForce = false;
    if (m_watch.IsRunning()) {
        m_watch.TakeNext();
    } else if (m_delay.isActive()) {
        m_delay.stop();
        m_pOpened.reset(); // whose version is not the one that is shown
        Follow();
    }
}

void DocReloader::ReloadNow() {
    if (m_path.IsEmpty()) {
        return;
    }
    m_bForce = true;
    if (m_ready) {
        Try();
    } else if (!m_bJudging) {
        m_bJudging = true;
        Judge(this, true, m_nDocument);
    }
}

// --- another version -------------------------------------------------------

void DocReloader::OnSettled(bool bFinal) {
    m_bChanging = true;
    if (!m_bJudging && !m_hands.fnIsBusy()) {
        m_bJudging = true;
        Judge(this, bFinal, m_nDocument);
    } else if (!m_bJudging) {
        m_retry.start();
    }
}

concurrency::task<void> DocReloader::Judge(QPointer<DocReloader> pSelf, bool bFinal,
                                           int nDocument) {
    const auto judging = JudgeFile(pSelf->m_path, pSelf->m_password.Reveal());
    const JudgedFile judged = co_await judging;
    if (pSelf && pSelf->m_nDocument == nDocument) {
        pSelf->m_bJudging = false;
        pSelf->OnJudged(judged, bFinal);
    }
}

void DocReloader::OnJudged(const JudgedFile& judged, bool bFinal) {
    const bool bUnfinished = judged.eKind == Kind::Broken ||
                             (judged.eKind == Kind::Repaired && !m_hands.fnWasRepaired());
    if (judged.eKind == Kind::Unread) {
        OnUnread();
    } else if (bUnfinished && !bFinal) {
        m_watch.Doubt(judged.version);
    } else if (judged.eKind == Kind::Broken) {
        m_bForce = false;
        m_bChanging = false;
        SetReady({});
        m_watch.Refuse(judged.version);
        Tell(Why::Broken);
    } else {
        SetReady(judged);
        m_watch.Refuse(judged.version); // it need not be told again
        Try();
    }
}

void DocReloader::OnUnread() {
    if (std::exchange(m_bForce, false)) {
        Tell(Why::Gone);
    }
    m_retry.start(); // and look again
}

DocReloader::Why DocReloader::Hindrance() const {
    if (m_bForce) {
        return Why::None;
    }
    if (m_hands.fnIsEdited()) {
        return Why::Edited;
    }
    if (m_ready->eKind == Kind::Locked) {
        return Why::Locked;
    }
    return m_bAutomatic ? Why::None : Why::Off;
}

void DocReloader::Try() {
    if (!m_ready) {
        return;
    }
    const Why eHindrance = Hindrance();
    Tell(eHindrance);
    if (eHindrance != Why::None) {
        return;
    }
    if (m_hands.fnIsBusy()) {
        m_retry.start();
        return;
    }
    if (!std::exchange(m_bPrepared, true)) {
        Prepare();
        return;
    }
    if (m_preparing.isActive()) {
        return;
    }
    m_bForce = false;
    const JudgedFile ready = *m_ready;
    SetReady({});
    m_hands.fnReload(ready.pFile); // which begins with another document
}

void DocReloader::SetReady(std::optional<JudgedFile> ready) {
    ++m_nReady;
    m_preparing.stop();
    m_bPrepared = false;
    m_ready = std::move(ready);
}

void DocReloader::Prepare() {
    m_preparing.start();
    const auto fnDone = [pThis = QPointer<DocReloader>(this), nReady = m_nReady] {
        if (pThis && pThis->m_nReady == nReady && pThis->m_preparing.isActive()) {
            pThis->m_preparing.stop();
            pThis->Try();
        }
    };
    m_hands.fnPrepare(*m_ready, fnDone);
}

void DocReloader::OnFailed() {
    m_bForce = false;
    m_watch.Refuse({});
    m_watch.Look();
}

void DocReloader::Tell(Why eWhy) {
    if (std::exchange(m_eWhy, eWhy) != eWhy) {
        emit Changed();
    }
}

}
