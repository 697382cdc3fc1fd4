#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/concurrency/Task.h"
#include "platform/fake/TestHost.h"
#include "platform/foundation/AsyncOperation.h"
#include "platform/foundation/Exception.h"

namespace {

using concurrency::cancellation_token_source;
using concurrency::create_task;
using concurrency::resume_background;
using concurrency::resume_foreground;
using concurrency::task;
using concurrency::task_canceled;
using concurrency::task_completion_event;
using Platform::Fake::ManualDispatcher;
using Platform::Fake::TestHost;

task<int> AddOne(task<int> before) {
    co_return co_await before + 1;
}

task<std::string> NameOfOutcome(task<int> subject) {
    co_await subject.settled();
    co_return subject.is_value() ? "value" : subject.is_canceled() ? "canceled" : "failure";
}

TEST(TaskTest, ThreeOutcomesPassThroughACoroutineAndAContinuation) {
    const TestHost host;
    const task_completion_event<int> value;
    const task_completion_event<int> failure;
    const task_completion_event<int> canceled;
    std::vector<task<int>> ends;
    for (const auto* pEvent : {&value, &failure, &canceled}) {
        ends.push_back(AddOne(pEvent->get_task()).then([](int n) { return n * 10; }));
    }
    const auto seen = canceled.get_task().then([](task<int> t) { return t.is_canceled(); });
    value.set(4);
    value.set(5); // a task ends once
    value.set_canceled();
    failure.set_exception(std::make_exception_ptr(Platform::DiskFullException()));
    canceled.set_canceled();

    EXPECT_EQ(ends[0].get(), 50);
    EXPECT_THROW(ends[1].get(), Platform::DiskFullException);
    EXPECT_THROW(ends[2].get(), task_canceled);
    EXPECT_TRUE(seen.get());
    EXPECT_EQ(NameOfOutcome(ends[0]).get(), "value");
    EXPECT_EQ(NameOfOutcome(ends[1]).get(), "failure");
    EXPECT_EQ(NameOfOutcome(ends[2]).get(), "canceled");
}

TEST(TaskTest, ACoroutineResumesWhereItWaited) {
    TestHost host;
    std::string strTrace;
    const auto fnHere = [&] { strTrace += host.Dispatcher().HasThreadAccess() ? " UI" : " pool"; };
    const task_completion_event<int> event;
    const auto fnGo = [&](task<int> wait) -> task<void> {
        fnHere();
        co_await wait;
        fnHere();
        co_await resume_background();
        fnHere();
        co_await resume_foreground(host.Environment().MainDispatcher());
        fnHere();
    };
    const task<void> whole = fnGo(event.get_task());
    std::thread([&] { event.set(1); }).join();
    EXPECT_EQ(strTrace, " UI"); // posted, not run elsewhere
    EXPECT_EQ(host.Dispatcher().Pending(), 1U);
    host.Drain();
    EXPECT_EQ(strTrace, " UI UI pool UI");
    EXPECT_TRUE(whole.is_value());
}

TEST(TaskTest, AWorkThatNeverRunsEndsItsTaskAsCancelledAndFreesIt) {
    auto pOwned = std::make_shared<int>(7);
    task<int> dropped;
    task<int> behind;
    task<int> queued;
    {
        TestHost host;
        dropped = create_task([pOwned] { return *pOwned; });
        behind = AddOne(dropped);
        EXPECT_TRUE(host.Pool().Drop(0));
        EXPECT_TRUE(dropped.is_canceled());
        host.Drain();
        EXPECT_TRUE(behind.is_canceled());
        EXPECT_EQ(pOwned.use_count(), 1);
        queued = create_task([pOwned] { return *pOwned; });
    }
    EXPECT_TRUE(queued.is_canceled());
    EXPECT_EQ(pOwned.use_count(), 1);
}

TEST(TaskTest, AnEventThatNobodyTellsAnyMoreCancelsItsTask) {
    const TestHost host;
    task<int> waiting;
    {
        const task_completion_event<int> forgotten;
        const task_completion_event<int> copy = forgotten; // NOLINT: a copy keeps it alive
        waiting = AddOne(copy.get_task());
        EXPECT_FALSE(waiting.is_done());
    }
    EXPECT_TRUE(waiting.is_canceled());
}

TEST(TaskTest, OnlyAFailureThatNobodyLookedAtIsLogged) {
    const TestHost host;
    const auto fnFail = []() -> task<int> {
        throw Platform::ReadFaultException("sector 5");
        co_return 0;
    };
    fnFail();
    EXPECT_EQ(
        host.CountDebug("unobserved failure of a task: Platform::ReadFaultException: sector 5\n"),
        1U);
    EXPECT_THROW(fnFail().get(), Platform::ReadFaultException);
    const Windows::Foundation::AsyncOperation<int> operation(fnFail());
    operation.Completed([](const auto&, Windows::Foundation::AsyncStatus) {});
    EXPECT_EQ(host.DebugOutput().size(), 1U);
}

TEST(TaskTest, TheHandlerOfAnOperationHearsEveryStatusAndItsOwnFailureIsLogged) {
    using Windows::Foundation::AsyncStatus;
    const TestHost host;
    std::vector<AsyncStatus> heard;
    const task_completion_event<int> value;
    const task_completion_event<int> canceled;
    const task_completion_event<int> failure;
    for (const auto* pEvent : {&value, &canceled, &failure}) {
        const Windows::Foundation::AsyncOperation<int> operation(pEvent->get_task());
        EXPECT_EQ(operation.Status(), AsyncStatus::Started);
        operation.Completed([&](const auto&, AsyncStatus eStatus) {
            heard.push_back(eStatus);
            throw std::runtime_error("handler broke");
        });
    }
    value.set(1);
    canceled.set_canceled();
    failure.set_exception(std::make_exception_ptr(Platform::ReadFaultException()));
    EXPECT_EQ(heard, (std::vector<AsyncStatus>{AsyncStatus::Completed, AsyncStatus::Canceled,
                                               AsyncStatus::Error}));
    EXPECT_TRUE(host.DebugContains("handler broke"));
}

TEST(TaskTest, WhenAllWaitsForAllAndTellsTheFirstFailure) {
    const TestHost host;
    const cancellation_token_source source;
    const task_completion_event<void> failing[3];
    const task_completion_event<void> canceled[2];
    const task_completion_event<void> good;
    const task<void> first = concurrency::when_all(
        {failing[0].get_task(), failing[1].get_task(), failing[2].get_task()});
    const task<void> second =
        concurrency::when_all({canceled[0].get_task(), canceled[1].get_task()});
    const task<void> third = concurrency::when_all({good.get_task()}, source.get_token());
    failing[2].set_exception(std::make_exception_ptr(std::runtime_error("third")));
    failing[1].set_exception(std::make_exception_ptr(Platform::DiskFullException()));
    EXPECT_FALSE(first.is_done());
    failing[0].set_canceled();
    EXPECT_THROW(first.get(), Platform::DiskFullException); // in list order, and before cancelled
    canceled[0].set_canceled();
    EXPECT_FALSE(second.is_done());
    canceled[1].set();
    EXPECT_TRUE(second.is_canceled());
    source.cancel();
    EXPECT_FALSE(third.is_done()); // cancelling only asks
    good.set();
    EXPECT_TRUE(third.is_canceled());
    EXPECT_TRUE(concurrency::when_all({}).is_value());
}

TEST(TaskTest, CancellationBeforeTheStartDuringAndAfter) {
    TestHost host;
    int nRuns = 0;
    cancellation_token_source source;
    const auto fnStart = [&](bool bCancel) {
        return create_task(
            [&, bCancel, token = source.get_token()] {
                ++nRuns;
                if (bCancel) {
                    source.cancel();
                    token.throw_if_canceled();
                }
                return ++nRuns;
            },
            source.get_token());
    };
    const auto done = fnStart(false);
    host.Drain();
    EXPECT_EQ(nRuns, 2);
    const auto stopped = fnStart(true);
    const auto skipped = fnStart(false);
    host.Drain();
    EXPECT_EQ(done.get(), 2); // long ended
    EXPECT_TRUE(stopped.is_canceled());
    EXPECT_TRUE(skipped.is_canceled());        // while it waited
    EXPECT_TRUE(fnStart(false).is_canceled()); // needs no thread to know it
    EXPECT_EQ(host.Pool().Pending(), 0U);
    EXPECT_EQ(nRuns, 3);
}

TEST(TaskTest, ARenewedSourceLeavesOldTokensCancelledAndGivesFreshOnes) {
    cancellation_token_source source;
    const auto old = source.get_token();
    EXPECT_TRUE(source.renew());
    EXPECT_TRUE(old.is_canceled());
    EXPECT_FALSE(source.get_token().is_canceled());
    source.cancel();
    EXPECT_FALSE(source.renew());
    EXPECT_TRUE(source.get_token().is_canceled());
    auto absent = cancellation_token_source::absent();
    absent.cancel();
    EXPECT_FALSE(absent.renew() || absent.get_token().is_canceled());
}

}
