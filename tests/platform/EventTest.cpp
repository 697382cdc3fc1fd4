#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/foundation/Collections.h"
#include "platform/foundation/Event.h"

namespace {

using Windows::Foundation::Event;
using Windows::Foundation::EventRegistrationToken;
using Windows::Foundation::Collections::ObservableMap;
using Windows::Foundation::Collections::ObservableVector;

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
    struct Leaver {
        Event<>& event;
        EventRegistrationToken other;
        ~Leaver() { event.remove(other); }
    };
    const auto other = event.add([] {});
    auto pLeaver = std::make_shared<Leaver>(Leaver{event, other});
    pLeaver->other = other;
    const auto token = event.add([pLeaver] {});
    pLeaver.reset();
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

TEST(CollectionsTest, ChangesAreToldWithTheirPlaceAndForeignPlacesRefused) {
    ObservableMap<int, std::string> map;
    std::string strChanges;
    map.MapChanged.add([&](const auto&, const auto& args) {
        strChanges += std::to_string(static_cast<int>(args.Change)) + ":" +
                      std::to_string(args.Key.value_or(-1)) + " ";
    });
    EXPECT_FALSE(map.Insert(7, "seven"));
    EXPECT_FALSE(map.Insert(2, "two"));
    EXPECT_TRUE(map.Insert(7, "VII"));
    EXPECT_EQ(map.Snapshot(), (std::vector<std::pair<int, std::string>>{{2, "two"}, {7, "VII"}}));
    EXPECT_THROW(map.Remove(3), Platform::OutOfBoundsException);
    map.Remove(2);
    map.Clear();
    ObservableVector<char> vector;
    vector.VectorChanged.add([&](const auto&, const auto& args) {
        strChanges +=
            std::to_string(static_cast<int>(args.Change)) + ":" + std::to_string(args.Index) + " ";
    });
    vector.Append('a');
    vector.InsertAt(0, 'b');
    vector.SetAt(1, 'c');
    vector.RemoveAt(0);
    EXPECT_THROW(vector.GetAt(1), Platform::OutOfBoundsException);
    EXPECT_THROW(vector.InsertAt(2, 'x'), Platform::OutOfBoundsException);
    vector.RemoveAtEnd();
    EXPECT_THROW(vector.RemoveAtEnd(), Platform::OutOfBoundsException);
    EXPECT_EQ(strChanges, "1:7 1:2 3:7 2:2 0:-1 1:0 1:0 3:1 2:0 2:0 ");
}

}
