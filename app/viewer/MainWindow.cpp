#include "app/viewer/MainWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMimeData>
#include <QPainter>
#include <QTimer>
#include <utility>

#include "app/viewer/CommandBar.h"
#include "widget/VelkoRuntime.h"

namespace velko::viewer {

using vkit::VelkoPdfView;

namespace {

constexpr int kNoticeHeight = 32;
constexpr int kLatestBarMs = 400;
const QString kProgramName = QStringLiteral("Velko Viewer");

// The first local file among what is dragged; empty when there is none.
QString DraggedFile(const QMimeData& data) {
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile()) {
            return url.toLocalFile();
        }
    }
    return {};
}

}

MainWindow::MainWindow(std::shared_ptr<vkit::PDFViewCtrl> pControl, QSize size)
    : m_pView(new VelkoPdfView(std::move(pControl), this)) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAcceptDrops(true);
    setFocusProxy(m_pView);
    m_pView->setFocus();
    resize(size);
    PlaceParts();
    ConnectView();
    UpdateTitle();
}

void MainWindow::ConnectView() {
    connect(m_pView, &VelkoPdfView::StateChanged, this, &MainWindow::OnState);
    connect(m_pView, &VelkoPdfView::OpenFailed, this, &MainWindow::OnOpenFailed);
    connect(m_pView, &VelkoPdfView::Failed, this, &MainWindow::ShowNotice);
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

void MainWindow::Begin(const QString& strFile, VelkoPdfView::Opening opening) {
    if (!opening.valid()) {
        OnState(m_pView->ViewState());
        return;
    }
    // A document that is open by now is laid out at the window's size and begins
    // to render while the display still makes the window.
    m_pView->ArrangeBeforeShow();
    m_pView->Follow(strFile, std::move(opening));
    vkit::VelkoRuntime::Environment()->Dispatcher()->RunPending();
}

// --- places ----------------------------------------------------------------

void MainWindow::PlaceParts() {
    m_pView->setGeometry(0, CommandBar::kHeight, width(), height() - CommandBar::kHeight);
    if (m_pBar != nullptr) {
        m_pBar->setGeometry(0, 0, width(), CommandBar::kHeight);
    }
    if (m_pMessage != nullptr) {
        m_pMessage->setGeometry(m_pView->geometry());
    }
    if (m_pNotice != nullptr) {
        m_pNotice->setGeometry(0, CommandBar::kHeight, width(), kNoticeHeight);
    }
}

void MainWindow::resizeEvent(QResizeEvent* /*pEvent*/) {
    PlaceParts();
}

void MainWindow::paintEvent(QPaintEvent* /*pEvent*/) {
    QPainter painter(this);
    painter.fillRect(0, 0, width(), CommandBar::kHeight, palette().window());
}

void MainWindow::CompleteBar() {
    if (m_pBar != nullptr) {
        return;
    }
    m_pBar = new CommandBar(*m_pView, this);
    connect(m_pBar, &CommandBar::OpenWanted, this, &MainWindow::AskForFile);
    connect(m_pBar, &CommandBar::CloseWanted, m_pView, &VelkoPdfView::CloseDocument);
    connect(m_pBar, &CommandBar::QuitWanted, this, &QWidget::close);
    PlaceParts();
    m_pBar->show();
}

// --- messages --------------------------------------------------------------

QString MainWindow::FileName() const {
    return QFileInfo(m_pView->Path()).fileName();
}

void MainWindow::UpdateTitle() {
    const QString strFile = FileName();
    setWindowTitle(strFile.isEmpty() ? kProgramName
                                     : QStringLiteral("%1 – %2").arg(strFile, kProgramName));
}

void MainWindow::ShowMessage(const QString& strTitle, const QString& strText) {
    if (m_pMessage == nullptr) {
        m_pMessage = new QLabel(this);
        m_pMessage->setAlignment(Qt::AlignCenter);
        m_pMessage->setWordWrap(true);
        m_pMessage->setMargin(40);
        m_pMessage->setAutoFillBackground(true);
        m_pMessage->setTextFormat(Qt::RichText);
        m_pMessage->setTextInteractionFlags(Qt::TextSelectableByMouse);
        m_pMessage->setFocusPolicy(Qt::NoFocus);
    }
    m_pMessage->setText(QStringLiteral("<h3>%1</h3><p>%2</p>")
                            .arg(strTitle.toHtmlEscaped(), strText.toHtmlEscaped()));
    PlaceParts();
    m_pMessage->show();
    m_pMessage->raise();
    CompleteBar();
}

void MainWindow::ShowNotice(const QString& strText) {
    if (m_pNotice == nullptr) {
        m_pNotice = new QLabel(this);
        m_pNotice->setMargin(6);
        m_pNotice->setAutoFillBackground(true);
        m_pNotice->setBackgroundRole(QPalette::ToolTipBase);
        m_pNotice->setForegroundRole(QPalette::ToolTipText);
    }
    m_pNotice->setText(strText);
    PlaceParts();
    m_pNotice->show();
    m_pNotice->raise();
}

void MainWindow::HideMessages() {
    for (QLabel* pLabel : {m_pMessage, m_pNotice}) {
        if (pLabel != nullptr) {
            pLabel->hide();
        }
    }
}

QString MainWindow::Message() const {
    return m_pMessage != nullptr && !m_pMessage->isHidden() ? m_pMessage->text() : QString();
}

QString MainWindow::Notice() const {
    return m_pNotice != nullptr && !m_pNotice->isHidden() ? m_pNotice->text() : QString();
}

void MainWindow::OnState(VelkoPdfView::State eState) {
    UpdateTitle();
    if (eState == VelkoPdfView::State::Empty) {
        HideMessages();
        ShowMessage("No document", "Press Ctrl+O to open a PDF document, or drop one here.");
    } else if (eState == VelkoPdfView::State::Opening || eState == VelkoPdfView::State::Shown) {
        HideMessages();
    }
}

void MainWindow::OnOpenFailed(const QString& strPath, const QString& strReason) {
    UpdateTitle();
    const QString strFile = QFileInfo(strPath).fileName();
    const QString strTitle = QStringLiteral("“%1” was not opened").arg(strFile);
    if (m_pView->ViewState() == VelkoPdfView::State::Shown) {
        ShowNotice(QStringLiteral("%1. %2").arg(strTitle, strReason));
    } else {
        ShowMessage(strTitle, strReason);
    }
}

// --- input -----------------------------------------------------------------

void MainWindow::AskForFile() {
    auto* pDialog = new QFileDialog(this, "Open a document", QFileInfo(m_pView->Path()).path(),
                                    "PDF documents (*.pdf *.PDF);;All files (*)");
    pDialog->setAttribute(Qt::WA_DeleteOnClose);
    pDialog->setFileMode(QFileDialog::ExistingFile);
    connect(pDialog, &QFileDialog::fileSelected, this,
            [this](const QString& strFile) { m_pView->Open(strFile); });
    pDialog->open(); // returns at once: nothing here waits in an event loop of its own
}

void MainWindow::dragEnterEvent(QDragEnterEvent* pEvent) {
    if (!DraggedFile(*pEvent->mimeData()).isEmpty()) {
        pEvent->acceptProposedAction();
    }
}

void MainWindow::dropEvent(QDropEvent* pEvent) {
    const QString strFile = DraggedFile(*pEvent->mimeData());
    if (!strFile.isEmpty()) {
        pEvent->acceptProposedAction();
        m_pView->Open(strFile);
    }
}

void MainWindow::keyPressEvent(QKeyEvent* pEvent) {
    if (pEvent->key() == Qt::Key_Escape && m_pNotice != nullptr) {
        m_pNotice->hide();
        return;
    }
    QWidget::keyPressEvent(pEvent);
}

void MainWindow::closeEvent(QCloseEvent* pEvent) {
    m_pView->CloseDocument();
    pEvent->accept();
}

}
