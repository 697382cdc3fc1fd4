#include "app/viewer/MainWindow.h"

#include <QApplication>
#include <QCloseEvent>
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
#include "app/viewer/NoticeBar.h"
#include "app/viewer/RecentMenu.h"
#include "app/viewer/StartPane.h"
#include "platform/qt/QtElementWindow.h"
#include "widget/VelkoRuntime.h"

namespace velko::viewer {

using vkit::FilePath;
using vkit::VelkoPdfView;

namespace {

constexpr int kLatestBarMs = 400;
const QString kProgramName = QStringLiteral("Velko Viewer");

// The first local file among what is dragged; empty when there is none.
FilePath DraggedFile(const QMimeData& data) {
    for (const QUrl& url : data.urls()) {
        if (const FilePath path = FilePath::FromUrl(url); !path.IsEmpty()) {
            return path;
        }
    }
    return {};
}

// For the parts around dark pages.
QPalette DarkPalette() {
    const QColor text(214, 214, 220);
    const QColor faint(112, 112, 122);
    const QColor field(28, 28, 33);
    QPalette palette(QColor(46, 46, 53), QColor(38, 38, 44));
    for (const auto eRole : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                             QPalette::ToolTipText, QPalette::BrightText}) {
        palette.setColor(eRole, text);
        palette.setColor(QPalette::Disabled, eRole, faint);
    }
    palette.setColor(QPalette::Base, field);
    palette.setColor(QPalette::AlternateBase, field);
    palette.setColor(QPalette::ToolTipBase, QColor(58, 58, 68));
    palette.setColor(QPalette::PlaceholderText, faint);
    palette.setColor(QPalette::Highlight, QColor(70, 100, 160));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(140, 170, 230));
    palette.setColor(QPalette::Mid, QColor(58, 58, 66));
    return palette;
}

}

MainWindow::MainWindow(std::shared_ptr<vkit::PDFViewCtrl> pControl, QSize size)
    : m_pView(new VelkoPdfView(std::move(pControl), this)), m_palette(QApplication::palette()) {
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

MainWindow::~MainWindow() {
    if (m_bDark) {
        QApplication::setPalette(m_palette);
    }
}

void MainWindow::ConnectView() {
    connect(m_pView, &VelkoPdfView::StateChanged, this, &MainWindow::OnState);
    connect(m_pView, &VelkoPdfView::OpenFailed, this, &MainWindow::OnOpenFailed);
    connect(m_pView, &VelkoPdfView::ViewChanged, this, &MainWindow::FollowColors);
    connect(m_pView, &VelkoPdfView::Failed, this,
            [this](const QString& strReason) { NoticeLine().Tell(strReason); });
    m_pView->Window().installEventFilter(this);
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

int MainWindow::BarHeight() const {
    return isFullScreen() ? 0 : CommandBar::kHeight;
}

void MainWindow::PlaceParts() {
    const int nBar = BarHeight();
    m_pView->setGeometry(0, nBar, width(), height() - nBar);
    if (m_pBar != nullptr) {
        m_pBar->setGeometry(0, 0, width(), CommandBar::kHeight);
        m_pBar->setVisible(nBar > 0);
    }
    if (m_pMessage != nullptr) {
        m_pMessage->setGeometry(m_pView->geometry());
    }
    if (m_pNotice != nullptr) {
        m_pNotice->setGeometry(0, nBar, width(), m_pNotice->RoomFor(width()));
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
        PlaceParts();
        if (m_pCommands != nullptr) {
            m_pCommands->SetFullScreen(isFullScreen());
        }
    }
    QWidget::changeEvent(pEvent);
}

void MainWindow::paintEvent(QPaintEvent* /*pEvent*/) {
    QPainter painter(this);
    painter.fillRect(0, 0, width(), BarHeight(), palette().window());
}

void MainWindow::CompleteBar() {
    if (m_pBar != nullptr) {
        return;
    }
    m_pCommands = new Commands(*m_pView, this);
    connect(m_pCommands, &Commands::Wanted, this, &MainWindow::CarryOut);
    m_pBar = new CommandBar(*m_pView, *m_pCommands, this);
    RecentMenu& recent = m_pBar->Menu().Recent();
    connect(&recent, &RecentMenu::Wanted, this,
            [this](const FilePath& path) { m_pView->Open(path); });
    connect(&recent, &RecentMenu::Failed, this,
            [this](const QString& strReason) { NoticeLine().Tell(strReason); });
    m_pCommands->SetFullScreen(isFullScreen());
    PlaceParts();
}

// The bar and what belongs to it go with the pages into the dark.
void MainWindow::FollowColors() {
    const bool bDark = m_pView->Colors().IsDark();
    if (std::exchange(m_bDark, bDark) != bDark) {
        QApplication::setPalette(bDark ? DarkPalette() : m_palette); // menus and dialogs too
        update();
    }
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
        connect(m_pMessage, &StartPane::OpenWanted, this, &MainWindow::AskForFile);
        connect(m_pMessage, &StartPane::FileWanted, this,
                [this](const FilePath& path) { m_pView->Open(path); });
    }
    PlaceParts();
    m_pMessage->Show(strTitle, strText, RecentMenu::Files());
    CompleteBar();
}

NoticeBar& MainWindow::NoticeLine() {
    if (m_pNotice == nullptr) {
        m_pNotice = new NoticeBar(this);
        connect(m_pNotice, &NoticeBar::Changed, this, &MainWindow::PlaceParts);
        connect(m_pNotice, &NoticeBar::Closed, m_pView, qOverload<>(&QWidget::setFocus));
    }
    return *m_pNotice;
}

void MainWindow::ShowTarget(const QString& strTarget) {
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
        m_pNotice->Withdraw();
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
            m_pNotice->Withdraw();
        }
    } else if (eState == VelkoPdfView::State::Shown) {
        HideMessages();
        m_bPasswordTried = false;
        m_pView->setFocus();
    }
}

void MainWindow::OnOpenFailed(const QString& strFile, const QString& strReason) {
    UpdateTitle();
    const QString strTitle = QStringLiteral("“%1” was not opened").arg(FilePath(strFile).Name());
    if (m_pView->ViewState() == VelkoPdfView::State::PasswordNeeded) {
        ShowMessage(m_pView->File().Name(), strReason);
        AskForPassword();
        return;
    }
    m_bPasswordTried = false;
    if (m_pView->ViewState() == VelkoPdfView::State::Shown) {
        NoticeLine().Tell(QStringLiteral("%1. %2").arg(strTitle, strReason));
    } else {
        ShowMessage(strTitle, strReason);
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

void MainWindow::AskToBrowse(const QUrl& address) {
    NoticeLine().Ask(
        QStringLiteral("Open %1 outside of the viewer?").arg(address.toDisplayString()), "Open",
        [this, address] {
            if (!QDesktopServices::openUrl(address)) {
                NoticeLine().Tell(QStringLiteral("No program was found that opens %1.")
                                      .arg(address.toDisplayString()));
            }
        });
}

// --- commands --------------------------------------------------------------

void MainWindow::CarryOut(Command eCommand) {
    switch (eCommand) {
        case Command::Open:
            AskForFile();
            break;
        case Command::Close:
            m_pView->CloseDocument();
            break;
        case Command::Quit:
            close();
            break;
        case Command::FullScreen:
            ToggleFullScreen();
            break;
        case Command::EnterPage:
            if (isFullScreen()) {
                ToggleFullScreen(); // the field is in the bar
            }
            m_pBar->EnterPage();
            break;
        case Command::Menu:
            m_pBar->OpenMenu();
            break;
        default:
            break;
    }
}

void MainWindow::ToggleFullScreen() {
    setWindowState(windowState() ^ Qt::WindowFullScreen);
    m_pView->setFocus();
}

void MainWindow::AskForFile() {
    auto* pDialog = new QFileDialog(this, "Open a document", m_pView->File().Folder(),
                                    "PDF documents (*.pdf *.PDF);;All files (*)");
    pDialog->setAttribute(Qt::WA_DeleteOnClose);
    pDialog->setFileMode(QFileDialog::ExistingFile);
    connect(pDialog, &QFileDialog::fileSelected, this,
            [this](const QString& strFile) { m_pView->Open(strFile); });
    pDialog->open(); // returns at once: nothing here waits in an event loop of its own
}

bool MainWindow::LeaveWhatIsOpen() {
    if (m_pNotice != nullptr && !m_pNotice->isHidden()) {
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

// The buttons of a mouse that go back and forth.
bool MainWindow::eventFilter(QObject* pWatched, QEvent* pEvent) {
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

void MainWindow::dragEnterEvent(QDragEnterEvent* pEvent) {
    if (!DraggedFile(*pEvent->mimeData()).IsEmpty()) {
        pEvent->acceptProposedAction();
    }
}

void MainWindow::dropEvent(QDropEvent* pEvent) {
    const FilePath path = DraggedFile(*pEvent->mimeData());
    if (!path.IsEmpty()) {
        pEvent->acceptProposedAction();
        m_pView->Open(path);
    }
}

void MainWindow::keyPressEvent(QKeyEvent* pEvent) {
    if (pEvent->key() != Qt::Key_Escape || !LeaveWhatIsOpen()) {
        QWidget::keyPressEvent(pEvent);
    }
}

void MainWindow::closeEvent(QCloseEvent* pEvent) {
    hide(); // the place is stored while nobody waits for the window to go
    m_pView->CloseDocument();
    pEvent->accept();
}

}
