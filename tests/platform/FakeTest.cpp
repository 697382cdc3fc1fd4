#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>

#include "platform/concurrency/Task.h"
#include "platform/fake/TestHost.h"
#include "platform/foundation/Exception.h"

namespace {

using concurrency::priority;
using Platform::Fake::TestHost;
using namespace std::chrono_literals;

TEST(ManualDispatcherTest, RunsByPriorityThenAgeAndLogsAThrowingWork) {
    TestHost host;
    std::string strOrder;
    const auto fnPost = [&](priority ePriority, char c) {
        host.Dispatcher().post(ePriority, [&, c] { strOrder += c; });
    };
    fnPost(priority::low, 'd');
    fnPost(priority::normal, 'b');
    fnPost(priority::idle, 'e');
    fnPost(priority::high, 'a');
    fnPost(priority::normal, 'c');
    EXPECT_EQ(host.Dispatcher().Pending(priority::normal), 2U);
    host.Dispatcher().post(priority::high, [] { throw Platform::ReadFaultException("tick"); });
    EXPECT_EQ(host.Dispatcher().RunAll(), 6U);
    EXPECT_EQ(strOrder, "abcde");
    EXPECT_EQ(host.CountDebug("unhandled failure in the dispatcher: "
                              "Platform::ReadFaultException: tick\n"),
              1U);
}

TEST(ManualSchedulerTest, RunsInAnyOrderAwayFromTheUi) {
    TestHost host;
    std::string strOrder;
    for (const char c : {'a', 'b', 'c', 'd'}) {
        host.Pool().schedule([&, c] {
            EXPECT_FALSE(host.Dispatcher().HasThreadAccess());
            EXPECT_EQ(concurrency::context::current(), nullptr);
            strOrder += c;
        });
    }
    EXPECT_TRUE(host.Pool().Run(1));
    EXPECT_TRUE(host.Pool().RunNewest());
    EXPECT_TRUE(host.Pool().Drop(0));
    EXPECT_FALSE(host.Pool().Run(5));
    host.Drain();
    EXPECT_EQ(strOrder, "bdc");
    EXPECT_TRUE(host.Dispatcher().HasThreadAccess());
    bool bElsewhere = true;
    std::thread([&] { bElsewhere = host.Dispatcher().HasThreadAccess(); }).join();
    EXPECT_FALSE(bElsewhere);
}

TEST(ManualClockTest, TimersTickInTheOrderOfTheirTimes) {
    TestHost host;
    std::string strTicks;
    const auto pFast = host.Environment().CreateTimer();
    const auto pSlow = host.Environment().CreateTimer();
    pFast->Interval(200ms);
    pSlow->Interval(500ms);
    pFast->Tick.add([&] { strTicks += 'f'; });
    pSlow->Tick.add([&] {
        strTicks += 's';
        pSlow->Stop();
    });
    pSlow->Start();
    pFast->Start();
    host.Clock().Advance(499ms);
    EXPECT_EQ(strTicks, "ff");
    pFast->Start(); // begins anew: due at 699
    host.Clock().Advance(201ms);
    EXPECT_EQ(strTicks, "ffsf");
    EXPECT_FALSE(pSlow->IsEnabled());
    EXPECT_EQ(host.Clock().RunningTimers(), 1U);
    pFast->Tick.add([] { throw std::runtime_error("tick broke"); });
    host.Clock().Advance(200ms);
    EXPECT_TRUE(host.DebugContains("tick broke"));
    EXPECT_EQ(host.Clock().Now(), 900ms);
}

}
