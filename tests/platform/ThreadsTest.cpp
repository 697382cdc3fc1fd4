#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "platform/concurrency/CriticalSection.h"
#include "platform/concurrency/SerialQueue.h"
#include "platform/concurrency/ThreadPool.h"
#include "platform/fake/TestHost.h"
#include "tests/platform/Eventually.h"

namespace {

using concurrency::critical_section;
using concurrency::ThreadPool;
using Platform::Fake::TestHost;

TEST(ThreadPoolTest, GrowsWhileItsThreadsBlockAndNotOtherwise) {
    constexpr int kBlocked = 12;
    std::atomic<int> nWaiting{0};
    std::atomic<bool> bThrough{false};
    concurrency::event release[kBlocked];
    std::atomic<int> nBusy{0};
    std::atomic<int> nMostBusy{0};
    std::atomic<int> nEnded{0};
    ThreadPool pool(2);
    for (auto& gate : release) {
        pool.schedule([&] {
            ++nWaiting;
            gate.wait();
            ++nEnded;
        });
    }
    pool.schedule([&] { bThrough = true; });
    EXPECT_TRUE(Eventually([&] { return nWaiting == kBlocked && bThrough; }));
    for (int n = 0; n < 40; ++n) {
        pool.schedule([&] {
            const int nNow = ++nBusy;
            int nMost = nMostBusy;
            while (nNow > nMost && !nMostBusy.compare_exchange_weak(nMost, nNow)) {
            }
            std::this_thread::yield();
            --nBusy;
            ++nEnded;
        });
    }
    EXPECT_TRUE(Eventually([&] { return nEnded == 40; }));
    EXPECT_LE(nMostBusy, 2);
    for (auto& gate : release) {
        gate.set();
    }
    EXPECT_TRUE(Eventually([&] { return nEnded == 40 + kBlocked; }));
    EXPECT_TRUE(Eventually([&] { return pool.is_idle(); }));
}

TEST(ThreadPoolTest, TheEndLetsRunningWorksFinishAndDropsTheRest) {
    auto pToken = std::make_shared<int>(0);
    std::atomic<bool> bStarted{false};
    std::atomic<bool> bFinished{false};
    std::atomic<bool> bGo{false};
    auto pPool = std::make_unique<ThreadPool>(1);
    pPool->schedule([&] {
        bStarted = true;
        while (!bGo) {
            std::this_thread::yield();
        }
        bFinished = true;
    });
    ASSERT_TRUE(Eventually([&] { return bStarted.load(); }));
    pPool->schedule([pToken, &bFinished] { bFinished = false; });
    std::thread ender([&] { pPool.reset(); });
    EXPECT_TRUE(Eventually([&] { return pToken.use_count() == 1; }));
    bGo = true;
    ender.join();
    EXPECT_TRUE(bFinished);
}

TEST(ThreadPoolTest, AThreadThatHangsInASystemCallHoldsNoEnd) {
    static auto* const s_pPool = new ThreadPool(2); // the thread outlives the test
    static std::atomic<bool> s_bInside{false};
    static concurrency::event& s_never =
        *new concurrency::event; // waited for beyond the end of main
    s_pPool->schedule([] {
        const concurrency::blocking_scope blocking;
        s_bInside = true;
        s_never.wait();
    });
    std::atomic<bool> bRan{false};
    s_pPool->schedule([&] { bRan = true; });
    ASSERT_TRUE(Eventually([&] { return s_bInside && bRan; }));
    s_pPool->abandon();
    auto pToken = std::make_shared<int>(0);
    s_pPool->schedule([pToken] {});
    EXPECT_EQ(pToken.use_count(), 1) << "what comes later is dropped";
}

TEST(SerialQueueTest, WorksOfManyThreadsRunOneByOneInTheOrderOfTheirComing) {
    TestHost host(TestHost::RealPool{4});
    constexpr int kWorks = 400;
    const auto pQueue = std::make_shared<concurrency::serial_queue>();
    std::atomic<int> nRunning{0};
    std::atomic<int> nEnded{0};
    std::vector<int> order;
    for (int n = 0; n < kWorks; ++n) {
        pQueue->schedule([&, n] {
            EXPECT_EQ(++nRunning, 1);
            order.push_back(n); // guarded by the queue itself
            std::this_thread::yield();
            --nRunning;
            ++nEnded;
        });
        if (n % 50 == 0) { // now and then the line runs dry
            EXPECT_TRUE(Eventually([&] { return nEnded == n + 1; }));
        }
    }
    EXPECT_TRUE(Eventually([&] { return nEnded == kWorks; }));
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_EQ(order.size(), static_cast<std::size_t>(kWorks));
}

TEST(SerialQueueTest, WhatThePoolDropsTakesTheLineWithItAndTheQueueGoesOn) {
    TestHost host;
    const auto pQueue = std::make_shared<concurrency::serial_queue>();
    const auto pOwned = std::make_shared<int>(0);
    int nRan = 0;
    pQueue->schedule([&nRan, pOwned] { ++nRan; });
    pQueue->schedule([&nRan, pOwned] { ++nRan; });
    EXPECT_EQ(host.Pool().Pending(), 1U); // the pool gets them one by one
    host.Pool().Drop(0);
    EXPECT_EQ(pOwned.use_count(), 1);
    pQueue->schedule([&nRan] { ++nRan; });
    EXPECT_EQ(host.Pool().RunAll(), 1U);
    EXPECT_EQ(nRan, 1);
}

TEST(CriticalSectionTest, ThreadsGetItInTheOrderInWhichTheyCame) {
    constexpr int kThreads = 8;
    critical_section lock;
    std::vector<int> order;
    std::vector<std::thread> threads;
    lock.lock();
    lock.lock(); // the holder may take it again
    EXPECT_TRUE(lock.is_held_by_caller());
    class Arrival final : public concurrency::blocking_scope::observer {
    public:
        void begin_blocking() override { bWaits = true; } // runs once the place is taken
        void end_blocking() override {}
        std::atomic<bool> bWaits{false};
    };
    std::vector<Arrival> arrivals(kThreads);
    for (int n = 0; n < kThreads; ++n) {
        threads.emplace_back([&, n] {
            concurrency::blocking_scope::set_thread_observer(&arrivals[static_cast<size_t>(n)]);
            const critical_section::scoped_lock guard(lock);
            order.push_back(n);
        });
        ASSERT_TRUE(Eventually([&] { return arrivals[static_cast<size_t>(n)].bWaits.load(); }));
    }
    lock.unlock();
    EXPECT_TRUE(lock.is_held_by_caller()); // one level is left
    EXPECT_TRUE(order.empty());
    lock.unlock();
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_FALSE(lock.is_held_by_caller());
}

}
