#include "app/viewer/MainWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QDesktopServices>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "app/viewer/CommandBar.h"
#include "app/viewer/DarkPalette.h"
#include "app/viewer/Help.h"
#include "app/viewer/Hint.h"
#include "app/viewer/NoticeBar.h"
#include "app/viewer/PageMenu.h"
#include "app/viewer/RecentFiles.h"
#include "app/viewer/RecentMenu.h"
#include "app/viewer/StartPane.h"
#include "app/viewer/TopEdge.h"
#include "app/viewer/ViewerSettings.h"
#include "platform/qt/QtElementWindow.h"
#include "platform/storage/ApplicationData.h"
#include "widget/StoreNotice.h"
#include "widget/VelkoRuntime.h"

namespace velko::viewer {

using vkit::FilePath;
using vkit::VelkoPdfView;

namespace {

constexpr int kLatestBarMs = 400;
constexpr int kLinkMs = 60; // in which a page's links are read
const QString kProgramName = QStringLiteral("Velko Viewer");

// The local files among what is dragged.
std::vector<FilePath> DraggedFiles(const QMimeData& data) {
    std::vector<FilePath> files;
    for (const QUrl& url : data.urls()) {
        if (FilePath path = FilePath::FromUrl(url); !path.IsEmpty()) {
            files.push_back(std::move(path));
        }
    }
    return files;
}

}

MainWindow::MainWindow(std::shared_ptr<vkit::PDFViewCtrl> pControl, QSize size)
    : m_pView(new VelkoPdfView(std::move(pControl), this)),
      m_pTopEdge(new TopEdge(m_pView->Window(), CommandBar::kHeight, this)) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAcceptDrops(true);
    setFocusProxy(m_pView);
    m_pView->setFocus();
    resize(size);
    PlaceParts();
    ConnectView();
    ConnectLinks();
    FollowColors();
    UpdateTitle();
}

void MainWindow::ConnectView() {
    connect(m_pView, &VelkoPdfView::StateChanged, this, &MainWindow::OnState);
    connect(m_pView, &VelkoPdfView::OpenFailed, this, &MainWindow::OnOpenFailed);
    connect(m_pView, &VelkoPdfView::ViewChanged, this, &MainWindow::FollowColors);
    connect(m_pView, &VelkoPdfView::Failed, this, &MainWindow::TellFailure);
    connect(m_pView, &VelkoPdfView::PageChanged, this, [this] {
        if (m_pNotice != nullptr) {
            m_pNotice->OnPageChanged();
        }
    });
    connect(m_pView, &VelkoPdfView::Opened, this, [this] {
        if (m_pView->IsRepaired()) {
            NoticeLine().Tell(
                "This file is damaged: some of its pages may be missing or "
                "incomplete. Ask for it anew where it came from.");
        }
    });
    m_pView->Window().installEventFilter(this);
    connect(m_pTopEdge, &TopEdge::Changed, this, &MainWindow::PlaceParts);
    // After the paint with the first page; or when that one is slow to come.
    connect(
        m_pView, &VelkoPdfView::Painted, this,
        [this] {
            if (m_pBar == nullptr && m_pView->HasInk()) {
                QTimer::singleShot(0, this, &MainWindow::CompleteBar);
            }
        },
        Qt::QueuedConnection);
    QTimer::singleShot(kLatestBarMs, this, &MainWindow::CompleteBar);
}

void MainWindow::ConnectLinks() {
    connect(m_pView, &VelkoPdfView::WebLinkWanted, this, &MainWindow::AskToBrowse);
    connect(m_pView, &VelkoPdfView::LinkRefused, this,
            [this](const QString& strReason) { NoticeLine().Tell(strReason); });
    connect(m_pView, &VelkoPdfView::LinkHovered, this, &MainWindow::ShowTarget);
}

void MainWindow::Begin(const FilePath& path, VelkoPdfView::Opening opening) {
    if (!opening.valid()) {
        OnState(m_pView->ViewState());
        return;
    }
    // A document that is open by now is laid out at the window's size and begins
    // to render while the display still makes the window.
    m_pView->ArrangeBeforeShow();
    m_pView->Follow(path, std::move(opening));
    vkit::VelkoRuntime::Environment()->Dispatcher()->RunPending();
}

// --- places ----------------------------------------------------------------

// In the full screen the bar, when it is called, lies over the pages; only with a
// notice below it, it takes room.
int MainWindow::BarHeight() const {
    const bool bOver = isFullScreen() && (!m_pTopEdge->IsCalled() || Notice().isEmpty());
    return bOver ? 0 : CommandBar::kHeight;
}

void MainWindow::PlaceParts() {
    const int nBar = BarHeight();
    const int nNotice = Notice().isEmpty() ? 0 : m_pNotice->RoomFor(width());
    m_pView->setGeometry(0, nBar + nNotice, width(), height() - nBar - nNotice);
    if (m_pNotice != nullptr) {
        m_pNotice->setGeometry(0, nBar, width(), nNotice);
    }
    if (m_pBar != nullptr) {
        m_pBar->setGeometry(0, 0, width(), CommandBar::kHeight);
        m_pBar->setVisible(!isFullScreen() || m_pTopEdge->IsCalled());
        m_pBar->raise();
    }
    if (m_pMessage != nullptr) {
        m_pMessage->setGeometry(m_pView->geometry());
    }
    if (m_pHint != nullptr) {
        m_pHint->Place();
    }
    if (m_pTarget != nullptr) {
        const QSize size = m_pTarget->sizeHint().boundedTo({width() * 3 / 4, height()});
        m_pTarget->setGeometry(QRect({0, height() - size.height()}, size));
    }
}

void MainWindow::resizeEvent(QResizeEvent* /*pEvent*/) {
    PlaceParts();
}

void MainWindow::changeEvent(QEvent* pEvent) {
    if (pEvent->type() == QEvent::WindowStateChange) {
        m_pTopEdge->SetWatching(isFullScreen());
        PlaceParts();
        SayHowToLeave();
        if (m_pCommands != nullptr) {
            m_pCommands->SetFullScreen(isFullScreen());
        }
    }
    QWidget::changeEvent(pEvent);
}

void MainWindow::paintEvent(QPaintEvent* /*pEvent*/) {
    QPainter painter(this);
    painter.fillRect(0, 0, width(), m_pView->y(), palette().window());
}

void MainWindow::CompleteBar() {
    if (m_pBar != nullptr) {
        return;
    }
    m_pCommands = new Commands(*m_pView, this);
    connect(m_pCommands, &Commands::Wanted, this, &MainWindow::CarryOut);
    connect(m_pCommands, &Commands::Done, this, &MainWindow::OnDone);
    m_pBar = new CommandBar(*m_pView, *m_pCommands, this);
    connect(m_pBar, &CommandBar::Done, this, &MainWindow::OnDone);
    connect(m_pBar, &CommandBar::Refused, this,
            [this](const QString& strReason) { NoticeLine().Tell(strReason); });
    m_pTopEdge->SetBar(m_pBar);
    RecentMenu& recent = m_pBar->Menu().Recent();
    connect(&recent, &RecentMenu::Wanted, this, &MainWindow::OpenFile);
    connect(&recent, &RecentMenu::ClearWanted, this, &MainWindow::AskToClear);
    m_pCommands->SetFullScreen(isFullScreen());
    PlaceParts();
}

// The bar and what belongs to it go with the pages into the dark.
void MainWindow::FollowColors() {
    UseDarkPalette(m_pView->Colors().IsDark());
}

// --- messages --------------------------------------------------------------

void MainWindow::UpdateTitle() {
    const QString strFile = m_pView->File().Name();
    setWindowTitle(strFile.isEmpty() ? kProgramName
                                     : QStringLiteral("%1 – %2").arg(strFile, kProgramName));
}

void MainWindow::ShowMessage(const QString& strTitle, const QString& strText) {
    if (m_pMessage == nullptr) {
        m_pMessage = new StartPane(this);
        connect(m_pMessage, &StartPane::OpenWanted, this, [this] { AskForFile(false); });
        connect(m_pMessage, &StartPane::FileWanted, this, &MainWindow::OpenFile);
    }
    PlaceParts();
    m_pMessage->Show(strTitle, strText);
    CompleteBar();
    if (const QWidget* const pKeys = focusWidget();
        pKeys == nullptr || pKeys == m_pView || pKeys == &m_pView->Window()) {
        m_pMessage->TakeKeys();
    }
}

NoticeBar& MainWindow::NoticeLine() {
    if (m_pNotice == nullptr) {
        m_pNotice = new NoticeBar(this);
        connect(m_pNotice, &NoticeBar::Changed, this,
                [this] { m_pView->ResizeAtTheZoom([this] { PlaceParts(); }); });
        connect(m_pNotice, &NoticeBar::KeysFree, m_pView, qOverload<>(&QWidget::setFocus));
    }
    return *m_pNotice;
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
    if (eState == VelkoPdfView::State::Empty) {
        HideMessages();
        ShowMessage("No document", "Press Ctrl+O to open a PDF document, or drop one here.");
    } else if (eState == VelkoPdfView::State::Opening) {
        if (m_pNotice != nullptr) {
            m_pNotice->OnDocument();
        }
    } else if (eState == VelkoPdfView::State::Shown) {
        HideMessages();
        m_bPasswordTried = false;
        m_pView->setFocus();
    }
}

void MainWindow::OnOpenFailed(const QString& strFile, const QString& strReason) {
    UpdateTitle();
    const FilePath file(strFile);
    const QString strTitle = QStringLiteral("“%1” was not opened").arg(file.Name());
    if (m_pView->ViewState() == VelkoPdfView::State::PasswordNeeded) {
        ShowMessage(m_pView->File().Name(), strReason);
        AskForPassword();
        return;
    }
    m_bPasswordTried = false;
    if (m_pView->ViewState() == VelkoPdfView::State::Shown) {
        NoticeLine().Tell(
            QStringLiteral("%1. %2 Its folder: %3").arg(strTitle, strReason, file.Folder()));
    } else {
        ShowMessage(strTitle, QStringLiteral("%1\nIts folder: %2").arg(strReason, file.Folder()));
    }
}

void MainWindow::AskForPassword() {
    const bool bWrong = std::exchange(m_bPasswordTried, true);
    const FilePath path = m_pView->File();
    NoticeLine().AskPassword(
        bWrong ? "That password does not open the document. Try another:"
               : "This document is protected. Its password:",
        [this, path](const QString& strPassword) { m_pView->Open(path, strPassword); },
        [this] {
            m_bPasswordTried = false;
            m_pView->CloseDocument();
        });
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
    NoticeLine().Ask(
        QStringLiteral("Open %1 outside of the viewer?").arg(address.toDisplayString()), "Open",
        [this, address, strSite] {
            m_sites.insert(strSite);
            Browse(address);
        });
}

void MainWindow::Browse(const QUrl& address) {
    if (!QDesktopServices::openUrl(address)) {
        NoticeLine().Tell(
            QStringLiteral("No program was found that opens %1.").arg(address.toDisplayString()));
    }
}

// --- commands --------------------------------------------------------------

void MainWindow::CarryOut(Command eCommand) {
    switch (eCommand) {
        case Command::Open:
            AskForFile(false);
            break;
        case Command::OpenInWindow:
            AskForFile(true);
            break;
        case Command::NewWindow:
            emit WindowWanted({});
            break;
        case Command::Close:
            CloseDocument();
            break;
        case Command::Quit:
            emit EndWanted();
            break;
        case Command::FullScreen:
            ToggleFullScreen();
            break;
        case Command::EnterPage:
            m_pTopEdge->Call();
            m_pBar->EnterPage();
            break;
        case Command::Menu:
            m_pTopEdge->Call();
            m_pBar->OpenMenu();
            break;
        case Command::Keys:
            ShowKeys(*m_pCommands, this);
            break;
        case Command::About:
            ShowAbout(this);
            break;
        default:
            break;
    }
}

void MainWindow::ToggleFullScreen() {
    OnDone();
    setWindowState(windowState() ^ Qt::WindowFullScreen);
    m_pView->setFocus();
}

// The document goes, and with it its window; the last window stays for the next
// document, until it is asked to go while it is empty.
void MainWindow::CloseDocument() {
    const auto windows = QApplication::topLevelWidgets();
    const auto bOthers = std::any_of(windows.begin(), windows.end(), [this](QWidget* pWidget) {
        return pWidget != this && pWidget->isVisible() &&
               qobject_cast<MainWindow*>(pWidget) != nullptr;
    });
    if (bOthers || m_pView->ViewState() == VelkoPdfView::State::Empty) {
        close();
    } else {
        m_pView->CloseDocument();
    }
}

void MainWindow::AskForFile(bool bOwnWindow) {
    auto* pDialog = new QFileDialog(this, "Open a document", m_pView->File().Folder(),
                                    "PDF documents (*.pdf *.PDF);;All files (*)");
    pDialog->setAttribute(Qt::WA_DeleteOnClose);
    pDialog->setFileMode(bOwnWindow ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile);
    connect(pDialog, &QFileDialog::filesSelected, this,
            [this, bOwnWindow](const QStringList& files) {
                for (const QString& strFile : files) {
                    if (bOwnWindow && !IsFree()) {
                        emit WindowWanted(strFile);
                    } else {
                        OpenFile(strFile);
                    }
                }
            });
    pDialog->open(); // returns at once: nothing here waits in an event loop of its own
}

bool MainWindow::IsFree() const {
    const auto eState = m_pView->ViewState();
    return eState == VelkoPdfView::State::Empty || eState == VelkoPdfView::State::Failed;
}

void MainWindow::OpenFile(const FilePath& path) {
    if (ViewerSettings::OpensOwnWindows() && !IsFree()) {
        emit WindowWanted(path);
    } else {
        m_pView->Open(path);
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

// Of the full screen, which the desktop may have made: once in a program's life.
void MainWindow::SayHowToLeave() {
    static bool s_bSaid = false;
    if (m_pHint != nullptr && !isFullScreen()) {
        m_pHint->hide();
    } else if (isFullScreen() && !std::exchange(s_bSaid, true)) {
        m_pHint = new Hint(this);
        m_pHint->Say("Esc or F11 leaves the full screen. The bar is at the top edge.");
    }
}

bool MainWindow::LeaveWhatIsOpen() {
    if (!Notice().isEmpty()) {
        m_pNotice->Dismiss();
        return true;
    }
    if (isFullScreen()) {
        ToggleFullScreen();
        return true;
    }
    return false;
}

// --- input -----------------------------------------------------------------

// The buttons of a mouse that go back and forth, and the one for the menu.
bool MainWindow::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pEvent->type() == QEvent::ContextMenu) {
        const QPoint ptGlobal = static_cast<QContextMenuEvent*>(pEvent)->globalPos();
        // What lies under a pointer that has just come there is found out meanwhile.
        QTimer::singleShot(m_strTarget.isEmpty() ? kLinkMs : 0, this,
                           [this, ptGlobal] { OpenPageMenu(ptGlobal); });
        return true;
    }
    if (pEvent->type() == QEvent::MouseButtonPress) {
        const auto eButton = static_cast<QMouseEvent*>(pEvent)->button();
        if (eButton == Qt::BackButton) {
            m_pView->GoBack();
            return true;
        }
        if (eButton == Qt::ForwardButton) {
            m_pView->GoForward();
            return true;
        }
    }
    return QWidget::eventFilter(pWatched, pEvent);
}

void MainWindow::OpenPageMenu(QPoint ptGlobal) {
    CompleteBar();
    auto* const pMenu = new PageMenu(*m_pCommands, m_strTarget, this);
    pMenu->setAttribute(Qt::WA_DeleteOnClose);
    connect(pMenu, &PageMenu::BrowseWanted, this, &MainWindow::AskToBrowse);
    pMenu->popup(ptGlobal);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* pEvent) {
    if (!DraggedFiles(*pEvent->mimeData()).empty()) {
        pEvent->acceptProposedAction();
    }
}

void MainWindow::dropEvent(QDropEvent* pEvent) {
    const std::vector<FilePath> files = DraggedFiles(*pEvent->mimeData());
    if (files.empty()) {
        return;
    }
    pEvent->acceptProposedAction();
    OpenFile(files[0]);
    for (std::size_t n = 1; n < files.size(); ++n) {
        emit WindowWanted(files[n]);
    }
}

void MainWindow::keyPressEvent(QKeyEvent* pEvent) {
    if (pEvent->key() != Qt::Key_Escape || !LeaveWhatIsOpen()) {
        QWidget::keyPressEvent(pEvent);
    }
}

QSize MainWindow::OrdinarySize() const {
    const bool bFills = (windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen)) != 0;
    return bFills && normalGeometry().isValid() ? normalGeometry().size() : size();
}

void MainWindow::closeEvent(QCloseEvent* pEvent) {
    ViewerSettings::KeepWindow(OrdinarySize(), windowState().testFlag(Qt::WindowMaximized));
    hide(); // the place is stored while nobody waits for the window to go
    m_pView->CloseDocument();
    pEvent->accept();
}

}
