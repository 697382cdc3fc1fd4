#include "widget/OpeningQueue.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace velko {
namespace {

using vkit::OpeningQueue;
using State = OpeningQueue::State;

// b begin "first", a arrive, d drop, a digit replaces by it.
OpeningQueue::Ended EndAfter(const char* szSteps) {
    OpeningQueue queue;
    for (const char* pStep = szSteps; *pStep != '\0'; ++pStep) {
        if (*pStep == 'b') {
            queue.Begin({"first", "secret"});
        } else if (*pStep == 'a') {
            queue.Arrive();
        } else if (*pStep == 'd') {
            queue.Drop();
        } else {
            queue.Replace({std::string(1, *pStep), {}});
        }
    }
    const OpeningQueue::Ended ended = queue.End();
    EXPECT_TRUE(queue.IsIdle()) << szSteps;
    return ended;
}

TEST(OpeningQueueTest, TheLastWishDecidesWhatBecomesOfAnOpen) {
    const std::tuple<const char*, State, const char*> cases[] = {
        {"b", State::Running, ""},      {"adb", State::Running, ""},    {"ba", State::Arrived, ""},
        {"b123", State::Replaced, "3"}, {"ba1a", State::Replaced, "1"}, {"bd", State::Dropped, ""},
        {"b1da", State::Dropped, ""},   {"bd1", State::Replaced, "1"},
    };
    for (const auto& [szSteps, eState, szNext] : cases) {
        const auto ended = EndAfter(szSteps);
        EXPECT_EQ(ended.eState, eState) << szSteps;
        EXPECT_EQ(ended.next ? ended.next->path.Bytes() : "", szNext) << szSteps;
        EXPECT_EQ(ended.request.path.Bytes(), "first");
        EXPECT_EQ(ended.request.password, "secret");
    }
}

}
}
