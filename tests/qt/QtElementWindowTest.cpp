#include "platform/qt/QtElementWindow.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QTabletEvent>
#include <QTest>
#include <QWheelEvent>
#include <algorithm>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/qt/EventLoop.h"

namespace velko {
namespace {

namespace Controls = Windows::UI::Xaml::Controls;
using Platform::Qt::QtElementWindow;
using Platform::Qt::QtEnvironment;
using Windows::Foundation::Point;
using Windows::Foundation::Size;

class QtElementWindowTest : public ::testing::Test {
protected:
    QtElementWindowTest() {
        m_pRoot->AppendChild(m_pPanel);
        const auto fnPointer = [this](const char* szWhat) {
            return [this, szWhat](auto& args) {
                static const char* const s_devices[] = {"touch", "pen", "mouse"};
                Note((std::string(szWhat) + " " +
                      s_devices[static_cast<std::size_t>(args.PointerDeviceType)] +
                      std::to_string(args.PointerId))
                         .c_str(),
                     args.Position);
            };
        };
        m_pPanel->PointerPressed.add(fnPointer("pressed"));
        m_pPanel->PointerMoved.add(fnPointer("moved"));
        m_pPanel->PointerReleased.add(fnPointer("released"));
        m_pPanel->PointerEntered.add(fnPointer("entered"));
        m_pPanel->PointerExited.add(fnPointer("exited"));
        m_pPanel->PointerCaptureLost.add(fnPointer("lost"));
        m_pPanel->PointerCanceled.add(fnPointer("canceled"));
        m_pPanel->ManipulationStarted.add([this](auto& args) { Note("started", args.Position); });
        m_pPanel->ManipulationDelta.add([this](auto& args) {
            Note(("delta x" + std::to_string(args.Delta.Scale).substr(0, 3)).c_str(),
                 args.Position);
        });
        m_pPanel->ManipulationCompleted.add(
            [this](auto& args) { Note("completed", args.Position); });
        m_pPanel->PointerWheelChanged.add([this](auto& args) {
            m_log.push_back(std::string(args.IsHorizontalMouseWheel ? "across " : "wheel ") +
                            std::to_string(args.MouseWheelDelta) +
                            (m_pEnvironment->IsControlKeyDown() ? " ctrl" : ""));
        });
    }
    ~QtElementWindowTest() override {
        m_pWindow.reset();
        m_pDispatcher->ShutDown();
    }

    void MakeWindow(QtEnvironment::Options options = {}) {
        m_pEnvironment = std::make_shared<QtEnvironment>(m_pDispatcher, std::move(options));
        m_pWindow = std::make_unique<QtElementWindow>(m_pEnvironment, m_pRoot);
        m_pWindow->OnFailure([this](const std::exception_ptr& pError) {
            try {
                std::rethrow_exception(pError);
            } catch (const std::exception& failure) {
                m_log.emplace_back(failure.what());
            }
        });
        m_pWindow->resize(400, 300);
        m_pWindow->show();
        QCoreApplication::processEvents();
        m_log.clear();
    }

    void Note(const char* szWhat, Point pt) {
        m_log.push_back(std::string(szWhat) + " " + std::to_string(static_cast<int>(pt.X)) + "," +
                        std::to_string(static_cast<int>(pt.Y)));
    }

    void Mouse(QEvent::Type eType, QPointF pt, bool bDown, quint64 nTime = 0) {
        testing::SendMouse(*m_pWindow, eType, pt, bDown, nTime);
    }

    void Wheel(QPoint angle, Qt::KeyboardModifiers modifiers = Qt::NoModifier, QPoint pixels = {},
               Qt::ScrollPhase ePhase = Qt::NoScrollPhase) {
        QWheelEvent event(QPointF(20, 30), m_pWindow->mapToGlobal(QPointF(20, 30)), pixels, angle,
                          Qt::NoButton, modifiers, ePhase, false);
        QCoreApplication::sendEvent(m_pWindow.get(), &event);
    }

    void Native(Qt::NativeGestureType eType, double dbValue) {
        QNativeGestureEvent event(eType, QPointingDevice::primaryPointingDevice(), 2, {40, 50},
                                  {40, 50}, {40, 50}, dbValue, {});
        QCoreApplication::sendEvent(m_pWindow.get(), &event);
    }
    void Pen(QEvent::Type eType, QPointF pt, bool bDown) {
        QTabletEvent event(eType, QPointingDevice::primaryPointingDevice(), pt, pt, 0.5, 0, 0, 0, 0,
                           0, Qt::NoModifier,
                           eType == QEvent::TabletMove ? Qt::NoButton : Qt::LeftButton,
                           bDown ? Qt::LeftButton : Qt::NoButton);
        QCoreApplication::sendEvent(m_pWindow.get(), &event);
    }

    auto Touch() { // a sequence for widgets, which a copy would lose
        return QTest::touchEvent(m_pWindow.get(), m_pTouchScreen.get());
    }
    // Of no content but the kind.
    void Send(QEvent::Type eType) {
        QEvent event(eType);
        QCoreApplication::sendEvent(m_pWindow.get(), &event);
    }

    const std::shared_ptr<Platform::Qt::QtDispatcher> m_pDispatcher =
        Platform::Qt::QtDispatcher::Create();
    std::shared_ptr<QtEnvironment> m_pEnvironment;
    const std::shared_ptr<Controls::Grid> m_pRoot = std::make_shared<Controls::Grid>();
    const std::shared_ptr<Controls::SwapChainPanel> m_pPanel =
        std::make_shared<Controls::SwapChainPanel>();
    std::unique_ptr<QtElementWindow> m_pWindow;
    std::vector<std::string> m_log;
    const std::unique_ptr<QPointingDevice> m_pTouchScreen{QTest::createTouchDevice()};
};

using Log = std::vector<std::string>;

TEST_F(QtElementWindowTest, SizeAndScaleAreInForceBeforeAnyHandlerAndThePanelHearsFirst) {
    Log heard;
    const auto hear = [&](const char* szWho) {
        heard.push_back(std::string(szWho) + " " +
                        std::to_string(static_cast<int>(m_pPanel->ActualWidth())) + " " +
                        std::to_string(static_cast<int>(m_pPanel->CompositionScaleX() * 10)));
    };
    m_pPanel->CompositionScaleChanged.add([&] { hear("scale"); });
    m_pPanel->SizeChanged.add([&](const auto&) { hear("panel"); });
    m_pRoot->SizeChanged.add([&](const auto&) { hear("root"); });
    QtEnvironment::Options options;
    options.fCompositionScaleX = 2.0F;
    options.fCompositionScaleY = 2.0F;
    MakeWindow(options);
    EXPECT_EQ(heard, (Log{"scale 200 20", "panel 200 20", "root 200 20"}));
    EXPECT_EQ(m_pEnvironment->WindowBounds(),
              Windows::Foundation::Rect(0.0F, 0.0F, 200.0F, 150.0F));
    heard.clear();
    m_pPanel->SizeChanged.add([&](const auto&) {
        EXPECT_EQ(m_pRoot->ActualWidth(), m_pPanel->ActualWidth());
        EXPECT_EQ(m_pEnvironment->WindowBounds().Width, m_pPanel->ActualWidth());
    });
    m_pEnvironment->WindowSizeChanged.add([&](Size) { hear("window"); });
    m_pWindow->resize(500, 300);
    EXPECT_EQ(heard, (Log{"panel 250 20", "root 250 20", "window 250 20"}));
    m_pWindow->FixLogicalSize({333.0F, 217.0F});
    m_pWindow->resize(501, 300);
    EXPECT_EQ(m_pRoot->ActualWidth(), 333.0);
    EXPECT_EQ(m_pPanel->ActualHeight(), 217.0);
    heard.clear();
    m_pEnvironment->SetCompositionScale(3.0F, 2.0F); // alone: sizes in it are stale
    m_pWindow->Arrange();
    ASSERT_GE(heard.size(), 3U);
    EXPECT_EQ(heard.front(), "scale 333 30");
    EXPECT_LT(std::find(heard.begin(), heard.end(), "panel 333 30"),
              std::find(heard.begin(), heard.end(), "root 333 30"));
}

TEST_F(QtElementWindowTest, AFailingSizeHandlerIsReportedAndTheOthersStillRun) {
    MakeWindow();
    m_pPanel->SizeChanged.add([](const auto&) { throw std::runtime_error("panel failed"); });
    m_pWindow->resize(444, 300);
    EXPECT_EQ(m_log, Log{"panel failed"});
    EXPECT_EQ(m_pRoot->ActualWidth(), 444.0);
}

TEST_F(QtElementWindowTest, TheTreeIsLoadedAsLongAsTheWindowLives) {
    int nUnloaded = 0;
    m_pPanel->Unloaded.add([&] { ++nUnloaded; });
    MakeWindow();
    EXPECT_TRUE(m_pRoot->IsLoaded());
    m_pWindow->hide();
    m_pWindow->show();
    EXPECT_EQ(nUnloaded, 0);
    m_pWindow.reset();
    EXPECT_EQ(nUnloaded, 1);
}

// What becomes of Qt's events on their way to the panel; what the panel makes of
// them is the recogniser's.
TEST_F(QtElementWindowTest, EachEventReachesThePanelAsWhatItIs) {
    MakeWindow();
    struct Case {
        const char* szName;
        std::function<void()> fnSend;
        Log expected;
    };
    const Case cases[] = {
        {"mouse",
         [&] {
             Mouse(QEvent::MouseMove, {9, 9}, false);
             Mouse(QEvent::MouseButtonPress, {10, 20}, true);
             Mouse(QEvent::MouseMove, {11, 21}, true);
             Mouse(QEvent::MouseButtonRelease, {12, 22}, false);
             Mouse(QEvent::MouseButtonDblClick, {12, 22}, true);
             Mouse(QEvent::MouseButtonRelease, {12, 22}, false);
         },
         {"moved mouse1 9,9", "pressed mouse1 10,20", "moved mouse1 11,21", "released mouse1 12,22",
          "pressed mouse1 12,22", "released mouse1 12,22"}},
        {"pen",
         [&] {
             Pen(QEvent::TabletMove, {5, 5}, false);
             Pen(QEvent::TabletPress, {10, 10}, true);
             Pen(QEvent::TabletRelease, {10, 12}, false);
         },
         {"moved pen2 5,5", "pressed pen2 10,10", "released pen2 10,12"}},
        {"wheel",
         [&] {
             Wheel({0, -240});
         },
         {"wheel -240"}},
        {"tilted wheel with a key",
         [&] {
             Wheel({120, 0}, Qt::ControlModifier);
         },
         {"across 120 ctrl"}},
        {"touchpad, two fingers along",
         [&] {
             Wheel({}, Qt::NoModifier, {}, Qt::ScrollBegin);
             Wheel({0, 8}, Qt::NoModifier, {0, 12}, Qt::ScrollUpdate);
             Wheel({}, Qt::NoModifier, {}, Qt::ScrollEnd);
         },
         {"started 20,30", "delta x1.0 20,42", "completed 20,42"}},
        {"touchpad, two fingers apart",
         [&] {
             Native(Qt::BeginNativeGesture, 0.0);
             Native(Qt::ZoomNativeGesture, 0.5);
             Native(Qt::SmartZoomNativeGesture, 1.0);
             Native(Qt::RotateNativeGesture, 30.0);
             Native(Qt::EndNativeGesture, 0.0);
         },
         {"started 40,50", "delta x1.5 40,50", "completed 40,50"}},
    };
    for (const Case& c : cases) {
        m_log.clear();
        c.fnSend();
        EXPECT_EQ(m_log, c.expected) << c.szName;
    }
    m_pWindow->setEnabled(false);
    m_log.clear();
    cases[0].fnSend();
    EXPECT_TRUE(m_log.empty()) << "disabled";
}

TEST_F(QtElementWindowTest, FingersKeepTheirNumbers) {
    MakeWindow();
    Touch().press(0, QPoint(100, 100));
    Touch().stationary(0).press(1, QPoint(200, 100));
    Touch().move(0, QPoint(90, 100)).move(1, QPoint(210, 100));
    Touch().release(0, QPoint(90, 100)).stationary(1);
    Touch().release(1, QPoint(210, 100));
    EXPECT_EQ(m_log,
              (Log{"pressed touch3 100,100", "pressed touch4 200,100", "moved touch3 90,100",
                   "moved touch4 210,100", "started 150,100", "delta x1.2 150,100",
                   "released touch3 90,100", "completed 150,100", "released touch4 210,100"}));
}

// Each way in which Qt takes a pointer away completes the gesture under way.
TEST_F(QtElementWindowTest, EveryLossEndsWhatIsUnderWay) {
    MakeWindow();
    const std::vector<std::pair<const char*, std::function<void()>>> losses = {
        {"ungrab", [&] { Send(QEvent::UngrabMouse); }},
        {"deactivated", [&] { Send(QEvent::WindowDeactivate); }},
        {"blocked", [&] { Send(QEvent::WindowBlocked); }},
        {"cancelled", [&] { Send(QEvent::TouchCancel); }},
        {"hidden",
         [&] {
             m_pWindow->hide();
             m_pWindow->show();
         }},
        {"a move without its button",
         [&] {
             Mouse(QEvent::MouseMove, {100, 170}, false);
         }},
        {"destroyed", [&] { m_pWindow.reset(); }},
    };
    for (const auto& [szName, fnLose] : losses) {
        Mouse(QEvent::MouseButtonPress, {100, 100}, true);
        Mouse(QEvent::MouseMove, {100, 160}, true);
        m_log.clear();
        fnLose();
        if (m_pWindow) {
            Mouse(QEvent::MouseButtonRelease, {100, 200}, false); // one that comes late
        }
        EXPECT_EQ(std::count(m_log.begin(), m_log.end(), "completed 100,160"), 1) << szName;
    }
}

TEST_F(QtElementWindowTest, TheTimesOfItsEventsMakeAFlingThatAKeyStops) {
    MakeWindow();
    const auto fling = [this] {
        Mouse(QEvent::MouseButtonPress, {100, 50}, true, 1000);
        for (quint64 n = 1; n <= 5; ++n) {
            Mouse(QEvent::MouseMove, {100, 50.0 + 20.0 * static_cast<double>(n)}, true,
                  1000 + 8 * n);
        }
        Mouse(QEvent::MouseButtonRelease, {100, 150}, false, 1045);
    };
    fling();
    EXPECT_TRUE(m_pWindow->IsInertiaRunning());
    EXPECT_GT(m_pEnvironment->RunningTimers(), 0);
    ASSERT_TRUE(testing::RunUntil([this] { return !m_pWindow->IsInertiaRunning(); }));
    EXPECT_NE(m_log.back(), "completed 100,150") << "it went on";
    EXPECT_EQ(m_pEnvironment->RunningTimers(), 0);
    fling();
    QTest::keyClick(m_pWindow.get(), Qt::Key_PageDown);
    EXPECT_FALSE(m_pWindow->IsInertiaRunning());
    EXPECT_EQ(m_log.back(), "completed 100,150");
}

TEST_F(QtElementWindowTest, AHandlerMayDestroyTheWindow) {
    MakeWindow();
    int nCompleted = 0;
    m_pPanel->ManipulationCompleted.add([&](auto&) { ++nCompleted; });
    const auto token = m_pPanel->ManipulationDelta.add([this](auto&) {
        m_pWindow.reset();
        throw std::runtime_error("nobody is left to hear of it");
    });
    Mouse(QEvent::MouseButtonPress, {100, 100}, true);
    QMouseEvent move(QEvent::MouseMove, {100, 150}, {100, 150}, Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    static_cast<QObject&>(*m_pWindow)
        .event(&move); // Qt itself holds on to a widget that it sends events to
    EXPECT_EQ(m_pWindow, nullptr);
    EXPECT_EQ(nCompleted, 1);
    m_pPanel->ManipulationDelta.remove(token);
}

}
}
