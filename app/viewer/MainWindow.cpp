#include "app/viewer/MainWindow.h"

#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <utility>

#include "app/viewer/CommandBar.h"
#include "app/viewer/CopyNotice.h"
#include "app/viewer/DarkPalette.h"
#include "app/viewer/Hint.h"
#include "app/viewer/NoticeBar.h"
#include "app/viewer/PageMenu.h"
#include "app/viewer/PictureMaker.h"
#include "app/viewer/RecentMenu.h"
#include "app/viewer/ReloadNotices.h"
#include "app/viewer/SaveFlow.h"
#include "app/viewer/SelectionBubble.h"
#include "app/viewer/StartPane.h"
#include "app/viewer/TopEdge.h"
#include "app/viewer/ViewerSettings.h"
#include "app/viewer/find/FindFlow.h"
#include "app/viewer/side/SideDock.h"
#include "platform/qt/QtElementWindow.h"
#include "widget/VelkoRuntime.h"
#include "widget/edit/ViewEdits.h"
#include "widget/text/ViewSelection.h"

namespace velko::viewer {

using vkit::FilePath;
using vkit::VelkoPdfView;

namespace {

constexpr int kLatestBarMs = 400;
constexpr int kLinkMs = 60; // in which a page's links are read

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
      m_parts(*this, *m_pView),
      m_pTopEdge(new TopEdge(m_pView->Window(), CommandBar::kHeight, this)),
      m_pSaveFlow(new SaveFlow(*m_pView, this)),
      m_pSide(new SideDock(*m_pView, m_parts, this)) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAcceptDrops(true);
    setFocusProxy(m_pView);
    m_pView->setFocus();
    SetParts();
    resize(size);
    PlaceParts();
    ConnectView();
    ConnectLinks();
    ConnectEdits();
    ConnectSelection();
    FollowColors();
    UpdateTitle();
}

void MainWindow::ConnectView() {
    connect(m_pView, &VelkoPdfView::StateChanged, this, &MainWindow::OnState);
    connect(m_pView, &VelkoPdfView::OpenFailed, this, &MainWindow::OnOpenFailed);
    connect(m_pView, &VelkoPdfView::ViewChanged, this, &MainWindow::FollowColors);
    connect(m_pView, &VelkoPdfView::ViewChanged, this, &MainWindow::FollowText);
    m_textTimer.setSingleShot(true);
    m_textTimer.callOnTimeout(this, &MainWindow::TellNoText);
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
    connect(m_pView, &VelkoPdfView::FileLinkWanted, this, &MainWindow::AskToOpen);
    connect(m_pView, &VelkoPdfView::LinkRefused, this,
            [this](const QString& strReason) { NoticeLine().Tell(strReason); });
    connect(m_pView, &VelkoPdfView::LinkHovered, this, &MainWindow::ShowTarget);
}

void MainWindow::ConnectEdits() {
    connect(m_pView, &VelkoPdfView::ViewChanged, this,
            [this] { setWindowModified(m_pView->IsModified()); });
    connect(m_pSaveFlow, &SaveFlow::Told, this,
            [this](const QString& strText) { NoticeLine().Tell(strText); });
    connect(m_pSaveFlow, &SaveFlow::Saved, this, [this] {
        UpdateTitle();
        OnDone();
    });
    connect(&m_pView->Edits(), &vkit::ViewEdits::Refused, this,
            [this](const QString& strReason) { NoticeLine().Tell(strReason); });
}

void MainWindow::ConnectSelection() {
    connect(&m_pView->Selection(), &vkit::ViewSelection::Refused, this,
            [this](const QString& strReason) { NoticeLine().Tell(strReason); });
    connect(&m_pView->Selection(), &vkit::ViewSelection::Touched, this, [this] {
        CompleteBar();
        if (m_pBubble == nullptr) {
            m_pBubble = new SelectionBubble(*m_pView, *m_pCommands);
        }
        m_pBubble->ShowBeside();
    });
    new CopyNotice(
        m_pView->Selection(), [this]() -> NoticeBar& { return NoticeLine(); }, this);
}

void MainWindow::KeepPlaces() {
    m_pView->KeepPlace(true);
    new PictureMaker(*m_pView);
    new ReloadNotices(
        *m_pView, [this]() -> NoticeBar& { return NoticeLine(); }, this);
}

void MainWindow::Begin(const FilePath& path, VelkoPdfView::Opening opening) {
    if (!opening.valid()) {
        OnState(m_pView->ViewState());
        return;
    }
    m_pSide->SetDocument(true);
    // A document that is open by now is laid out at the window's size and begins
    // to render while the display still makes the window.
    m_pView->ArrangeBeforeShow();
    m_pView->Follow(path, std::move(opening));
    vkit::VelkoRuntime::Environment()->Dispatcher()->RunPending();
}

// --- places ----------------------------------------------------------------

// In the full screen the bar, when it is called, lies over the pages; only with a
// notice or the search below it, it takes room.
int MainWindow::BarHeight() const {
    const bool bStrip = !Notice().isEmpty() || (m_pFind != nullptr && m_pFind->IsOpen());
    const bool bOver = isFullScreen() && (!m_pTopEdge->IsCalled() || !bStrip);
    return bOver ? 0 : CommandBar::kHeight;
}

void MainWindow::SetParts() {
    using Strip = WindowParts::Strip;
    m_parts.SetStrip(Strip::Bar, nullptr, [this](int /*nWidth*/) { return BarHeight(); });
    m_parts.AddOver([this](const QRect& rcPages) {
        PlaceBar();
        if (m_pMessage != nullptr) {
            m_pMessage->setGeometry(rcPages);
        }
        m_pSaveFlow->Place();
        if (m_pHint != nullptr) {
            m_pHint->Place();
        }
        PlaceTarget();
    });
}

void MainWindow::PlaceBar() {
    if (m_pBar != nullptr) {
        m_pBar->setGeometry(0, 0, width(), CommandBar::kHeight);
        m_pBar->setVisible(!isFullScreen() || m_pTopEdge->IsCalled());
        m_pBar->raise();
    }
}

void MainWindow::PlaceTarget() {
    if (m_pTarget != nullptr) {
        const QSize size = m_pTarget->sizeHint().boundedTo({width() * 3 / 4, height()});
        m_pTarget->setGeometry(QRect({m_pView->x(), height() - size.height()}, size));
    }
}

void MainWindow::resizeEvent(QResizeEvent* /*pEvent*/) {
    PlaceParts();
}

void MainWindow::changeEvent(QEvent* pEvent) {
    if (pEvent->type() == QEvent::WindowStateChange) {
        m_pTopEdge->SetWatching(isFullScreen() && !IsPresenting());
        PlaceParts();
        SayHowToLeave();
        m_pView->SetDarkSurround(isFullScreen());
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
    connect(m_pCommands, &Commands::KeysChanged, this, &MainWindow::KeysChanged);
    m_pFacts = new vkit::DocFacts(*m_pView);
    m_pBar = new CommandBar(*m_pView, *m_pFacts, *m_pCommands, this);
    connect(m_pBar, &CommandBar::Done, this, &MainWindow::OnDone);
    connect(m_pBar, &CommandBar::Refused, this,
            [this](const QString& strReason) { NoticeLine().Tell(strReason); });
    m_pTopEdge->SetBar(m_pBar);
    CompleteSearch();
    RecentMenu& recent = m_pBar->Menu().Recent();
    connect(&recent, &RecentMenu::Wanted, this, &MainWindow::OpenFile);
    connect(&recent, &RecentMenu::ClearWanted, this, &MainWindow::AskToClear);
    m_pCommands->SetFullScreen(isFullScreen());
    CompleteSide();
    PlaceParts();
}

void MainWindow::ShowPlace(std::optional<int> nPage, const QString& strFind) {
    if (nPage) {
        m_pView->GotoPage(*nPage - 1);
    }
    if (!strFind.isEmpty()) {
        Find(strFind);
    }
}

// The desktop decides; what it needs for that is found in the environment by Qt.
void MainWindow::ComeToFront(const std::string& strActivation) {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    if (!strActivation.empty()) {
        qputenv("XDG_ACTIVATION_TOKEN", QByteArray::fromStdString(strActivation));
    }
    activateWindow();
    qunsetenv("XDG_ACTIVATION_TOKEN");
}

void MainWindow::Find(const QString& strText) {
    CompleteBar();
    m_pFind->Find(strText);
}

// The bar and what belongs to it go with the pages into the dark.
void MainWindow::FollowColors() {
    UseDarkPalette(m_pView->Colors().IsDark());
}

// --- input -----------------------------------------------------------------

bool MainWindow::LeaveWhatIsOpen() {
    if (!Notice().isEmpty()) {
        m_pNotice->Dismiss();
        return true;
    }
    if (m_pSide->Leave() || (m_pFind != nullptr && m_pFind->Close())) {
        return true;
    }
    if (isFullScreen()) {
        ToggleFullScreen();
        return true;
    }
    return false;
}

// The keys for the pane in place of the pages, the buttons of a mouse that go back and
// forth, and the one for the menu.
bool MainWindow::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pEvent->type() == QEvent::ContextMenu) {
        const QPoint ptGlobal = static_cast<QContextMenuEvent*>(pEvent)->globalPos();
        // What lies under a pointer that has just come there is found out meanwhile.
        QTimer::singleShot(m_strTarget.isEmpty() ? kLinkMs : 0, this, [this, ptGlobal] {
            OpenPageMenu(ptGlobal, m_pView->Window().mapFromGlobal(ptGlobal));
        });
        return true;
    }
    if (m_pHint != nullptr &&
        (pEvent->type() == QEvent::KeyPress || pEvent->type() == QEvent::Wheel)) {
        m_pHint->FadeOut();
    }
    if (pEvent->type() == QEvent::FocusIn && m_pMessage != nullptr && m_pMessage->isVisible()) {
        // Nobody sees the keys where there are no pages.
        QMetaObject::invokeMethod(m_pMessage, &StartPane::TakeKeys, Qt::QueuedConnection);
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

// At a point what lies there is chosen first; the keys keep what is chosen.
void MainWindow::OpenPageMenu(QPoint ptGlobal, std::optional<QPoint> ptView) {
    CompleteBar();
    if (ptView) {
        m_pView->Edits().ChooseAt(*ptView);
    }
    auto* const pMenu = new PageMenu(*m_pView, *m_pCommands, m_strTarget, this);
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
    if (!m_bMayClose && (m_pView->IsModified() || m_pSaveFlow->IsBusy())) {
        pEvent->ignore();
        m_pSaveFlow->BeforeLeaving([this] {
            m_bMayClose = true;
            close();
        });
        return;
    }
    EndPresentation();
    ViewerSettings::KeepWindow(OrdinarySize(), windowState().testFlag(Qt::WindowMaximized));
    hide(); // the place is stored while nobody waits for the window to go
    m_pView->CloseDocument();
    pEvent->accept();
}

}
