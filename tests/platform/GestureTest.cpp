#include "tests/platform/GestureFixture.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

namespace velko {
namespace {

using namespace std::chrono_literals;
using Gestures::PinchPhase;
using Gestures::ScrollPhase;

class GestureTest : public GestureFixture {};

// A pan of 100 down in 40 ms whose end the row decides.
const std::string kFastPan =
    "d1@500,100 +8 m1@500,120 +8 m1@500,140 +8 m1@500,160 +8 m1@500,180 +8 m1@500,200 ";
const std::string kSpread = "d1@100,100 d2@200,100 +8 m1@50,100 m2@250,100 +8 ";

struct Recording {
    const char* szWhat;
    std::string strScript;
    const char* szStory;
};

TEST_F(GestureTest, RecordedInputBecomesTheseEvents) {
    const std::vector<Recording> recordings{
        {"a short press", "d1@50,60 +40 m1@53,60 +8 u1@53,60", "tap 50,60"},
        {"a finger that stays and then moves", "d1@50,60 +600 m1@50,90 +300 u1@50,90",
         "hold 50,60; start 50,60; pan 0,30; end"},
        {"a mouse that stays", "dM@50,60 +600 uM@50,60", "tap 50,60"},
        {"a pen pans", "dP@50,60 +8 mP@90,60 +200 uP@90,60", "start 50,60; pan 40,0; end"},
        {"rest before the lift", kFastPan + "+200 u1@500,200 +5000",
         "start 500,100; pan 0,100; end"},
        {"reports at rest before the lift",
         kFastPan + "+60 m1@500,200 +60 m1@500,200 +8 u1@500,200", "start 500,100; pan 0,100; end"},
        {"movements below a pixel add up",
         "d1@50,50 +8 m1@50,90 +8 m1@50,90.6 +8 m1@50,91.2 +99 u1@50,91.2",
         "start 50,50; pan 0,41; end"},
        {"the lift itself moves", "d1@50,50 +8 m1@50,90 +200 u1@50,95",
         "start 50,50; pan 0,45; end"},
        {"no times at all", "d1@500,100 m1@500,200 all m1@500,300 all u1@500,300",
         "start 500,100; pan 0,200; end"},
        {"a press ends the fling and is no tap", kFastPan + "+8 u1@500,200 +1 d1@9,9 +600 u1@9,9",
         "start 500,100; pan 0,100; end"},
        {"a caught fling pans from the first movement",
         kFastPan + "+8 u1@500,200 +1 d1@9,9 +8 m1@9,10 +99 u1@9,10",
         "start 500,100; pan 0,100; end; start 9,9; pan 0,1; end"},
        {"a finger that comes and goes during a pan",
         "d1@100,100 +8 m1@100,150 +8 d2@300,300 +8 m1@100,160 m2@300,310 +8 u2@300,310 +8 "
         "m1@100,170 +99 u1@100,170",
         "start 100,100; pan 0,70; end"},
        {"two fingers side by side",
         "d1@100,100 d2@200,100 +8 m1@103,140 m2@201,141 +8 m1@102,180 m2@204,180 +8 u1@102,180 "
         "+8 m2@204,190 +99 u2@204,190",
         "start 150,100; pan 3,90; end"},
        {"the finger that stays after a pinch",
         kSpread + "u1@50,100 +8 m2@250,300 +8 m2@250,400 +8 u2@250,400 +5000",
         "start 150,100; pinch x200%; end"},
        {"and pinches again with another",
         kSpread + "u1@50,100 +8 d3@250,200 +8 m3@250,150 +8 m2@260,100 m3@260,150 +8 u3@260,150 "
                   "u2@260,100",
         "start 150,100; pinch x200%; end; start 250,150; pinch x50%; end"},
        {"a third finger in a pinch",
         kSpread + "d3@400,400 +8 m3@500,500 +8 u3@500,500 +8 "
                   "m1@100,100 m2@200,100 +8 u1@100,100 u2@200,100",
         "start 150,100; pinch x100%; end"},
        {"a pan that becomes a pinch beside it",
         "d1@100,100 +8 m1@100,150 +8 d2@200,150 +8 m1@50,150 m2@250,150 +8 u1@50,150 u2@250,150",
         "start 100,100; pan 0,50; end; start 150,150; pinch x200%; end"},
        {"a pinch to where it began",
         kSpread + "m1@100,100 m2@200,100 +8 m1@150,200 m2@250,200 "
                   "+8 u1@0,0 u2@100,0",
         "start 150,100; pinch x100%; end"},
        {"a cancelled finger", kFastPan + "+8 c1@500,200 +8 m1@500,300 u1@500,300",
         "start 500,100; pan 0,100; end"},
        {"lost pointers", kFastPan + "lost m1@500,300 +8 u1@500,300 +8 d1@1,2 +8 u1@1,2",
         "start 500,100; pan 0,100; end; lost; tap 1,2"},
        {"a release that went elsewhere", "dM@9,9 +8 mM@9,99 +8 hM@9,199 +8 uM@9,199",
         "start 9,9; pan 0,90; end; lost"},
        {"a finger whose lift was never told", kFastPan + "+8 d1@7,7 +8 u1@7,7",
         "start 500,100; pan 0,100; end; tap 7,7"},
        {"the panel is unloaded", kFastPan + "unloaded m1@500,300 +8 u1@500,300",
         "start 500,100; pan 0,100; end; lost"},
        {"scrolling is left to the system in the midst",
         kFastPan + "system m1@500,300 +8 all m1@500,400 +8 u1@500,400 +5000",
         "start 500,100; pan 0,100; end"},
        {"scrolling is left to the system", "system d1@9,9 +8 m1@9,99 +8 u1@9,99 +8 all", ""},
        {"a mouse beside a finger",
         "d1@9,9 +8 m1@9,99 dM@500,500 +8 mM@500,600 +200 uM@500,600 "
         "u1@9,99",
         "start 9,9; pan 0,90; end"},
    };
    Tell();
    for (const Recording& recording : recordings) {
        SCOPED_TRACE(recording.szWhat);
        Play(recording.strScript);
        EXPECT_EQ(Story(), recording.szStory);
        EXPECT_EQ(m_host.Clock().RunningTimers(), 0U);
        EXPECT_FALSE(m_pInput->IsAnyDown());
        m_pPanel->RaiseLoaded();
        Pass(3s);
        EXPECT_EQ(Story(), "") << "later";
    }
}

// --- inertia ---------------------------------------------------------------

class FlingTest : public GestureTest {
protected:
    FlingTest() {
        m_pPanel->ManipulationDelta.add([this](auto& args) {
            if (args.IsInertial) {
                m_steps.push_back(args.Delta.Translation.Y);
            }
        });
        m_pPanel->ManipulationCompleted.add([this](auto& args) {
            ++m_nCompleted;
            m_bEndedInertial = args.IsInertial;
        });
    }
    double Way() const {
        double dbSum = 0.0;
        for (const float fStep : m_steps) {
            dbSum += fStep;
        }
        return dbSum;
    }

    std::vector<float> m_steps;
    int m_nCompleted = 0;
    bool m_bEndedInertial = false;
};

TEST_F(FlingTest, SlowsDownSteadilyAndGoesAsFarAsItsSpeedSays) {
    Play(kFastPan + "u1@500,200"); // 100 in 40 ms: 2500 a second
    EXPECT_EQ(m_nCompleted, 0) << "it goes on";
    EXPECT_TRUE(m_pInput->IsInertiaRunning());
    Pass(5s);
    ASSERT_GT(m_steps.size(), 20U);
    for (std::size_t n = 1; n < m_steps.size() && m_steps[n] > 2.0F; ++n) {
        EXPECT_GT(m_steps[n - 1], m_steps[n]) << n;
    }
    EXPECT_GE(*std::min_element(m_steps.begin(), m_steps.end()), 1.0F) << "less is not seen";
    EXPECT_NEAR(m_steps[0] / 0.016, 2500.0, 80.0) << "no leap in speed at the lift";
    EXPECT_LT(m_steps.back(), 2.0F) << "and none at the end";
    EXPECT_NEAR(Way(), (2500.0 - 40.0) * 0.325, 1.0);
    EXPECT_EQ(m_nCompleted, 1);
    EXPECT_TRUE(m_bEndedInertial);
    EXPECT_EQ(m_host.Clock().RunningTimers(), 0U);
}

TEST_F(FlingTest, EndsAtTheSamePlaceWhateverTheFrameRateAndStepsLessThanAPanel) {
    Gestures::PanelInput::Settings settings;
    settings.frame = 31ms;
    m_pInput->Configure(settings);
    Play(kFastPan + "u1@500,200");
    Pass(5s);
    EXPECT_NEAR(Way(), (2500.0 - 40.0) * 0.325, 1.0);
    m_steps.clear();
    m_pPanel->Arrange({1000.0F, 40.0F});
    Play(kFastPan + "u1@500,200");
    Pass(10s);
    EXPECT_NEAR(Way(), (2500.0 - 40.0) * 0.325, 1.0);
    EXPECT_LT(*std::max_element(m_steps.begin(), m_steps.end()), 40.0F);
    m_pPanel->Arrange({0.0F, 0.0F});
    Play(kFastPan + "u1@500,200");
    Pass(10s);
    EXPECT_EQ(m_nCompleted, 3);
}

TEST_F(FlingTest, IsStoppedByWhatTheReaderDoesNext) {
    const std::vector<std::function<void()>> acts{
        [this] { Play("d1@5,5 +8 u1@5,5"); },
        [this] { m_pInput->StopInertia(); },
        [this] { Play("unloaded"); },
        [this] { Scroll(ScrollPhase::None, {}); },
        [this] { Scroll(ScrollPhase::Begin, {}); },
        [this] {
            Pinch(PinchPhase::Zoom, 1.1F);
            Pinch(PinchPhase::End);
        },
        [this] { Play("system +20 all"); },
    };
    int nTapped = 0;
    m_pPanel->Tapped.add([&](auto&) { ++nTapped; });
    for (std::size_t n = 0; n < acts.size(); ++n) {
        SCOPED_TRACE(n);
        m_pPanel->RaiseLoaded();
        Play(kFastPan + "u1@500,200 +100");
        m_nCompleted = 0;
        m_steps.clear();
        acts[n]();
        EXPECT_EQ(m_nCompleted, n == 5 ? 2 : 1);
        Pass(5s);
        EXPECT_TRUE(m_steps.empty());
    }
    EXPECT_EQ(nTapped, 0);
    Play(kFastPan + "u1@500,200 lost +5000"); // there was nothing left to lose
    EXPECT_NEAR(Way(), (2500.0 - 40.0) * 0.325, 1.0);
}

// --- wheel and touchpad ----------------------------------------------------

TEST_F(GestureTest, FineWheelStepsGatherIntoWholeNotches) {
    Tell();
    struct Step {
        std::chrono::milliseconds pause;
        int nX;
        int nY;
        const char* szStory;
    };
    const std::vector<Step> steps{
        {0ms, 0, 120, "wheel 120"},
        {8ms, 0, 80, ""},
        {8ms, 0, 45, "wheel 120"},
        {8ms, 0, 115, "wheel 120"},
        {8ms, 0, 100, ""},
        {8ms, 0, -360, "wheel -360"},
        {8ms, 0, -60, ""},
        {1500ms, 0, -60, ""},
        {900ms, 0, -60, "wheel -120"},
        {8ms, 120, 120, "wheel 120; across 120"},
        {8ms, -240, 0, "across -240"},
    };
    for (std::size_t n = 0; n < steps.size(); ++n) {
        Pass(steps[n].pause);
        Gestures::ScrollRecord record;
        record.time = m_time;
        record.nAngleX = steps[n].nX;
        record.nAngleY = steps[n].nY;
        m_pInput->Apply(record);
        EXPECT_EQ(Story(), steps[n].szStory) << n;
    }
}

TEST_F(GestureTest, ATouchpadPansZoomsAndPinches) {
    Tell();
    Scroll(ScrollPhase::Begin, {});
    Scroll(ScrollPhase::Update, {0, 12});
    Scroll(ScrollPhase::Update, {3, 12}, true); // it stays a pan
    Scroll(ScrollPhase::Momentum, {0, 8});
    Scroll(ScrollPhase::End, {});
    Pass(5s);
    EXPECT_EQ(Story(), "start 300,200; pan 3,24; fling 0,8; end of fling") << "no other inertia";

    Scroll(ScrollPhase::Begin, {0, 50.5F}, true);
    Scroll(ScrollPhase::Update, {0, 70.0F}, true);
    Scroll(ScrollPhase::Update, {0, -300.0F}, true);
    Scroll(ScrollPhase::Momentum, {0, -500.0F});
    Scroll(ScrollPhase::End, {});
    EXPECT_EQ(Story(), "wheel 120; wheel -240");

    Pinch(PinchPhase::Begin);
    Pinch(PinchPhase::End);
    Pinch(PinchPhase::Begin);
    Pinch(PinchPhase::Zoom, 1.25F);
    Pinch(PinchPhase::Zoom, 0.8F); // back to where it began, and still a pinch
    Pinch(PinchPhase::Zoom, -4.0F);
    Pinch(PinchPhase::End);
    EXPECT_EQ(Story(), "start 300,200; pinch x10%; end");
}

TEST_F(GestureTest, ATouchpadYieldsToFingersAndIsNotTakenUpHalfway) {
    Tell();
    Scroll(ScrollPhase::Begin, {0, 10});
    Play("d1@9,9 +8 m1@9,99");
    Scroll(ScrollPhase::Update, {0, 10});
    Pinch(PinchPhase::Zoom, 2.0F);
    Play("+99 u1@9,99");
    Scroll(ScrollPhase::Update, {0, 10});
    Scroll(ScrollPhase::End, {});
    EXPECT_EQ(Story(), "start 300,200; pan 0,10; end; start 9,9; pan 0,90; end");

    Pinch(PinchPhase::Zoom, 2.0F);
    m_pInput->Stop();
    Pinch(PinchPhase::Zoom, 2.0F);
    Pinch(PinchPhase::End);
    EXPECT_EQ(Story(), "start 300,200; pinch x200%; end");

    Scroll(ScrollPhase::Begin, {0, 10}); // whose end never comes
    Pass(3s);
    Scroll(ScrollPhase::Momentum, {0, 10});
    EXPECT_EQ(Story(), "start 300,200; pan 0,10; end");
}

// --- handlers --------------------------------------------------------------

TEST_F(GestureTest, AHandlerThatFailsHidesNothingFromTheOtherEvents) {
    int nFailures = 0;
    m_pInput->OnFailure([&](const std::exception_ptr&) { ++nFailures; });
    Tell();
    const auto fnFail = [](auto&) { throw std::runtime_error("host failed"); };
    m_pPanel->PointerPressed.add(fnFail);
    m_pPanel->ManipulationStarted.add(fnFail);
    m_pPanel->ManipulationDelta.add(fnFail);
    m_pPanel->ManipulationCompleted.add(fnFail);
    Play(kFastPan + "+200 u1@500,200");
    EXPECT_EQ(Story(), "start 500,100; pan 0,100; end");
    EXPECT_EQ(nFailures, 8);
    m_pInput->OnFailure(nullptr);
    Play("d1@9,9");
    EXPECT_TRUE(m_host.DebugContains("host failed"));
}

}
}
