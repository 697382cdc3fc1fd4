#include "platform/qt/QtElementWindow.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QStyleHints>
#include <QTouchEvent>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/qt/QtBusyMark.h"
#include "platform/qt/QtSwapChain.h"

namespace Platform::Qt {

namespace Xaml = Windows::UI::Xaml;
namespace Input = Windows::UI::Xaml::Input;
using Windows::Foundation::Point;
using Windows::Foundation::Size;

namespace {

constexpr int kNotch = 120;
constexpr int kBusyMarkMargin = 8;
constexpr std::uint32_t kMousePointer = 1;
constexpr std::uint32_t kFirstTouchPointer = 2;
const QColor kAroundPages(224, 224, 224); // what a frame is cleared to

std::shared_ptr<Xaml::Controls::SwapChainPanel> FindPanel(
    const std::shared_ptr<Xaml::FrameworkElement>& pElement) {
    if (auto pPanel = std::dynamic_pointer_cast<Xaml::Controls::SwapChainPanel>(pElement)) {
        return pPanel;
    }
    for (const auto& pChild : pElement->Children()) {
        if (auto pPanel = FindPanel(pChild)) {
            return pPanel;
        }
    }
    return nullptr;
}

// A size change without another size: what an element computes from its size
// and from the dots per inch or the composition scale is stale when only these
// have changed.
void RaiseSizeChanged(const std::shared_ptr<Xaml::FrameworkElement>& pElement) {
    const Size size{static_cast<float>(pElement->ActualWidth()),
                    static_cast<float>(pElement->ActualHeight())};
    pElement->SizeChanged.raise({size, size});
    const auto children = pElement->Children(); // a handler may change them
    for (const auto& pChild : children) {
        RaiseSizeChanged(pChild);
    }
}

std::shared_ptr<Xaml::FrameworkElement> WithTemplate(
    std::shared_ptr<Xaml::FrameworkElement> pRoot) {
    if (const auto pControl = std::dynamic_pointer_cast<Xaml::Controls::ContentControl>(pRoot)) {
        pControl->ApplyTemplate();
    }
    return pRoot;
}

}

int QtElementWindow::Notches::Take(int nDelta) {
    if ((nDelta < 0) != (nRest < 0)) {
        nRest = 0;
    }
    nRest += nDelta;
    const int nWhole = nRest / kNotch * kNotch;
    nRest -= nWhole;
    return nWhole;
}

QtElementWindow::QtElementWindow(std::shared_ptr<QtEnvironment> pEnvironment,
                                 std::shared_ptr<Xaml::FrameworkElement> pRoot, QWidget* pParent)
    : QWidget(pParent),
      m_pEnvironment(std::move(pEnvironment)),
      m_pRoot(WithTemplate(std::move(pRoot))),
      m_pPanel(FindPanel(m_pRoot)),
      m_pBusyMark(new QtBusyMark(this)) {
    if (!m_pPanel) {
        throw InvalidArgumentException("a tree of elements without a swap chain panel");
    }
    setAttribute(::Qt::WA_OpaquePaintEvent);
    setAttribute(::Qt::WA_NoSystemBackground);
    setAttribute(::Qt::WA_AcceptTouchEvents);
    setMouseTracking(true);
    setFocusPolicy(::Qt::StrongFocus);
    m_pTracker = std::make_unique<ManipulationTracker>(
        m_pPanel, static_cast<float>(QGuiApplication::styleHints()->startDragDistance()));
    const auto token = m_pPanel->SwapChainChanged.add([this] { WatchSwapChain(); });
    m_unsubscribe.emplace_back([this, token] { m_pPanel->SwapChainChanged.remove(token); });
    WatchSwapChain();
    WatchTree(m_pRoot);
    UpdateBusyMark();
    Guard([this] { m_pRoot->RaiseLoaded(); });
}

QtElementWindow::~QtElementWindow() {
    LosePointers();
    for (const auto& fnUnsubscribe : m_unsubscribe) {
        fnUnsubscribe();
    }
    if (m_pSwapChain) {
        m_pSwapChain->OnPresented = nullptr;
    }
    Guard([this] { m_pRoot->RaiseUnloaded(); });
}

void QtElementWindow::Guard(const std::function<void()>& fnBody) {
    if (!OnFailure) {
        QtDispatcher::RunGuarded("a handler of the window", fnBody);
        return;
    }
    try {
        fnBody();
    } catch (...) {
        OnFailure(std::current_exception());
    }
}

// --- sizes -----------------------------------------------------------------

void QtElementWindow::Arrange() {
    const double dbRatio = devicePixelRatioF();
    const float fScaleX = m_pEnvironment->CompositionScaleX();
    const float fScaleY = m_pEnvironment->CompositionScaleY();
    const Size size{static_cast<float>(std::lround(width() * dbRatio)) / fScaleX,
                    static_cast<float>(std::lround(height() * dbRatio)) / fScaleY};
    const bool bSameSize =
        size.Width == m_pRoot->ActualWidth() && size.Height == m_pRoot->ActualHeight();
    const bool bSameScale =
        fScaleX == m_pPanel->CompositionScaleX() && fScaleY == m_pPanel->CompositionScaleY();
    const double dbRatioBefore = std::exchange(m_dbRatio, dbRatio);
    if (bSameSize && bSameScale && dbRatio == dbRatioBefore) {
        return;
    }
    if (OnBeforeArrange) {
        Guard(OnBeforeArrange);
    }
    m_pEnvironment->SetDevicePixelRatio(dbRatio);
    ArrangeTree(size, fScaleX, fScaleY);
    if (bSameSize && dbRatioBefore != 0.0) {
        Guard([this] { RaiseSizeChanged(m_pRoot); });
    }
    if (OnAfterArrange) {
        Guard(OnAfterArrange);
    }
}

void QtElementWindow::ArrangeTree(Size size, float fScaleX, float fScaleY) {
    Guard([&] { m_pEnvironment->SetWindowSize(size); });
    Guard([&] { m_pPanel->ArrangeAtScale(size, fScaleX, fScaleY); });
    Guard([&] { m_pRoot->Arrange(size); });
}

void QtElementWindow::resizeEvent(QResizeEvent* /*pEvent*/) {
    m_pBusyMark->move(width() - m_pBusyMark->width() - kBusyMarkMargin, kBusyMarkMargin);
    Arrange();
}

void QtElementWindow::showEvent(QShowEvent* /*pEvent*/) {
    Arrange(); // the screen may be another one than when it was hidden
}

void QtElementWindow::hideEvent(QHideEvent* /*pEvent*/) {
    LosePointers();
}

// --- picture ---------------------------------------------------------------

void QtElementWindow::WatchSwapChain() {
    if (m_pSwapChain) {
        m_pSwapChain->OnPresented = nullptr;
    }
    m_pSwapChain = std::dynamic_pointer_cast<QtSwapChain>(m_pPanel->SwapChain());
    if (m_pSwapChain) {
        m_pSwapChain->OnPresented = [this] {
            UpdateFront(m_pSwapChain->PresentedRect());
            if (OnPresented) {
                OnPresented();
            }
        };
    }
    update();
}

// `rcFrame` in pixels of the frame; with a broken ratio a pixel more on each side.
void QtElementWindow::UpdateFront(const QRect& rcFrame) {
    if (!rcFrame.isEmpty()) {
        const QRectF rc(rcFrame);
        const double dbRatio = devicePixelRatioF();
        update(QRectF(rc.topLeft() / dbRatio, rc.size() / dbRatio).toAlignedRect());
    }
}

QImage QtElementWindow::FrontImage() const {
    return m_pSwapChain ? m_pSwapChain->FrontImage() : QImage();
}

void QtElementWindow::HoldFrame() {
    if (!IsFrameHeld()) {
        m_heldFrame = FrontImage();
    }
}

void QtElementWindow::ReleaseFrame() {
    m_heldFrame = QImage();
    update();
}

void QtElementWindow::PaintFront(QPainter& painter, const QRegion& region) {
    const QImage image = IsFrameHeld() ? m_heldFrame : FrontImage();
    const double dbRatio = devicePixelRatioF();
    const QRect rcImage(0, 0, static_cast<int>(image.width() / dbRatio),
                        static_cast<int>(image.height() / dbRatio));
    for (const QRect& rc : region - rcImage) {
        painter.fillRect(rc, kAroundPages);
    }
    if (!image.isNull()) {
        // A pixel of the frame is a pixel of the screen, so that nothing is resampled.
        painter.scale(1.0 / dbRatio, 1.0 / dbRatio);
        painter.drawImage(QPointF(0.0, 0.0), image);
    }
}

void QtElementWindow::paintEvent(QPaintEvent* pEvent) {
    {
        QPainter painter(this);
        PaintFront(painter, pEvent->region());
    }
    if (OnPainted) {
        Guard(OnPainted);
    }
}

// --- progress ring ---------------------------------------------------------

void QtElementWindow::WatchTree(const std::shared_ptr<Xaml::FrameworkElement>& pElement) {
    if (std::dynamic_pointer_cast<Xaml::Controls::ProgressRing>(pElement)) {
        const auto token =
            pElement->VisibilityChanged.add([this](Xaml::Visibility) { UpdateBusyMark(); });
        m_rings.push_back(pElement);
        m_unsubscribe.emplace_back(
            [pElement, token] { pElement->VisibilityChanged.remove(token); });
    }
    for (const auto& pChild : pElement->Children()) {
        WatchTree(pChild);
    }
}

void QtElementWindow::ShowBusyMark(bool bShow) {
    m_bShowBusyMark = bShow;
    UpdateBusyMark();
}

void QtElementWindow::UpdateBusyMark() {
    const bool bRing = std::any_of(m_rings.begin(), m_rings.end(), [](const auto& pRing) {
        return pRing->Visibility() == Xaml::Visibility::Visible;
    });
    m_pBusyMark->SetBusy(m_bShowBusyMark && bRing);
}

// --- input -----------------------------------------------------------------

Point QtElementWindow::ToElement(QPointF pt) const {
    const double dbRatio = devicePixelRatioF();
    return {static_cast<float>(pt.x() * dbRatio / m_pPanel->CompositionScaleX()),
            static_cast<float>(pt.y() * dbRatio / m_pPanel->CompositionScaleY())};
}

void QtElementWindow::RaisePointer(
    Windows::Foundation::Event<Input::PointerRoutedEventArgs&>& event, QPointF pt) {
    Input::PointerRoutedEventArgs args;
    args.PointerId = kMousePointer;
    args.Position = ToElement(pt);
    Guard([&] { event.raise(args); });
}

bool QtElementWindow::event(QEvent* pEvent) {
    switch (pEvent->type()) {
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
            HandleTouch(*static_cast<QTouchEvent*>(pEvent));
            return true;
        case QEvent::TouchCancel:
            LosePointers();
            return true;
        case QEvent::UngrabMouse:
        case QEvent::WindowDeactivate:
        case QEvent::WindowBlocked:
        case QEvent::EnabledChange:
            LosePointers();
            break;
        case QEvent::ScreenChangeInternal:
            Arrange();
            break;
        default:
            break;
    }
    return QWidget::event(pEvent);
}

void QtElementWindow::LosePointers() {
    if (std::exchange(m_bMouseDown, false)) {
        RaisePointer(m_pPanel->PointerCaptureLost, mapFromGlobal(QCursor::pos()));
    }
    Guard([this] { m_pTracker->Cancel(); });
}

void QtElementWindow::mousePressEvent(QMouseEvent* pEvent) {
    RaisePointer(m_pPanel->PointerPressed, pEvent->position());
    if (pEvent->button() == ::Qt::LeftButton) {
        m_bMouseDown = true;
        Guard([&] {
            m_pTracker->Update(Input::PointerDeviceType::Mouse, {ToElement(pEvent->position())});
        });
    }
}

void QtElementWindow::mouseMoveEvent(QMouseEvent* pEvent) {
    RaisePointer(m_pPanel->PointerMoved, pEvent->position());
    if (!m_bMouseDown) {
        return;
    }
    if (!pEvent->buttons().testFlag(::Qt::LeftButton)) {
        LosePointers(); // the release went elsewhere
        return;
    }
    Guard([&] {
        m_pTracker->Update(Input::PointerDeviceType::Mouse, {ToElement(pEvent->position())});
    });
}

void QtElementWindow::mouseReleaseEvent(QMouseEvent* pEvent) {
    RaisePointer(m_pPanel->PointerReleased, pEvent->position());
    if (pEvent->button() == ::Qt::LeftButton && std::exchange(m_bMouseDown, false)) {
        Guard([&] { m_pTracker->Update(Input::PointerDeviceType::Mouse, {}); });
    }
}

void QtElementWindow::enterEvent(QEnterEvent* pEvent) {
    RaisePointer(m_pPanel->PointerEntered, pEvent->position());
}

void QtElementWindow::leaveEvent(QEvent* /*pEvent*/) {
    RaisePointer(m_pPanel->PointerExited, mapFromGlobal(QCursor::pos()));
}

void QtElementWindow::HandleTouchPoint(const QEventPoint& point) {
    Input::PointerRoutedEventArgs args;
    args.PointerId = kFirstTouchPointer + static_cast<std::uint32_t>(point.id());
    args.Position = ToElement(point.position());
    args.PointerDeviceType = Input::PointerDeviceType::Touch;
    Guard([&] {
        if (point.state() == QEventPoint::Pressed) {
            m_pPanel->PointerPressed.raise(args);
        } else if (point.state() == QEventPoint::Updated) {
            m_pPanel->PointerMoved.raise(args);
        } else if (point.state() == QEventPoint::Released) {
            m_pPanel->PointerReleased.raise(args);
        }
    });
}

void QtElementWindow::HandleTouch(const QTouchEvent& event) {
    std::vector<Point> down;
    for (const QEventPoint& point : event.points()) {
        HandleTouchPoint(point);
        if (point.state() != QEventPoint::Released) {
            down.push_back(ToElement(point.position()));
        }
    }
    Guard([&] { m_pTracker->Update(Input::PointerDeviceType::Touch, down); });
}

// --- wheel -----------------------------------------------------------------

void QtElementWindow::wheelEvent(QWheelEvent* pEvent) {
    pEvent->accept();
    const QtEnvironment::KeyScope keys(*m_pEnvironment,
                                       pEvent->modifiers().testFlag(::Qt::ControlModifier));
    if (PanByTouchpad(*pEvent)) {
        return;
    }
    RaiseWheel(*pEvent, m_vertical.Take(pEvent->angleDelta().y()), false);
    RaiseWheel(*pEvent, m_horizontal.Take(pEvent->angleDelta().x()), true);
}

void QtElementWindow::RaiseWheel(const QWheelEvent& event, int nDelta, bool bHorizontal) {
    if (nDelta == 0) {
        return;
    }
    Input::PointerRoutedEventArgs args;
    args.PointerId = kMousePointer;
    args.Position = ToElement(event.position());
    args.MouseWheelDelta = nDelta;
    args.IsHorizontalMouseWheel = bHorizontal;
    Guard([&] { m_pPanel->PointerWheelChanged.raise(args); });
}

// A device that scrolls by pixels and tells where a movement begins and ends is
// a touchpad. Where it does not tell (X11), its steps count as a wheel's.
bool QtElementWindow::PanByTouchpad(const QWheelEvent& event) {
    if (event.phase() == ::Qt::NoScrollPhase || m_pEnvironment->IsControlKeyDown()) {
        return false;
    }
    const bool bInertial = event.phase() == ::Qt::ScrollMomentum;
    const Point ptStep = ToElement(event.pixelDelta());
    if (ptStep != Point{}) {
        Guard([&] {
            m_pTracker->PanBy(Input::PointerDeviceType::Touch, ToElement(event.position()), ptStep,
                              bInertial);
        });
    }
    if (event.phase() == ::Qt::ScrollEnd) {
        Guard([this] { m_pTracker->Cancel(); });
    }
    return event.phase() == ::Qt::ScrollEnd || !event.pixelDelta().isNull();
}

}
