// A widget that hosts a tree of elements with one swap chain panel in it.
//
// The root gets the widget's size and the panel its composition scale; all of it
// is in force before any handler runs, and the panel hears first. The tree is loaded
// as long as the widget exists; a hidden widget keeps it loaded. The widget
// paints the panel's front image pixel by pixel, and has its input made into the
// panel's events. Other elements have widgets in it (`QtElementTree`); while a popup
// is open it has the keys.
//
// Units: the widget's own are Qt's; elements get device pixels divided by the
// composition scale. Threads: UI thread only. Several such widgets may stand in
// one top-level window, whose size is what the environment is told; of several
// windows the one that changed last counts there.
// Errors: what a handler of the tree throws never reaches Qt; it goes to
// `OnFailure`, or to the log when that is empty.
#pragma once

#include <QImage>
#include <QWidget>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/foundation/FailureSink.h"
#include "platform/qt/QtEnvironment.h"
#include "platform/qt/QtGraphicsState.h"
#include "platform/qt/QtPanelInput.h"
#include "platform/ui/Element.h"
#include "platform/ui/SwapChainPanel.h"
#include "platform/ui/Window.h"

namespace Platform::Qt {

class QtElementTree;
class QtSwapChain;

class QtElementWindow : public QWidget {
public:
    // `pRoot` has its panel somewhere below, or is it; a control's template is
    // applied here when it was not yet.
    QtElementWindow(std::shared_ptr<QtEnvironment> pEnvironment,
                    std::shared_ptr<Windows::UI::Xaml::FrameworkElement> pRoot,
                    QWidget* pParent = nullptr);
    ~QtElementWindow() override;

    const std::shared_ptr<Windows::UI::Xaml::Controls::SwapChainPanel>& Panel() const {
        return m_pPanel;
    }

    // The tree's side of this: keys, back requests, the on-screen keyboard.
    Windows::UI::Xaml::Window& View() const { return *m_pView; }

    // The frame that is shown, in device pixels; null before the first.
    QImage FrontImage() const;

    // Gives the tree the widget's size at once, also while the widget is hidden
    // and Qt puts its size event off.
    void Arrange();

    // Gives the tree this logical size whatever the widget measures, at its next
    // arrangement; for tools, whose sizes may be no whole device pixels.
    void FixLogicalSize(Windows::Foundation::Size size) { m_fixedSize = size; }

    // Ends the movement that goes on after a pan; for commands that place the
    // content anew.
    void StopInertia() { m_pInput->Recogniser().StopInertia(); }
    bool IsInertiaRunning() const { return m_pInput->Recogniser().IsInertiaRunning(); }
    bool IsTouched() const { return m_pInput->Recogniser().IsAnyDown(); }

    // What touches the panel is somebody else's from now on: its gesture is over, and
    // nothing more comes of it until it is up.
    void TakePointers() {
        m_pInput->Recogniser().LosePointers(Gestures::PanelInput::Loss::Capture);
    }

    // From now on the paint shows the frame of this moment, whatever is
    // presented, until it is released; for changes that the reader is to see
    // in one step.
    void HoldFrame();
    void ReleaseFrame();
    bool IsFrameHeld() const { return !m_heldFrame.isNull(); }

    // Shown where no frame reaches yet, as before the first and while a window
    // grows: the colour that the elements clear their frames to. Grey at first.
    void SetBackground(const QColor& color);

    // Whether a visible ring is shown as a busy mark; true at first.
    void ShowBusyMark(bool bShow);

    void OnFailure(FailureSink::Listener fnTell) { m_failures.Listen(std::move(fnTell)); }
    // Around a change of size: before the elements hear of it, and after.
    std::function<void()> OnBeforeArrange;
    std::function<void()> OnAfterArrange;
    std::function<void()> OnPresented; // a frame is ready; the paint follows
    std::function<void()> OnPainted;   // the front image went to the widget

protected:
    bool event(QEvent* pEvent) override;
    void focusInEvent(QFocusEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;
    void showEvent(QShowEvent* pEvent) override;

private:
    Windows::Foundation::Size ToLogical(QSize size) const;
    Windows::Foundation::Size LogicalSize() const;
    Windows::Foundation::Size WindowSize() const;
    void ArrangeTree(Windows::Foundation::Size size, float fScaleX, float fScaleY);
    void PaintFront(QPainter& painter, const QRegion& region);
    void WatchSwapChain();
    void UpdateFront(const QRect& rcFrame);
    void MakeTree();
    void FollowScale();
    void FollowKeyboard();

    FailureSink m_failures{"a handler of the window"};
    const std::shared_ptr<QtEnvironment> m_pEnvironment;
    const std::shared_ptr<Windows::UI::Xaml::FrameworkElement> m_pRoot;
    const std::shared_ptr<Windows::UI::Xaml::Window> m_pView;
    std::unique_ptr<QtElementTree> m_pTree;
    std::shared_ptr<Windows::UI::Xaml::Controls::SwapChainPanel> m_pPanel;
    std::shared_ptr<QtSwapChain> m_pSwapChain;
    std::unique_ptr<QtPanelInput> m_pInput;
    std::vector<std::function<void()>> m_unsubscribe;
    std::optional<Windows::Foundation::Size> m_fixedSize;
    double m_dbRatio = 0.0; // the one last arranged for; 0 before
    QImage m_heldFrame;
    QColor m_background{224, 224, 224};
    bool m_bShowBusyMark = true;
};

}
