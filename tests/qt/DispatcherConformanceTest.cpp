// What every dispatcher and its timers promise, asked of Qt's and of the one
// that tests step by hand.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/fake/ManualClock.h"
#include "platform/foundation/Exception.h"
#include "platform/qt/QtDispatcher.h"
#include "platform/qt/QtDispatcherTimer.h"
#include "platform/system/Debug.h"
#include "tests/qt/EventLoop.h"

namespace velko {
namespace {

using concurrency::priority;
using Platform::Fake::ManualClock;
using Platform::Fake::ManualDispatcher;
using Platform::Qt::QtDispatcher;
using Platform::Qt::QtDispatcherTimer;
using testing::RunUntil;
using namespace std::chrono_literals;
using Timer = std::shared_ptr<Windows::UI::Xaml::DispatcherTimer>;

struct QtHost {
    ~QtHost() { pDispatcher->ShutDown(); }
    bool RunAll() {
        return RunUntil([this] { return pDispatcher->PendingCount() == 0; });
    }
    std::size_t Pending() const { return pDispatcher->PendingCount(); }
    Timer MakeTimer() const { return std::make_shared<QtDispatcherTimer>(pRunning); }
    std::size_t RunningTimers() const { return static_cast<std::size_t>(pRunning->load()); }
    template <class F>
    bool PassUntil(F fnCondition) {
        return RunUntil(fnCondition);
    }

    const std::shared_ptr<QtDispatcher> pDispatcher = QtDispatcher::Create();
    const std::shared_ptr<std::atomic<int>> pRunning = std::make_shared<std::atomic<int>>(0);
};

struct ManualHost {
    bool RunAll() {
        pDispatcher->RunAll();
        return true;
    }
    std::size_t Pending() const { return pDispatcher->Pending(); }
    Timer MakeTimer() const { return pClock->CreateTimer(); }
    std::size_t RunningTimers() const { return pClock->RunningTimers(); }
    template <class F>
    bool PassUntil(F fnCondition) {
        for (int nStep = 0; nStep < 100 && !fnCondition(); ++nStep) {
            pClock->Advance(1ms);
        }
        return fnCondition();
    }

    const std::shared_ptr<ManualDispatcher> pDispatcher = std::make_shared<ManualDispatcher>();
    const std::shared_ptr<ManualClock> pClock = std::make_shared<ManualClock>(pDispatcher);
};

template <class Host>
class DispatcherConformance : public ::testing::Test {
protected:
    DispatcherConformance() {
        Platform::Debug::SetSink([this](std::string_view strText) { m_strLog += strText; });
    }
    ~DispatcherConformance() override { Platform::Debug::SetSink({}); }

    void Post(priority ePriority, char c) {
        m_host.pDispatcher->post(ePriority, [this, c] { m_strRan += c; });
    }

    Host m_host;
    std::string m_strRan;
    std::string m_strLog;
};

using Hosts = ::testing::Types<QtHost, ManualHost>;
TYPED_TEST_SUITE(DispatcherConformance, Hosts, );

TYPED_TEST(DispatcherConformance, RunsByPriorityThenByAgeAndLetsTheMoreUrgentOvertake) {
    this->Post(priority::low, 'f');
    this->Post(priority::normal, 'b');
    this->m_host.pDispatcher->post(priority::normal, [this] {
        this->m_strRan += 'c';
        this->Post(priority::high, 'd');
        this->Post(priority::idle, 'h');
    });
    this->Post(priority::normal, 'e');
    this->Post(priority::idle, 'g');
    this->Post(priority::high, 'a');
    EXPECT_EQ(this->m_host.Pending(), 6U);
    ASSERT_TRUE(this->m_host.RunAll());
    EXPECT_EQ(this->m_strRan, "abcdefgh");
}

TYPED_TEST(DispatcherConformance, AWorkOfAnotherThreadRunsOnTheUiThreadInItsContext) {
    auto& dispatcher = *this->m_host.pDispatcher;
    bool bAccessThere = true;
    std::thread([&] {
        bAccessThere = dispatcher.HasThreadAccess();
        dispatcher.post(priority::normal, [&] {
            EXPECT_TRUE(dispatcher.HasThreadAccess());
            EXPECT_EQ(concurrency::context::current().get(), &dispatcher);
            this->m_strRan += 'a';
        });
    }).join();
    EXPECT_FALSE(bAccessThere);
    ASSERT_TRUE(this->m_host.RunAll());
    EXPECT_EQ(this->m_strRan, "a");
}

TYPED_TEST(DispatcherConformance, AFailingWorkIsLoggedAndTheNextOneRuns) {
    this->m_host.pDispatcher->post(priority::normal, [] { throw Platform::ReadFaultException(); });
    this->m_host.pDispatcher->post(priority::normal, [] { throw 7; });
    this->Post(priority::normal, 'a');
    ASSERT_TRUE(this->m_host.RunAll());
    EXPECT_EQ(this->m_strRan, "a");
    EXPECT_NE(this->m_strLog.find("Platform::ReadFaultException: read failed\n"), std::string::npos)
        << this->m_strLog;
}

TYPED_TEST(DispatcherConformance, ShutDownDestroysWhatHasNotRunAndWhatComesLater) {
    const auto pOwned = std::make_shared<int>(1);
    const auto fnPost = [&] {
        this->m_host.pDispatcher->post(priority::high, [this, pOwned] { this->m_strRan += 'a'; });
    };
    fnPost();
    this->m_host.pDispatcher->ShutDown();
    EXPECT_EQ(pOwned.use_count(), 1);
    fnPost();
    EXPECT_EQ(pOwned.use_count(), 1);
    EXPECT_TRUE(this->m_host.RunAll());
    EXPECT_EQ(this->m_strRan, "");
    EXPECT_EQ(this->m_host.Pending(), 0U);
}

TYPED_TEST(DispatcherConformance, ATimerTicksUntilItIsStoppedAndBeginsAnewWhenStarted) {
    int nTicks = 0;
    const Timer pTimer = this->m_host.MakeTimer();
    pTimer->Tick.add([&] {
        if (++nTicks == 3) {
            pTimer->Stop();
        }
    });
    EXPECT_THROW(pTimer->Interval(-1ms), Platform::InvalidArgumentException);
    pTimer->Interval(1h);
    pTimer->Start();
    EXPECT_EQ(this->m_host.RunningTimers(), 1U);
    pTimer->Interval(1ms);
    pTimer->Start();
    EXPECT_EQ(this->m_host.RunningTimers(), 1U);
    EXPECT_TRUE(this->m_host.PassUntil([&] { return !pTimer->IsEnabled(); }));
    EXPECT_EQ(nTicks, 3);
    EXPECT_EQ(this->m_host.RunningTimers(), 0U);
}

TYPED_TEST(DispatcherConformance, ATickMayFailOrReleaseTheTimer) {
    int nTicks = 0;
    Timer pTimer = this->m_host.MakeTimer();
    pTimer->Interval(1ms);
    pTimer->Tick.add([&] {
        if (++nTicks == 1) {
            throw std::runtime_error("first tick");
        }
        pTimer.reset();
    });
    pTimer->Start();
    EXPECT_TRUE(this->m_host.PassUntil([&] { return nTicks == 2; }));
    EXPECT_NE(this->m_strLog.find("first tick"), std::string::npos);
    EXPECT_EQ(this->m_host.RunningTimers(), 0U);
}

TEST(QtDispatcherTest, AWorkMayShutTheDispatcherDownAndLetGoOfIt) {
    auto pDispatcher = QtDispatcher::Create();
    const std::weak_ptr<QtDispatcher> wkDispatcher = pDispatcher;
    bool bLaterRan = false;
    pDispatcher->post(priority::normal, [&pDispatcher] {
        pDispatcher->ShutDown();
        pDispatcher.reset();
    });
    pDispatcher->post(priority::normal, [&] { bLaterRan = true; });
    EXPECT_TRUE(RunUntil([&] { return wkDispatcher.expired(); }));
    EXPECT_FALSE(bLaterRan);
    EXPECT_EQ(concurrency::context::current(), nullptr);
}

}
}
