#include "platform/qt/QtDispatcher.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/foundation/Exception.h"
#include "platform/qt/QtDispatcherTimer.h"
#include "platform/system/Debug.h"
#include "tests/qt/EventLoop.h"

namespace velko {
namespace {

using concurrency::priority;
using Platform::Qt::QtDispatcher;
using Platform::Qt::QtDispatcherTimer;
using testing::RunUntil;

class QtDispatcherTest : public ::testing::Test {
protected:
    ~QtDispatcherTest() override {
        m_pDispatcher->ShutDown();
        Platform::Debug::SetSink({});
    }

    void Post(priority ePriority, int nWork) {
        m_pDispatcher->post(ePriority, [this, nWork] { m_ran.push_back(nWork); });
    }
    bool RunAll() {
        return RunUntil([this] { return m_pDispatcher->PendingCount() == 0; });
    }
    void CaptureLog() {
        Platform::Debug::SetSink([this](std::string_view strText) { m_strLog += strText; });
    }

    const std::shared_ptr<QtDispatcher> m_pDispatcher = QtDispatcher::Create();
    std::vector<int> m_ran;
    std::string m_strLog;
};

TEST_F(QtDispatcherTest, RunsByPriorityAndThenByAge) {
    Post(priority::normal, 1);
    Post(priority::idle, 2);
    Post(priority::high, 3);
    Post(priority::low, 4);
    Post(priority::normal, 5);
    Post(priority::high, 6);
    EXPECT_EQ(m_pDispatcher->PendingCount(), 6U);
    ASSERT_TRUE(RunAll());
    EXPECT_EQ(m_ran, (std::vector{3, 6, 1, 5, 4, 2}));
}

TEST_F(QtDispatcherTest, AWorkPostedMeanwhileOvertakesWhatIsLessUrgent) {
    m_pDispatcher->post(priority::normal, [this] {
        m_ran.push_back(1);
        Post(priority::high, 2);
        Post(priority::idle, 3);
    });
    Post(priority::normal, 4);
    ASSERT_TRUE(RunAll());
    EXPECT_EQ(m_ran, (std::vector{1, 2, 4, 3}));
}

TEST_F(QtDispatcherTest, AWorkOfAnotherThreadRunsOnTheUiThreadInItsContext) {
    bool bAccessThere = true;
    bool bAccessInWork = false;
    std::shared_ptr<concurrency::context> pContextInWork;
    std::thread poster([&] {
        bAccessThere = m_pDispatcher->HasThreadAccess();
        m_pDispatcher->post(priority::normal, [&] {
            bAccessInWork = m_pDispatcher->HasThreadAccess();
            pContextInWork = concurrency::context::current();
        });
    });
    poster.join();
    ASSERT_TRUE(RunAll());
    EXPECT_FALSE(bAccessThere);
    EXPECT_TRUE(bAccessInWork);
    EXPECT_EQ(pContextInWork, m_pDispatcher);
    EXPECT_EQ(concurrency::context::current(), m_pDispatcher);
}

TEST_F(QtDispatcherTest, AFailingWorkIsLoggedAndTheNextOneRuns) {
    CaptureLog();
    m_pDispatcher->post(priority::normal, [] { throw Platform::ReadFaultException(); });
    m_pDispatcher->post(priority::normal, [] { throw 7; });
    Post(priority::normal, 1);
    ASSERT_TRUE(RunAll());
    EXPECT_EQ(m_ran, std::vector{1});
    EXPECT_NE(m_strLog.find("Platform::ReadFaultException: read failed\n"), std::string::npos)
        << m_strLog;
}

TEST_F(QtDispatcherTest, ShutDownDestroysWhatHasNotRun) {
    const auto pOwned = std::make_shared<int>(1);
    m_pDispatcher->post(priority::normal, [this, pOwned] { m_ran.push_back(*pOwned); });
    m_pDispatcher->ShutDown();
    EXPECT_EQ(pOwned.use_count(), 1);
    m_pDispatcher->post(priority::high, [this, pOwned] { m_ran.push_back(*pOwned); });
    EXPECT_EQ(pOwned.use_count(), 1);
    QCoreApplication::processEvents();
    EXPECT_TRUE(m_ran.empty());
    EXPECT_EQ(m_pDispatcher->PendingCount(), 0U);
    EXPECT_EQ(concurrency::context::current(), nullptr);
}

TEST_F(QtDispatcherTest, AWorkMayShutTheDispatcherDownAndLetGoOfIt) {
    auto pDispatcher = QtDispatcher::Create();
    const std::weak_ptr<QtDispatcher> wkDispatcher = pDispatcher;
    pDispatcher->post(priority::normal, [this, &pDispatcher] {
        pDispatcher->ShutDown();
        pDispatcher.reset();
        m_ran.push_back(1);
    });
    pDispatcher->post(priority::normal, [this] { m_ran.push_back(2); });
    EXPECT_TRUE(RunUntil([&] { return wkDispatcher.expired(); }));
    EXPECT_EQ(m_ran, std::vector{1});
}

class QtTimerTest : public QtDispatcherTest {
protected:
    std::shared_ptr<QtDispatcherTimer> MakeTimer(std::chrono::milliseconds interval) {
        auto pTimer = std::make_shared<QtDispatcherTimer>(m_pRunning);
        pTimer->Interval(interval);
        return pTimer;
    }

    const std::shared_ptr<std::atomic<int>> m_pRunning = std::make_shared<std::atomic<int>>(0);
    int m_nTicks = 0;
};

TEST_F(QtTimerTest, TicksUntilItIsStoppedInATick) {
    const auto pTimer = MakeTimer(std::chrono::milliseconds(1));
    pTimer->Tick.add([&] {
        if (++m_nTicks == 3) {
            pTimer->Stop();
        }
    });
    pTimer->Start();
    EXPECT_TRUE(pTimer->IsEnabled());
    EXPECT_EQ(m_pRunning->load(), 1);
    ASSERT_TRUE(RunUntil([&] { return !pTimer->IsEnabled(); }));
    EXPECT_EQ(m_nTicks, 3);
    EXPECT_EQ(m_pRunning->load(), 0);
}

TEST_F(QtTimerTest, AStartBeginsTheIntervalAnew) {
    const auto pSlow = MakeTimer(std::chrono::hours(1));
    pSlow->Tick.add([&] { ++m_nTicks; });
    pSlow->Start();
    pSlow->Interval(std::chrono::milliseconds(1)); // in force at once
    pSlow->Start();
    EXPECT_EQ(m_pRunning->load(), 1);
    EXPECT_TRUE(RunUntil([&] { return m_nTicks > 0; }));
    pSlow->Stop();
    EXPECT_THROW(pSlow->Interval(std::chrono::milliseconds(-1)),
                 Platform::InvalidArgumentException);
}

TEST_F(QtTimerTest, ATickMayFailOrReleaseTheTimer) {
    CaptureLog();
    auto pTimer = MakeTimer(std::chrono::milliseconds(1));
    pTimer->Tick.add([&] {
        if (++m_nTicks == 1) {
            throw std::runtime_error("first tick");
        }
        pTimer.reset();
    });
    pTimer->Start();
    EXPECT_TRUE(RunUntil([&] { return m_nTicks == 2; }));
    EXPECT_NE(m_strLog.find("first tick"), std::string::npos);
    EXPECT_EQ(m_pRunning->load(), 0);
}

}
}
