// What the window tells and asks: its title, the pane in place of the pages, the
// line above them, and what lies over them for a while.
#include <QDesktopServices>
#include <QLabel>
#include <utility>

#include "app/viewer/Hint.h"
#include "app/viewer/MainWindow.h"
#include "app/viewer/NoticeBar.h"
#include "app/viewer/RecentFiles.h"
#include "app/viewer/StartPane.h"
#include "app/viewer/side/SideDock.h"
#include "platform/qt/QtElementWindow.h"
#include "platform/storage/ApplicationData.h"
#include "widget/ShownText.h"
#include "widget/StoreNotice.h"

namespace velko::viewer {

using vkit::FilePath;
using vkit::VelkoPdfView;

namespace {

const QString kProgramName = QStringLiteral("Velko Viewer");

// As it goes to the browser, so that no letter of it looks like another one; of a very long
// one the site and the end.
QString AddressText(const QUrl& address) {
    constexpr qsizetype kMost = 240;
    const QString strText = address.toString(QUrl::FullyEncoded);
    return strText.size() <= kMost
               ? strText
               : strText.left(kMost * 2 / 3) + QStringLiteral(" … ") + strText.right(kMost / 3);
}

}

void MainWindow::UpdateTitle() {
    const QString strFile = m_pView->File().Name();
    setWindowTitle(strFile.isEmpty() ? kProgramName
                                     : QStringLiteral("%1[*] – %2").arg(strFile, kProgramName));
}

void MainWindow::ShowMessage(const QString& strTitle, const QString& strText) {
    if (m_pMessage == nullptr) {
        m_pMessage = new StartPane(this);
        connect(m_pMessage, &StartPane::OpenWanted, this, [this] { AskForFile(false); });
        connect(m_pMessage, &StartPane::FileWanted, this, &MainWindow::OpenFile);
    }
    const QWidget* const pKeys = focusWidget(); // the pane's own rows are made anew below
    const bool bTakesKeys = pKeys == nullptr || pKeys == m_pView || pKeys == &m_pView->Window() ||
                            m_pMessage->isAncestorOf(pKeys);
    PlaceParts();
    m_pView->Window().setFocusPolicy(Qt::ClickFocus); // Tab has nothing to find behind it
    m_pMessage->Show(strTitle, strText);
    CompleteBar();
    if (bTakesKeys) {
        m_pMessage->TakeKeys();
    }
}

NoticeBar& MainWindow::NoticeLine() {
    if (m_pNotice == nullptr) {
        m_pNotice = new NoticeBar(this);
        m_parts.SetStrip(WindowParts::Strip::Notice, m_pNotice, [this](int nWidth) {
            return Notice().isEmpty() ? 0 : m_pNotice->RoomFor(nWidth);
        });
        connect(m_pNotice, &NoticeBar::Changed, this, &MainWindow::MakeRoomForNotice);
        connect(m_pNotice, &NoticeBar::KeysFree, m_pView, qOverload<>(&QWidget::setFocus));
    }
    return *m_pNotice;
}

// Its coming moves no page; with its going a fit is right again, also one that was
// made beside it.
void MainWindow::MakeRoomForNotice() {
    if (Notice().isEmpty()) {
        PlaceParts();
    } else {
        m_pView->ResizeAtTheZoom([this] { PlaceParts(); });
    }
}

void MainWindow::ShowTarget(const QString& strTarget) {
    m_strTarget = strTarget;
    if (m_pTarget == nullptr) {
        m_pTarget = new QLabel(this);
        m_pTarget->setMargin(5);
        m_pTarget->setTextFormat(Qt::PlainText);
        m_pTarget->setAutoFillBackground(true);
        m_pTarget->setBackgroundRole(QPalette::ToolTipBase);
        m_pTarget->setForegroundRole(QPalette::ToolTipText);
        m_pTarget->setAttribute(Qt::WA_TransparentForMouseEvents);
    }
    m_pTarget->setText(strTarget);
    PlaceParts();
    m_pTarget->setVisible(!strTarget.isEmpty());
    m_pTarget->raise();
}

void MainWindow::HideMessages() {
    if (m_pMessage != nullptr) {
        m_pMessage->hide();
        m_pView->Window().setFocusPolicy(Qt::StrongFocus);
    }
    if (m_pNotice != nullptr) {
        m_pNotice->OnDocument();
    }
}

void MainWindow::OnDone() {
    if (m_pNotice != nullptr) {
        m_pNotice->OnDone();
    }
}

bool MainWindow::LacksText() const {
    return m_pView->IsReading() && !m_pView->ShowsSomething();
}

// Whether a page far on has text may not be known at once.
void MainWindow::FollowText() {
    constexpr int kPatienceMs = 700;
    if (!LacksText()) {
        m_textTimer.stop();
        if (m_pNotice != nullptr) {
            m_pNotice->CheckStanding();
        }
    } else if (!m_textTimer.isActive()) {
        m_textTimer.start(kPatienceMs);
    }
}

void MainWindow::TellNoText() {
    NoticeLine().TellWhile("There is no text to read in this document. Press T to see its pages.",
                           [this] { return LacksText(); });
}

// That settings cannot be stored is said as long as it is so.
void MainWindow::TellFailure(const QString& strReason) {
    using Windows::Storage::ApplicationData;
    const auto failure = ApplicationData::Current()->Failure();
    if (failure && vkit::StoreNotice::TextOf(*failure) == strReason) {
        NoticeLine().TellWhile(strReason, [eCause = failure->eCause] {
            const auto now = ApplicationData::Current()->Failure();
            return now && now->eCause == eCause;
        });
    } else {
        NoticeLine().Tell(strReason);
    }
}

QString MainWindow::Message() const {
    return m_pMessage != nullptr ? m_pMessage->Text() : QString();
}

QString MainWindow::Notice() const {
    return m_pNotice != nullptr ? m_pNotice->Text() : QString();
}

void MainWindow::OnState(VelkoPdfView::State eState) {
    UpdateTitle();
    m_pSide->SetDocument(eState != VelkoPdfView::State::Empty &&
                         eState != VelkoPdfView::State::Failed);
    if (eState == VelkoPdfView::State::Empty) {
        HideMessages();
        ShowMessage("No document", "Press Ctrl+O to open a PDF document, or drop one here.");
    } else if (eState == VelkoPdfView::State::Opening) {
        if (m_pNotice != nullptr) {
            m_pNotice->OnDocument();
        }
    } else if (eState == VelkoPdfView::State::Shown ||
               eState == VelkoPdfView::State::PasswordNeeded) {
        HideMessages();
        m_pView->setFocus();
    }
}

void MainWindow::OnOpenFailed(const QString& strFile, const QString& strReason) {
    UpdateTitle();
    const FilePath file(strFile);
    const QString strTitle = QStringLiteral("“%1” was not opened").arg(file.Name());
    if (m_pView->ViewState() == VelkoPdfView::State::Shown) {
        NoticeLine().Tell(
            QStringLiteral("%1. %2 Its folder: %3").arg(strTitle, strReason, file.Folder()));
    } else {
        ShowMessage(strTitle, QStringLiteral("%1\nIts folder: %2").arg(strReason, file.Folder()));
    }
}

void MainWindow::RefuseAddress(const QString& strAddress) {
    const QString strTitle = QStringLiteral("“%1” was not opened").arg(strAddress);
    const QString strReason = QStringLiteral(
        "It is not a file of this machine. Save the document with a browser, and open the file.");
    if (IsFree()) {
        ShowMessage(strTitle, strReason);
    } else {
        NoticeLine().Tell(QStringLiteral("%1. %2").arg(strTitle, strReason));
    }
}

void MainWindow::AskToClear() {
    NoticeLine().Ask("Forget all recent files, and your places in them?", "Clear", [this] {
        RecentFiles::ForgetAll();
        if (m_pMessage != nullptr) {
            m_pMessage->FillList();
        }
    });
}

// Once for each site: whoever has agreed to go there need not say so at each link.
void MainWindow::AskToBrowse(const QUrl& address) {
    const QString strSite = address.scheme() + ':' + address.host();
    if (!address.host().isEmpty() && m_sites.contains(strSite)) {
        Browse(address);
        return;
    }
    NoticeLine().Ask(QStringLiteral("Open %1 outside of the viewer?").arg(AddressText(address)),
                     "Open", [this, address, strSite] {
                         m_sites.insert(strSite);
                         Browse(address);
                     });
}

void MainWindow::Browse(const QUrl& address) {
    if (!QDesktopServices::openUrl(address)) {
        NoticeLine().Tell(
            QStringLiteral("No program was found that opens %1.").arg(AddressText(address)));
    }
}

// Each time: it is the document that names the file.
void MainWindow::AskToOpen(const FilePath& path) {
    NoticeLine().Ask(
        QStringLiteral("Open “%1” in another window?").arg(vkit::ShownText(path.Text())), "Open",
        [this, path] { emit WindowWanted(path); });
}

// Of the full screen, which the desktop may have made: once in a program's life.
void MainWindow::SayHowToLeave() {
    static bool s_bSaid = false;
    if (m_pHint != nullptr && !isFullScreen()) {
        m_pHint->hide();
    } else if (isFullScreen() && !IsPresenting() && !std::exchange(s_bSaid, true)) {
        m_pHint = new Hint(this);
        m_pHint->Say({"Esc leaves the full screen.", "The bar is at the top edge."});
    }
}

}
