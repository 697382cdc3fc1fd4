#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "platform/foundation/Event.h"

namespace {

using Windows::Foundation::Event;
using Windows::Foundation::EventRegistrationToken;

TEST(EventTest, ARaiseCallsThoseWhoWereThereWhenItBegan) {
    Event<int> event;
    std::string strCalls;
    EventRegistrationToken second;
    event.add([&](int) {
        strCalls += 'a';
        event.remove(second);
        event.add([&](int) { strCalls += 'c'; });
    });
    second = event.add([&](int) { strCalls += 'b'; });
    event.raise(1);
    EXPECT_EQ(strCalls, "ab");
    strCalls.clear();
    event.raise(2);
    EXPECT_EQ(strCalls, "ac");
}

TEST(EventTest, AThrowingSubscriberStopsTheRaiseAndLeavesTheEventUsable) {
    Event<> event;
    int nCalls = 0;
    const auto token = event.add([] { throw std::runtime_error("subscriber"); });
    event.add([&] { ++nCalls; });
    EXPECT_THROW(event.raise(), std::runtime_error);
    EXPECT_EQ(nCalls, 0);
    event.remove(token);
    event.raise();
    EXPECT_EQ(nCalls, 1);
}

TEST(EventTest, WhatARemovedSubscriberOwnsMayUseTheEventWhileItGoes) {
    Event<> event;
    const auto other = event.add([] {});
    std::shared_ptr<void> pOwned(nullptr, [&](void*) { event.remove(other); });
    const auto token = event.add([pOwned = std::move(pOwned)] {});
    event.remove(token);
    EXPECT_TRUE(event.empty());
}

TEST(EventTest, ARaiseEndsWellWhenItsEventGoesDuringIt) {
    auto pEvent = std::make_unique<Event<>>();
    int nCalls = 0;
    pEvent->add([&] { pEvent.reset(); });
    pEvent->add([&] { ++nCalls; });
    pEvent->raise();
    EXPECT_EQ(nCalls, 1);
}

}
