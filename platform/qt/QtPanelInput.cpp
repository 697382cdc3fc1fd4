#include "platform/qt/QtPanelInput.h"

#include <QCursor>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPointingDevice>
#include <QScreen>
#include <QStyleHints>
#include <QTabletEvent>
#include <QTouchEvent>
#include <QWheelEvent>
#include <QWidget>
#include <algorithm>
#include <utility>

namespace Platform::Qt {

using Gestures::Device;
using Gestures::InputTime;
using Gestures::PanelInput;
using Gestures::PinchPhase;
using Gestures::PointerChange;
using Gestures::PointerRecord;
using Gestures::ScrollPhase;
using Windows::Foundation::Point;

namespace {

constexpr std::uint32_t kMousePointer = 1;
constexpr std::uint32_t kPenPointer = 2;
constexpr std::uint32_t kFirstTouchPointer = 3;

InputTime TimeOf(quint64 nTimestamp) {
    return std::chrono::milliseconds(static_cast<std::int64_t>(nTimestamp));
}

PointerChange ChangeOf(QEvent::Type eType) {
    switch (eType) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::TabletPress:
            return PointerChange::Pressed;
        case QEvent::MouseButtonRelease:
        case QEvent::TabletRelease:
            return PointerChange::Released;
        default:
            return PointerChange::Moved;
    }
}

PointerChange ChangeOf(QEventPoint::State eState) {
    switch (eState) {
        case QEventPoint::Pressed:
            return PointerChange::Pressed;
        case QEventPoint::Released:
            return PointerChange::Released;
        default:
            return PointerChange::Moved;
    }
}

// The button that changed, or for a movement whether the main one is down.
bool IsContact(const QSinglePointEvent& event) {
    return event.button() == ::Qt::NoButton ? event.buttons().testFlag(::Qt::LeftButton)
                                            : event.button() == ::Qt::LeftButton;
}

ScrollPhase PhaseOf(::Qt::ScrollPhase ePhase) {
    switch (ePhase) {
        case ::Qt::ScrollBegin:
            return ScrollPhase::Begin;
        case ::Qt::ScrollUpdate:
            return ScrollPhase::Update;
        case ::Qt::ScrollMomentum:
            return ScrollPhase::Momentum;
        case ::Qt::ScrollEnd:
            return ScrollPhase::End;
        case ::Qt::NoScrollPhase:
            break;
    }
    return ScrollPhase::None;
}

}

QtPanelInput::QtPanelInput(QWidget& widget, std::shared_ptr<QtEnvironment> pEnvironment,
                           std::shared_ptr<Windows::UI::Xaml::Controls::SwapChainPanel> pPanel)
    : m_widget(widget),
      m_pEnvironment(std::move(pEnvironment)),
      m_pPanel(std::move(pPanel)),
      m_pInput(PanelInput::Create(m_pEnvironment, m_pPanel)) {
    m_widget.setAttribute(::Qt::WA_AcceptTouchEvents);
    m_widget.setMouseTracking(true);
    FollowScreen();
}

QtPanelInput::~QtPanelInput() {
    m_pInput->Close();
}

void QtPanelInput::FollowScreen() {
    constexpr double kFastestFrames = 240.0;
    constexpr double kSlowestFrames = 30.0;
    const double dbUnit =
        m_widget.devicePixelRatioF() / std::max(m_pPanel->CompositionScaleX(), 1e-3F);
    PanelInput::Settings settings;
    settings.fUnit = static_cast<float>(dbUnit);
    settings.fReach =
        static_cast<float>(QGuiApplication::styleHints()->startDragDistance() * dbUnit);
    if (const QScreen* pScreen = m_widget.screen()) {
        const double dbFrames = std::clamp(pScreen->refreshRate(), kSlowestFrames, kFastestFrames);
        settings.frame = std::chrono::milliseconds(static_cast<int>(1000.0 / dbFrames));
    }
    m_pInput->Configure(settings);
}

Point QtPanelInput::ToPanel(QPointF pt) const {
    const double dbRatio = m_widget.devicePixelRatioF();
    return {static_cast<float>(pt.x() * dbRatio / m_pPanel->CompositionScaleX()),
            static_cast<float>(pt.y() * dbRatio / m_pPanel->CompositionScaleY())};
}

bool QtPanelInput::Handle(QEvent& event) {
    if (m_widget.isEnabled() && HandleInput(event)) {
        return true;
    }
    HandleLoss(event);
    return false;
}

bool QtPanelInput::HandleInput(QEvent& event) {
    switch (event.type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseMove:
            HandleMouse(static_cast<const QMouseEvent&>(event));
            return true;
        case QEvent::TabletPress:
        case QEvent::TabletRelease:
        case QEvent::TabletMove:
            event.accept(); // else it comes again as a mouse's
            HandlePen(static_cast<const QTabletEvent&>(event));
            return true;
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
            HandleTouch(static_cast<const QTouchEvent&>(event));
            return true;
        case QEvent::Wheel:
            event.accept();
            HandleWheel(static_cast<const QWheelEvent&>(event));
            return true;
        case QEvent::NativeGesture:
            event.accept();
            HandleNativeGesture(static_cast<const QNativeGestureEvent&>(event));
            return true;
        case QEvent::Enter:
            HandleBorder(PointerChange::Entered, static_cast<QEnterEvent&>(event).position());
            return true;
        case QEvent::Leave:
            HandleBorder(PointerChange::Exited, m_widget.mapFromGlobal(QCursor::pos()));
            return true;
        default:
            return false;
    }
}

void QtPanelInput::HandleLoss(const QEvent& event) {
    const auto pInput = m_pInput;
    switch (event.type()) {
        case QEvent::TouchCancel:
            pInput->LosePointers(PanelInput::Loss::Canceled);
            break;
        case QEvent::UngrabMouse:
        case QEvent::WindowDeactivate:
        case QEvent::WindowBlocked:
            pInput->LosePointers(PanelInput::Loss::Capture);
            break;
        case QEvent::EnabledChange:
        case QEvent::Hide:
            pInput->Stop();
            break;
        case QEvent::ShortcutOverride: // before a shortcut acts on what moves
        case QEvent::KeyPress:
            pInput->StopInertia();
            break;
        default:
            break;
    }
}

// --- pointers --------------------------------------------------------------

void QtPanelInput::Send(quint64 nTimestamp, std::vector<PointerRecord> records) {
    const auto pInput = m_pInput; // the handlers may take this object away
    pInput->Apply(Gestures::PointerFrame{TimeOf(nTimestamp), std::move(records)});
}

void QtPanelInput::HandleMouse(const QMouseEvent& event) {
    Send(event.timestamp(), {{ChangeOf(event.type()), kMousePointer, Device::Mouse,
                              ToPanel(event.position()), IsContact(event)}});
}

void QtPanelInput::HandlePen(const QTabletEvent& event) {
    if (event.type() == QEvent::TabletPress && m_widget.focusPolicy() & ::Qt::ClickFocus) {
        m_widget.setFocus(::Qt::MouseFocusReason); // Qt does so for the mouse and touch only
    }
    Send(event.timestamp(), {{ChangeOf(event.type()), kPenPointer, Device::Pen,
                              ToPanel(event.position()), IsContact(event)}});
}

void QtPanelInput::HandleTouch(const QTouchEvent& event) {
    std::vector<PointerRecord> records;
    for (const QEventPoint& point : event.points()) {
        if (point.state() != QEventPoint::Stationary) {
            records.push_back({ChangeOf(point.state()),
                               kFirstTouchPointer + static_cast<std::uint32_t>(point.id()),
                               Device::Touch, ToPanel(point.position()), true});
        }
    }
    const auto pInput = m_pInput;
    if (event.type() == QEvent::TouchBegin) {
        // Fingers that are still down here lost their end on the way.
        pInput->LosePointers(PanelInput::Loss::Canceled);
    }
    pInput->Apply(Gestures::PointerFrame{TimeOf(event.timestamp()), std::move(records)});
}

void QtPanelInput::HandleBorder(PointerChange eChange, QPointF pt) {
    // The time does not matter: crossing the border moves no gesture.
    const auto pInput = m_pInput;
    pInput->Apply(
        Gestures::PointerFrame{{}, {{eChange, kMousePointer, Device::Mouse, ToPanel(pt), false}}});
}

// --- wheel and touchpad ----------------------------------------------------

void QtPanelInput::HandleWheel(const QWheelEvent& event) {
    Gestures::ScrollRecord record;
    record.time = TimeOf(event.timestamp());
    record.ePhase = PhaseOf(event.phase());
    record.ptAt = ToPanel(event.position());
    record.nAngleX = event.angleDelta().x();
    record.nAngleY = event.angleDelta().y();
    record.ptPixels = ToPanel(event.pixelDelta());
    record.bControl = event.modifiers().testFlag(::Qt::ControlModifier);
    const auto pInput = m_pInput;
    const auto pEnvironment = m_pEnvironment;
    const QtEnvironment::KeyScope keys(*pEnvironment, record.bControl);
    pInput->Apply(record);
}

void QtPanelInput::HandleNativeGesture(const QNativeGestureEvent& event) {
    Gestures::PinchRecord record;
    record.ptAt = ToPanel(event.position());
    switch (event.gestureType()) {
        case ::Qt::BeginNativeGesture:
            record.ePhase = PinchPhase::Begin;
            break;
        case ::Qt::EndNativeGesture:
            record.ePhase = PinchPhase::End;
            break;
        case ::Qt::ZoomNativeGesture:
            record.fFactor = static_cast<float>(1.0 + event.value());
            break;
        default:
            return; // rotations, swipes, the smart zoom's double tap
    }
    const auto pInput = m_pInput;
    pInput->Apply(record);
}

}
