#include "platform/qt/QtElementWindow.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QPaintEvent>
#include <QPainter>
#include <QPointer>
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "platform/foundation/FirstFailure.h"
#include "platform/qt/QtBusyMark.h"
#include "platform/qt/QtDialogs.h"
#include "platform/qt/QtElementTree.h"
#include "platform/qt/QtSwapChain.h"

namespace Platform::Qt {

namespace Xaml = Windows::UI::Xaml;
using Windows::Foundation::Size;

namespace {

constexpr int kBusyMarkMargin = 8;

// A ring is a small mark in a corner of the window, so that pages stay in sight.
class RingPresenter final : public IElementPresenter {
public:
    RingPresenter(QWidget& window, const bool& bShow)
        : m_window(window), m_bShow(bShow), m_pMark(new QtBusyMark(&window)) {}
    ~RingPresenter() override { delete m_pMark; }

    QWidget* Widget() const override { return nullptr; }
    void Show(const QRect& /*rc*/, bool bVisible) override {
        m_pMark->move(m_window.width() - m_pMark->width() - kBusyMarkMargin, kBusyMarkMargin);
        m_pMark->SetBusy(m_bShow && bVisible);
    }

private:
    const QWidget& m_window;
    const bool& m_bShow; // the window's
    const QPointer<QtBusyMark> m_pMark;
};

// A size change without another size: what an element computes from its size
// and from the dots per inch or the composition scale is stale when only these
// have changed. The panel hears first, as of a size that differs: what stands
// around it finds its pages laid out.
void RaiseSizeChanged(const std::shared_ptr<Xaml::FrameworkElement>& pRoot,
                      const std::shared_ptr<Xaml::FrameworkElement>& pPanel) {
    std::vector<std::shared_ptr<Xaml::FrameworkElement>> elements{pPanel, pRoot};
    for (std::size_t n = 1; n < elements.size(); ++n) {
        for (const auto& pChild : elements[n]->Children()) {
            if (pChild != pPanel) {
                elements.push_back(pChild);
            }
        }
    }
    Platform::FirstFailure failure;
    for (std::size_t n = pRoot == pPanel ? 1 : 0; n < elements.size(); ++n) {
        const auto& pElement = elements[n];
        const Size size{static_cast<float>(pElement->ActualWidth()),
                        static_cast<float>(pElement->ActualHeight())};
        failure.Run([&] { pElement->SizeChanged.raise({size, size}); });
    }
    failure.Rethrow();
}

std::shared_ptr<Xaml::FrameworkElement> WithTemplate(
    std::shared_ptr<Xaml::FrameworkElement> pRoot) {
    if (const auto pControl = std::dynamic_pointer_cast<Xaml::Controls::ContentControl>(pRoot)) {
        pControl->ApplyTemplate();
    }
    return pRoot;
}

}

QtElementWindow::QtElementWindow(std::shared_ptr<QtEnvironment> pEnvironment,
                                 std::shared_ptr<Xaml::FrameworkElement> pRoot, QWidget* pParent)
    : QWidget(pParent),
      m_pEnvironment(std::move(pEnvironment)),
      m_pRoot(WithTemplate(std::move(pRoot))),
      m_pView(Xaml::Window::Create(m_pRoot)) {
    m_pView->Dialogs(std::make_shared<QtDialogs>(*this, m_pEnvironment->Dispatcher()));
    MakeTree();
    if (!m_pPanel) {
        throw InvalidArgumentException("a tree of elements without a swap chain panel");
    }
    setAttribute(::Qt::WA_OpaquePaintEvent);
    setAttribute(::Qt::WA_NoSystemBackground);
    setFocusPolicy(::Qt::StrongFocus);
    m_pInput = std::make_unique<QtPanelInput>(*this, m_pEnvironment, m_pPanel);
    m_pInput->Recogniser().OnFailure([this](const auto& pFailure) { m_failures.Tell(pFailure); });
    const auto token = m_pPanel->SwapChainChanged.add([this] { WatchSwapChain(); });
    m_unsubscribe.emplace_back([this, token] { m_pPanel->SwapChainChanged.remove(token); });
    WatchSwapChain();
    m_failures.Run([this] { m_pRoot->RaiseLoaded(); });
}

QtElementWindow::~QtElementWindow() {
    m_pInput->Recogniser().Close();
    for (const auto& fnUnsubscribe : m_unsubscribe) {
        fnUnsubscribe();
    }
    if (m_pSwapChain) {
        m_pSwapChain->OnPresented = nullptr;
    }
    m_failures.Run([this] { m_pRoot->RaiseUnloaded(); });
    m_pTree.reset();
}

// The window itself is the panel's presenter.
void QtElementWindow::MakeTree() {
    m_pTree = std::make_unique<QtElementTree>(*this, m_pView, m_failures);
    FollowScale();
    m_pTree->Register(
        typeid(Xaml::Controls::SwapChainPanel), [this](auto&, const auto& pElement, auto&) {
            if (!m_pPanel) {
                m_pPanel = std::static_pointer_cast<Xaml::Controls::SwapChainPanel>(pElement);
            }
            return nullptr;
        });
    m_pTree->Register(typeid(Xaml::Controls::ProgressRing), [this](auto&, const auto&, auto&) {
        return std::make_unique<RingPresenter>(*this, m_bShowBusyMark);
    });
    m_pTree->Update();
    const QInputMethod* const pKeyboard = QGuiApplication::inputMethod();
    for (const auto fnChanged :
         {&QInputMethod::keyboardRectangleChanged, &QInputMethod::visibleChanged}) {
        connect(pKeyboard, fnChanged, this, &QtElementWindow::FollowKeyboard);
    }
}

// --- sizes -----------------------------------------------------------------

Size QtElementWindow::ToLogical(QSize size) const {
    const QSizeF pixels = QSizeF(size) * devicePixelRatioF();
    return {static_cast<float>(std::lround(pixels.width())) / m_pEnvironment->CompositionScaleX(),
            static_cast<float>(std::lround(pixels.height())) / m_pEnvironment->CompositionScaleY()};
}

Size QtElementWindow::LogicalSize() const {
    return m_fixedSize.value_or(ToLogical(size()));
}

Size QtElementWindow::WindowSize() const {
    return isWindow() ? LogicalSize() : ToLogical(window()->size());
}

void QtElementWindow::Arrange() {
    const double dbRatio = devicePixelRatioF();
    const float fScaleX = m_pEnvironment->CompositionScaleX();
    const float fScaleY = m_pEnvironment->CompositionScaleY();
    const Size size = LogicalSize();
    const bool bSameSize =
        size.Width == m_pRoot->ActualWidth() && size.Height == m_pRoot->ActualHeight();
    const bool bSameScale =
        fScaleX == m_pPanel->CompositionScaleX() && fScaleY == m_pPanel->CompositionScaleY();
    const double dbRatioBefore = std::exchange(m_dbRatio, dbRatio);
    if (bSameSize && bSameScale && dbRatio == dbRatioBefore) {
        return;
    }
    const QPointer<QtElementWindow> pThis(this); // a handler may take it away
    if (OnBeforeArrange) {
        m_failures.Run(OnBeforeArrange);
    }
    if (pThis) {
        m_pEnvironment->SetDevicePixelRatio(dbRatio);
        ArrangeTree(size, fScaleX, fScaleY);
    }
    if (pThis && bSameSize && dbRatioBefore != 0.0) {
        m_failures.Run([pRoot = m_pRoot, pPanel = m_pPanel] { RaiseSizeChanged(pRoot, pPanel); });
    }
    if (pThis && OnAfterArrange) {
        m_failures.Run(OnAfterArrange);
    }
}

void QtElementWindow::ArrangeTree(Size size, float fScaleX, float fScaleY) {
    const auto pEnvironment = m_pEnvironment;
    pEnvironment->TakeWindowSize(WindowSize());
    m_pInput->FollowScreen();
    FollowScale();
    const auto pView = m_pView;
    m_failures.Run([&] { m_pPanel->ArrangeAtScale(*m_pRoot, size, fScaleX, fScaleY); });
    m_failures.Run([&] { pView->TellSize(); });
    m_failures.Run([&] { pEnvironment->TellWindowSize(); });
}

void QtElementWindow::FollowScale() {
    const double dbRatio = devicePixelRatioF();
    m_pTree->SetScale(dbRatio / m_pEnvironment->CompositionScaleX(),
                      dbRatio / m_pEnvironment->CompositionScaleY());
}

// What the system's keyboard covers of this; none is known before it is shown.
void QtElementWindow::FollowKeyboard() {
    const QInputMethod& keyboard = *QGuiApplication::inputMethod();
    QRectF rc;
    if (keyboard.isVisible()) {
        rc = keyboard.keyboardRectangle().translated(-mapTo(window(), QPointF()));
        rc = rc.intersected(QRectF(rect()));
    }
    const auto ptTopLeft = m_pTree->ToLogical({std::max(rc.x(), 0.0), std::max(rc.y(), 0.0)});
    const auto size = m_pTree->ToLogical(rc.size());
    m_failures.Run([&, pView = m_pView] {
        pView->InputPane().Occlude({ptTopLeft.Width, ptTopLeft.Height, size.Width, size.Height});
    });
}

void QtElementWindow::resizeEvent(QResizeEvent* /*pEvent*/) {
    Arrange();
    if (QGuiApplication::inputMethod()->isVisible()) { // it may cover another part of this now
        FollowKeyboard();
    }
}

void QtElementWindow::showEvent(QShowEvent* /*pEvent*/) {
    Arrange(); // the screen may be another one than when it was hidden
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

void QtElementWindow::SetBackground(const QColor& color) {
    if (std::exchange(m_background, color) != color) {
        update();
    }
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
        painter.fillRect(rc, m_background);
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
        m_failures.Run(OnPainted);
    }
}

void QtElementWindow::ShowBusyMark(bool bShow) {
    m_bShowBusyMark = bShow;
    m_pTree->Update();
}

// --- input -----------------------------------------------------------------

bool QtElementWindow::event(QEvent* pEvent) {
    if (m_pInput) { // Qt sends some events while this is made
        const QPointer<QtElementWindow> pThis(this);
        if (m_pInput->Handle(*pEvent) || !pThis) {
            return true;
        }
    }
    if (pEvent->type() == QEvent::ScreenChangeInternal) {
        Arrange();
        m_pInput->FollowScreen();
    }
    return QWidget::event(pEvent);
}

void QtElementWindow::focusInEvent(QFocusEvent* pEvent) {
    QWidget::focusInEvent(pEvent);
    m_pTree->FocusPopup();
}

}
