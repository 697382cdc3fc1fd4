#include "widget/VelkoPdfView.h"

#include <QFile>
#include <QFileInfo>
#include <QKeyEvent>
#include <QTimer>
#include <algorithm>
#include <array>
#include <utility>

#include "platform/qt/QtElementWindow.h"
#include "widget/OpenFailure.h"
#include "widget/PageInk.h"
#include "widget/VelkoRuntime.h"

namespace velko::vkit {

using concurrency::task;
using velko::common::ErrorCode;
using Windows::Foundation::Point;

namespace {

constexpr std::int32_t kFitPageMode = 1;
constexpr std::int32_t kFitWidthMode = 2;
constexpr double kLineScroll = 60.0;  // Qt's units
constexpr double kScreenScroll = 0.9; // of the screen's height: a line or two stay in sight
constexpr int kLongestHoldMs = 300;   // of the old frame while a new size renders
constexpr std::array kZoomSteps{0.25, 0.33, 0.5,  0.67, 0.75, 0.8, 0.9, 1.0, 1.1,
                                1.25, 1.5,  1.75, 2.0,  2.5,  3.0, 4.0, 5.0, 6.0};
constexpr double kSameZoom = 0.005;

task<void> AwaitOpen(QPointer<VelkoPdfView> pView, VelkoPdfView::Opening opening,
                     std::function<void(VelkoPdfView&, const VelkoPdfView::Opening&)> fnEnded) {
    co_await opening.settled();
    if (pView) {
        fnEnded(*pView, opening);
    }
}

}

std::shared_ptr<PDFViewCtrl> VelkoPdfView::CreateControl() {
    auto pControl = PDFViewCtrl::Create();
    pControl->ApplyTemplate();
    return pControl;
}

VelkoPdfView::Opening VelkoPdfView::BeginOpen(PDFViewCtrl& control, const QString& strPath,
                                              const QString& strPassword) {
    const QString strAbsolute = QFileInfo(strPath).absoluteFilePath();
    return control.OpenPdfDocument(QFile::encodeName(strAbsolute).toStdString(),
                                   strPassword.toStdString());
}

VelkoPdfView::VelkoPdfView(QWidget* pParent) : VelkoPdfView(CreateControl(), pParent) {}

VelkoPdfView::VelkoPdfView(std::shared_ptr<PDFViewCtrl> pControl, QWidget* pParent)
    : QWidget(pParent),
      m_pControl(std::move(pControl)),
      m_pWindow(new Platform::Qt::QtElementWindow(VelkoRuntime::Environment(), m_pControl, this)) {
    m_pWindow->ShowBusyMark(false);
    setFocusProxy(m_pWindow);
    ConnectWindow();
}

VelkoPdfView::~VelkoPdfView() {
    delete m_pWindow; // unloads the tree while the control still lives
    m_pWindow = nullptr;
    try {
        m_pControl->Dispose();
    } catch (...) { // a host's handler of the closing; there is no one left to tell
    }
}

void VelkoPdfView::ConnectWindow() {
    m_pWindow->OnFailure = [this](const std::exception_ptr& pError) { Report(pError); };
    m_pWindow->OnBeforeArrange = [this] { BeforeArrange(); };
    m_pWindow->OnAfterArrange = [this] { AfterArrange(); };
    m_pWindow->OnPresented = [this] { QueueRefresh(); };
    m_pWindow->OnPainted = [this] { OnPainted(); };
    // A password that is given later shows the document without an open ending.
    m_pControl->OpenDocEvent.add([pView = QPointer<VelkoPdfView>(this)](const auto&,
                                                                        const auto& pArgs) {
        if (!pView || pView->m_eState != State::PasswordNeeded) {
            return;
        }
        const bool bShown = pArgs->ErrorCode == ErrorCode::e_ErrSuccess;
        QMetaObject::invokeMethod(
            pView, [pView, bShown] { pView->OnPasswordAnswered(bShown); }, Qt::QueuedConnection);
    });
}

// --- opening and closing ---------------------------------------------------

void VelkoPdfView::Open(const QString& strPath, const QString& strPassword) {
    if (m_bOpening) {
        m_next = Request{strPath, strPassword};
        return;
    }
    Expect(strPath); // first: a quick open raises the control's events within the call
    try {
        Await(BeginOpen(*m_pControl, strPath, strPassword));
    } catch (...) {
        OnOpenFailed(std::current_exception());
    }
}

void VelkoPdfView::Follow(const QString& strPath, Opening opening) {
    Expect(strPath);
    Await(std::move(opening));
}

void VelkoPdfView::Expect(const QString& strPath) {
    m_bOpening = true;
    m_strPath = QFileInfo(strPath).absoluteFilePath();
    m_pWindow->ShowBusyMark(true);
    SetState(State::Opening);
}

void VelkoPdfView::Await(Opening opening) {
    AwaitOpen(this, std::move(opening),
              [](VelkoPdfView& view, const Opening& ended) { view.OnOpenEnded(ended); });
}

void VelkoPdfView::OnOpenEnded(const Opening& opening) {
    ErrorCode eCode = ErrorCode::e_ErrUnknown;
    try {
        eCode = opening.get();
    } catch (...) {
        OnOpenFailed(std::current_exception());
        return;
    }
    EndOpening();
    if (m_next) {
        OpenNext();
    } else if (eCode == ErrorCode::e_ErrSuccess) {
        OnShown();
    } else {
        OnOpenRefused(eCode);
    }
}

void VelkoPdfView::EndOpening() {
    m_bOpening = false;
    m_pWindow->ShowBusyMark(false);
}

void VelkoPdfView::OpenNext() {
    const Request next = *std::exchange(m_next, std::nullopt);
    Open(next.strPath, next.strPassword);
}

// The control never came to the new document and still shows the old one.
void VelkoPdfView::OnOpenFailed(const std::exception_ptr& pError) {
    EndOpening();
    if (m_next) {
        OpenNext();
        return;
    }
    const QString strRefused = std::exchange(m_strPath, m_strShownPath);
    SetState(HasDocument() ? State::Shown : State::Failed);
    Refresh();
    emit OpenFailed(strRefused, ReasonOf(pError));
}

void VelkoPdfView::OnOpenRefused(ErrorCode eCode) {
    const bool bPassword = eCode == ErrorCode::e_ErrPassword;
    if (!bPassword) {
        // The control keeps the failed document; nothing of it can be shown.
        Guard([this] { m_pControl->CloseDocument(); });
    }
    m_strShownPath.clear();
    SetState(bPassword ? State::PasswordNeeded : State::Failed);
    Refresh();
    emit OpenFailed(m_strPath, ReasonOf(eCode));
}

void VelkoPdfView::OnPasswordAnswered(bool bShown) {
    if (m_eState != State::PasswordNeeded) {
        return; // another document was asked for meanwhile
    }
    if (bShown) {
        OnShown();
    } else {
        CloseDocument();
    }
}

void VelkoPdfView::OnShown() {
    m_strShownPath = m_strPath;
    m_nFitMode = 0;
    m_bSeen = false;
    SetState(State::Shown);
    Refresh();
    emit Opened(m_nPageCount);
}

void VelkoPdfView::CloseDocument() {
    m_next.reset();
    Guard([this] { m_pControl->CloseDocument(); });
    m_strPath.clear();
    m_strShownPath.clear();
    SetState(State::Empty);
    Refresh();
}

void VelkoPdfView::SetState(State eState) {
    if (std::exchange(m_eState, eState) != eState) {
        emit StateChanged(eState);
    }
}

// --- failures --------------------------------------------------------------

void VelkoPdfView::Command(const std::function<void()>& fnBody) {
    if (HasDocument()) {
        m_bSeen = true; // what was asked for is kept, also before it is painted
        Guard(fnBody);
    }
}

void VelkoPdfView::Guard(const std::function<void()>& fnBody) {
    try {
        fnBody();
    } catch (...) {
        Report(std::current_exception());
    }
}

void VelkoPdfView::Report(const std::exception_ptr& pError) {
    emit Failed(ReasonOf(pError));
}

// --- what is shown ---------------------------------------------------------

// The control tells of page changes only around some operations, so its
// numbers are read after each frame.
void VelkoPdfView::QueueRefresh() {
    if (!std::exchange(m_bRefreshQueued, true)) {
        QMetaObject::invokeMethod(
            this,
            [this] {
                m_bRefreshQueued = false;
                Refresh();
            },
            Qt::QueuedConnection);
    }
}

void VelkoPdfView::Refresh() {
    Guard([this] {
        const int nCount = HasDocument() ? m_pControl->GetPageCount() : 0;
        const int nPage = HasDocument() ? m_pControl->GetCurrentPageIndex() : 0;
        const double dbZoom = HasDocument() ? m_pControl->GetScale() : 0.0;
        const bool bCount = std::exchange(m_nPageCount, nCount) != nCount;
        const bool bPage = std::exchange(m_nCurrentPage, nPage) != nPage;
        const bool bZoom = std::exchange(m_dbZoom, dbZoom) != dbZoom;
        if (m_pWindow->IsFrameHeld() && IsSharp()) {
            m_pWindow->ReleaseFrame();
        }
        if (bCount) {
            emit PageCountChanged(nCount);
        }
        if (bPage) {
            emit PageChanged(nPage);
        }
        if (bZoom) {
            emit ZoomChanged(dbZoom);
        }
    });
}

void VelkoPdfView::OnPainted() {
    m_bSeen = m_bSeen || HasInk();
    emit Painted();
}

bool VelkoPdfView::IsSharp() const {
    return InkOf(*m_pControl).bAll;
}

bool VelkoPdfView::HasInk() const {
    return !m_pWindow->IsFrameHeld() && InkOf(*m_pControl).bSome;
}

// --- changes of size -------------------------------------------------------

void VelkoPdfView::resizeEvent(QResizeEvent* /*pEvent*/) {
    m_pWindow->setGeometry(rect());
}

void VelkoPdfView::ArrangeBeforeShow() {
    m_pWindow->setGeometry(rect());
    m_pWindow->Arrange();
}

// Before the reader has seen a page there is nothing to keep, and the first
// layout at the new size is the better one.
void VelkoPdfView::BeforeArrange() {
    if (!HasDocument() || !m_bSeen) {
        return;
    }
    m_keeper = ViewKeeper::Remember(*m_pControl);
    if (m_keeper && !m_pWindow->IsFrameHeld()) {
        m_pWindow->HoldFrame();
        QTimer::singleShot(kLongestHoldMs, this, [this] { m_pWindow->ReleaseFrame(); });
    }
}

void VelkoPdfView::AfterArrange() {
    if (const auto keeper = std::exchange(m_keeper, std::nullopt)) {
        keeper->Restore(*m_pControl,
                        m_nFitMode == 0 ? keeper->Zoom() : m_pControl->GetFitScale(m_nFitMode));
    }
    QueueRefresh();
}

// --- commands --------------------------------------------------------------

void VelkoPdfView::GotoPage(int nPage) {
    Command([&] { m_pControl->GotoPage(std::clamp(nPage, 0, std::max(0, m_nPageCount - 1))); });
}

void VelkoPdfView::GotoNextPage() {
    GotoPage(m_nCurrentPage + 1);
}

void VelkoPdfView::GotoPrevPage() {
    GotoPage(m_nCurrentPage - 1);
}

void VelkoPdfView::GotoFirstPage() {
    GotoPage(0);
}

void VelkoPdfView::GotoLastPage() {
    GotoPage(m_nPageCount - 1);
}

void VelkoPdfView::ScrollBy(double dbX, double dbY) {
    Command([&] { m_pControl->MoveScreen(dbY, dbX); });
}

void VelkoPdfView::ScrollByScreen(int nScreens) {
    ScrollBy(0.0, nScreens * kScreenScroll * height() * devicePixelRatioF());
}

void VelkoPdfView::ApplyZoom(double dbZoom) {
    const auto size = m_pControl->GetCanvasSize();
    const Point ptMiddle{size.Width * m_pControl->CompositionScaleX() / 2.0F,
                         size.Height * m_pControl->CompositionScaleY() / 2.0F};
    const double dbLeast = m_pControl->GetMinScale();
    const double dbMost = std::max<double>(dbLeast, m_pControl->GetMaxScale());
    m_pControl->ZoomAtPoint(ptMiddle, std::clamp(dbZoom, dbLeast, dbMost), false, true);
}

void VelkoPdfView::ZoomTo(double dbZoom) {
    m_nFitMode = 0;
    Command([&] { ApplyZoom(dbZoom); });
}

void VelkoPdfView::ZoomIn() {
    const auto it = std::find_if(kZoomSteps.begin(), kZoomSteps.end(),
                                 [this](double dbStep) { return dbStep > m_dbZoom + kSameZoom; });
    ZoomTo(it == kZoomSteps.end() ? kZoomSteps.back() : *it);
}

void VelkoPdfView::ZoomOut() {
    const auto it = std::find_if(kZoomSteps.rbegin(), kZoomSteps.rend(),
                                 [this](double dbStep) { return dbStep < m_dbZoom - kSameZoom; });
    ZoomTo(it == kZoomSteps.rend() ? kZoomSteps.front() : *it);
}

void VelkoPdfView::ApplyFit() {
    Command([this] {
        const int nPage = m_pControl->GetCurrentPageIndex();
        ApplyZoom(m_pControl->GetFitScale(m_nFitMode));
        if (m_nFitMode == kFitPageMode) {
            m_pControl->GotoPage(nPage);
        }
    });
}

void VelkoPdfView::FitWidth() {
    m_nFitMode = kFitWidthMode;
    ApplyFit();
}

void VelkoPdfView::FitPage() {
    m_nFitMode = kFitPageMode;
    ApplyFit();
}

void VelkoPdfView::RotateBy(int nQuarterTurns) {
    constexpr int kTurns = 4;
    Command([&] {
        const int nTurn = (m_pControl->GetRotate() + nQuarterTurns) % kTurns;
        m_pControl->RotateViewer((nTurn + kTurns) % kTurns);
    });
}

// --- keys ------------------------------------------------------------------

bool VelkoPdfView::HandleKey(const QKeyEvent& event) {
    const double dbLine = kLineScroll * devicePixelRatioF();
    switch (event.key()) {
        case Qt::Key_PageDown:
            ScrollByScreen(1);
            return true;
        case Qt::Key_PageUp:
            ScrollByScreen(-1);
            return true;
        case Qt::Key_Space:
            ScrollByScreen(event.modifiers().testFlag(Qt::ShiftModifier) ? -1 : 1);
            return true;
        case Qt::Key_Down:
            ScrollBy(0.0, dbLine);
            return true;
        case Qt::Key_Up:
            ScrollBy(0.0, -dbLine);
            return true;
        case Qt::Key_Right:
            ScrollBy(dbLine, 0.0);
            return true;
        case Qt::Key_Left:
            ScrollBy(-dbLine, 0.0);
            return true;
        case Qt::Key_Home:
            GotoFirstPage();
            return true;
        case Qt::Key_End:
            GotoLastPage();
            return true;
        case Qt::Key_Plus:
        case Qt::Key_Equal:
            ZoomIn();
            return true;
        case Qt::Key_Minus:
            ZoomOut();
            return true;
        default:
            return false;
    }
}

void VelkoPdfView::keyPressEvent(QKeyEvent* pEvent) {
    if (!HandleKey(*pEvent)) {
        QWidget::keyPressEvent(pEvent);
    }
}

}
