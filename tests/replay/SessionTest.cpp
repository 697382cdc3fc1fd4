// A reader's session through velko-replay: opening, moving, zooming, closing,
// and what `state`, `stats`, `setting` and the events say of it.
#include <QJsonArray>

#include "tests/replay/ReplayFixture.h"

namespace velko::testing {

namespace {

const std::vector<std::string> kDocumentEvents{
    "OpenDoc",     "CloseDoc",     "PageVisible",          "PageInvisible",
    "PageChanged", "PageUnloaded", "PageLayoutModeChanged"};

class SessionTest : public ReplayFixture {};

QJsonObject FirstItem(const QJsonObject& state) {
    return state.value("items")[0].toObject();
}

TEST_F(SessionTest, AnOpenTellsOfPagesAndIsDescribedAndACloseUnloadsThem) {
    ReplayProcess replay;
    ExpectOpens(replay, 3);
    EXPECT_EQ(replay.EventNames(kDocumentEvents),
              (std::vector<std::string>{"PageVisible 0", "PageVisible 1", "PageChanged",
                                        "PageLayoutModeChanged", "OpenDoc"}));
    const QJsonObject state = State(replay);
    EXPECT_EQ(state.value("mode").toInt(), 1);
    EXPECT_EQ(state.value("page").toInt(-1), 0);
    EXPECT_EQ(state.value("count").toInt(), 3);
    EXPECT_EQ(state.value("max_scale").toDouble(), 4.0);
    EXPECT_FALSE(state.value("ring").toBool(true));
    EXPECT_EQ(state.value("visible").toArray(), (QJsonArray{0, 1}));
    // 612 x 792 points at 96 DPI fill the width of 1000 pixels.
    const QJsonObject item = FirstItem(state);
    EXPECT_EQ(item.value("w").toInt(), 1000);
    EXPECT_EQ(item.value("h").toInt(), 1294);
    EXPECT_EQ(item.value("rows").toInt(), 1);
    const QJsonObject block = item.value("blocks")[0].toObject();
    EXPECT_TRUE(block.value("display").toBool());
    EXPECT_FALSE(block.value("rendering").toBool(true));
    EXPECT_EQ(block.value("bitmap").toArray(), (QJsonArray{1000, 1294}));
    EXPECT_EQ(state.value("items")[1]["y"].toDouble(), 1294.0 + 15.0);

    replay.ClearEvents();
    replay.Run({{"op", "close"}});
    EXPECT_EQ(replay.EventNames(kDocumentEvents),
              (std::vector<std::string>{"PageUnloaded 0", "PageUnloaded 1", "CloseDoc"}));
    EXPECT_EQ(State(replay).value("count").toInt(-1), 0);
    EXPECT_EQ(replay.Finish(), 0);
}

TEST_F(SessionTest, WheelManipulationsAndDragsMoveAndReachTheHostsSink) {
    ReplayProcess replay;
    ExpectOpens(replay, 9);
    const auto fnTop = [&] {
        const QJsonObject item = FirstItem(State(replay));
        return item.value("y").toDouble() - 1309.0 * item.value("page").toInt();
    };
    const auto fnCalls = [&](const char* szName) {
        return std::count_if(
            replay.Events().begin(), replay.Events().end(),
            [&](const QJsonObject& event) { return event.value("name").toString() == szName; });
    };
    replay.Run({{"op", "wheel"}, {"x", 10}, {"y", 10}, {"delta", -120}});
    EXPECT_EQ(fnTop(), -120.0);
    EXPECT_EQ(fnCalls("OnPointerWheelChanged"), 1);
    replay.Run({{"op", "manip"}, {"phase", "started"}, {"x", 500}, {"y", 500}});
    const QJsonObject moved =
        replay.Run({{"op", "manip"}, {"phase", "delta"}, {"x", 500}, {"y", 470}});
    EXPECT_TRUE(moved.value("handled").toBool());
    EXPECT_EQ(fnTop(), -150.0);
    EXPECT_EQ(fnCalls("OnManipulationStarted"), 2);
    EXPECT_EQ(fnCalls("OnManipulationDelta"), 1);
    replay.Run({{"op", "manip"}, {"phase", "completed"}, {"x", 500}, {"y", 470}});

    QJsonObject drag{{"op", "drag"}, {"x0", 500},  {"y0", 900},        {"x1", 500},
                     {"y1", 800},    {"steps", 5}, {"device", "mouse"}};
    replay.Run(drag);
    EXPECT_EQ(fnTop(), -250.0);
    drag.insert("device", "touch");
    drag.insert("fling", true);
    replay.Run(drag);
    EXPECT_EQ(fnTop(), -350.0);
    const QJsonObject waited = replay.Run({{"op", "wait"}, {"timeout_ms", 30}});
    EXPECT_TRUE(waited.value("busy").toArray().contains("the inertia of a pan"));
    ExpectIdle(replay);
    // 100 in 48 ms; the rest is what such a speed covers until it fades.
    EXPECT_NEAR(fnTop(), -350.0 - (100.0 / 0.048 - 40.0) * 0.325, 1.0);
}

TEST_F(SessionTest, TwoFingersZoomAndTheWaitCountsTheSettlingOfAWheelZoom) {
    ReplayProcess replay;
    ExpectOpens(replay, 1);
    const double dbBefore = State(replay).value("scale").toDouble();
    replay.Run({{"op", "pinch"}, {"x", 500}, {"y", 700}, {"from", 200}, {"to", 400}});
    ExpectIdle(replay);
    EXPECT_GT(State(replay).value("scale").toDouble(), dbBefore * 1.5);
    replay.Run({{"op", "wheel"}, {"x", 500}, {"y", 500}, {"delta", 120}, {"ctrl", true}});
    const QJsonObject hurried = replay.Run({{"op", "wait"}, {"timeout_ms", 0}});
    EXPECT_FALSE(hurried.value("idle").toBool(true));
    EXPECT_FALSE(hurried.value("busy").toArray().isEmpty());
    ExpectIdle(replay);
}

TEST_F(SessionTest, ASavedViewAndSettingsOutliveTheProcess) {
    const std::string strPath = WritePages(6);
    const std::vector<std::string> arguments{"--data", folder / "data"};
    const QJsonObject ask{{"op", "setting"}, {"key", "PageBackgroundColor"}};
    {
        ReplayProcess replay(arguments);
        Open(replay, strPath);
        replay.Run({{"op", "goto"}, {"page", 3}});
        const QJsonObject saved = replay.Run({{"op", "save_state"}}).value("values").toObject();
        EXPECT_EQ(saved.value("CurrentPageIndex")["value"].toInt(), 3);
        EXPECT_EQ(saved.value("CurrentPageIndex")["type"].toString(), "Int32");
        EXPECT_EQ(replay.Run(ask).value("value").toString(), "#FFFFFFFF");
        replay.Run({{"op", "setting"}, {"key", "PageBackgroundColor"}, {"value", "#80102030"}});
        EXPECT_EQ(replay.Finish(), 0);
    }
    ReplayProcess replay(arguments);
    Open(replay, strPath);
    EXPECT_EQ(State(replay).value("page").toInt(), 3);
    EXPECT_EQ(replay.Run(ask).value("value").toString(), "#80102030");
    const QJsonObject forced = replay.Run(
        {{"op", "setting"}, {"key", "IsAutoSave"}, {"value", "no"}, {"type", "Platform.String"}});
    EXPECT_TRUE(forced.value("value").toBool()) << "the value for another stored type";
}

TEST_F(SessionTest, StatsFollowTheLifeOfBitmaps) {
    ReplayProcess replay;
    ExpectOpens(replay, 2);
    const QJsonObject shown = replay.Run({{"op", "stats"}});
    EXPECT_EQ(shown.value("engine_opens").toInt(), 1);
    EXPECT_EQ(shown.value("engine_renders").toInt(), 2);
    EXPECT_EQ(shown.value("bitmap_bytes_live").toInt(), 2 * 1000 * 1294 * 4);
    EXPECT_GE(shown.value("presents").toInt(), 1);
    EXPECT_GE(shown.value("paints").toInt(), shown.value("presents").toInt());
    replay.Run({{"op", "move"}, {"dy", 100}, {"dx", 0}});
    ExpectIdle(replay);
    EXPECT_EQ(replay.Run({{"op", "stats"}}).value("engine_renders").toInt(), 2)
        << "what stays on the screen is not rendered again";
    replay.Run({{"op", "close"}});
    ExpectIdle(replay);
    EXPECT_EQ(replay.Run({{"op", "stats"}}).value("bitmaps_live").toInt(-1), 0);
}

}

}
