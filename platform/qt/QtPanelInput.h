// Reports a widget's native input to the recogniser of its panel.
//
// Maps mouse, pen, touch, wheel and touchpad events to raw records and tells of
// pointers that Qt takes away; nothing is judged here.
// Lifetime: a handler of the panel may destroy the widget and this with it,
// inside any call. Threads: UI thread only.
#pragma once

#include <QPointF>
#include <memory>
#include <vector>

#include "platform/gestures/PanelInput.h"
#include "platform/qt/QtEnvironment.h"
#include "platform/ui/SwapChainPanel.h"

class QEvent;
class QMouseEvent;
class QNativeGestureEvent;
class QTabletEvent;
class QTouchEvent;
class QWheelEvent;
class QWidget;

namespace Platform::Qt {

class QtPanelInput {
public:
    QtPanelInput(QWidget& widget, std::shared_ptr<QtEnvironment> pEnvironment,
                 std::shared_ptr<Windows::UI::Xaml::Controls::SwapChainPanel> pPanel);
    ~QtPanelInput(); // what is under way completes
    QtPanelInput(const QtPanelInput&) = delete;
    QtPanelInput& operator=(const QtPanelInput&) = delete;

    // Whether the event was input over the panel and needs nobody else.
    bool Handle(QEvent& event);

    // Takes the scale and the frame rate of the screen that the widget is on.
    void FollowScreen();

    Gestures::PanelInput& Recogniser() const { return *m_pInput; }

private:
    bool HandleInput(QEvent& event);
    void HandleLoss(const QEvent& event);
    void HandleMouse(const QMouseEvent& event);
    void HandlePen(const QTabletEvent& event);
    void HandleTouch(const QTouchEvent& event);
    void HandleWheel(const QWheelEvent& event);
    void HandleNativeGesture(const QNativeGestureEvent& event);
    void HandleBorder(Gestures::PointerChange eChange, QPointF pt);
    void Send(quint64 nTimestamp, std::vector<Gestures::PointerRecord> records);
    Windows::Foundation::Point ToPanel(QPointF pt) const;

    QWidget& m_widget;
    const std::shared_ptr<QtEnvironment> m_pEnvironment;
    const std::shared_ptr<Windows::UI::Xaml::Controls::SwapChainPanel> m_pPanel;
    const std::shared_ptr<Gestures::PanelInput> m_pInput;
};

}
