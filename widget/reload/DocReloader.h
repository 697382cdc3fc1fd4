// Shows a document anew when its file has changed.
//
// It waits until the writer is done and what was written opens; until then, and for as
// long as the file cannot be read, what was shown last stays. A reader who is in the
// middle of a movement, an edit that runs and a save are waited for. Nothing is shown anew
// by itself over changes that are not saved, where a password would be asked for, or where
// it is switched off: `Why` tells then, and `ReloadNow` does it on purpose.
//
// Threads: UI thread only. Errors: none is raised.
#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>

#include "platform/foundation/SecretText.h"
#include "widget/reload/FileJudge.h"
#include "widget/reload/FileWatch.h"

namespace velko::vkit {

class OpenedFile;

class DocReloader : public QObject {
    Q_OBJECT

public:
    // Why another version of the file is not shown.
    enum class Why {
        None,   // there is none, or it comes by itself
        Gone,   // the file cannot be read any more
        Broken, // it can, but not be shown
        Edited, // changes are not saved
        Locked, // it asks for a password
        Off
    };
    Q_ENUM(Why)

    struct Hands {
        std::function<bool()> fnIsBusy;   // a movement, an open, an edit or a save
        std::function<bool()> fnIsEdited; // and not saved
        std::function<bool()> fnWasRepaired;
        // Looks for the reader's place in what is ready, while the document before is
        // shown yet, and says when that is done; nobody waits for it for long.
        std::function<void(const JudgedFile& ready, std::function<void()> fnDone)> fnPrepare;
        // Gives a document that is shown at the place of the one before.
        std::function<void(std::shared_ptr<OpenedFile>)> fnReload;
    };
    explicit DocReloader(Hands hands);

    // A document is shown, whose file this is. The file is followed after a while, so that
    // nothing stands between the start and the page.
    void Begin(const FilePath& path, std::shared_ptr<OpenedFile> pFile,
               Platform::SecretText password);
    void End();

    // Off at first.
    void SetAutomatic(bool bAutomatic);
    bool IsAutomatic() const { return m_bAutomatic; }

    // Shows the file as it is now, whatever is not saved.
    void ReloadNow();

    Why WhyNot() const { return m_eWhy; }
    // Another version is there, or is being written.
    bool IsChanging() const { return m_bChanging; }

    // The file was saved from here: as it is now it is what is shown.
    void TakeSaved();
    // `Hands` may answer otherwise by now.
    void Try();
    // What was given could not be shown.
    void OnFailed();

signals:
    void Changed(); // of `WhyNot`

private:
    void Follow();
    void OnSettled(bool bFinal);
    void OnJudged(const JudgedFile& judged, bool bFinal);
    void OnUnread();
    void Tell(Why eWhy);
    static concurrency::task<void> Start(QPointer<DocReloader> pSelf,
                                         std::shared_ptr<OpenedFile> pFile, int nDocument);
    static concurrency::task<void> Judge(QPointer<DocReloader> pSelf, bool bFinal, int nDocument);
    Why Hindrance() const;
    void SetReady(std::optional<JudgedFile> ready);
    void Prepare();

    const Hands m_hands;
    FileWatch m_watch;
    QTimer m_delay; // of the start
    QTimer m_retry;
    QTimer m_preparing; // runs while that is waited for
    FilePath m_path;
    std::shared_ptr<OpenedFile> m_pOpened; // until the watch begins
    Platform::MaskedText m_password;
    std::optional<JudgedFile> m_ready; // to be shown
    bool m_bPrepared = false;          // or soon
    int m_nReady = 0;                  // that counts
    Why m_eWhy = Why::None;
    bool m_bAutomatic = false;
    bool m_bForce = false; // what hinders is passed over
    bool m_bJudging = false;
    bool m_bChanging = false;
    int m_nDocument = 0; // that counts
};

}
