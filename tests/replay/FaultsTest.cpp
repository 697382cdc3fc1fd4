// Bad files and ordered faults: each is answered clearly, and the control shows a
// good file sharply afterwards.
#include <QJsonArray>

#include "tests/replay/ReplayFixture.h"

namespace velko::testing {

namespace {

class FaultsTest : public ReplayFixture {
protected:
    void ExpectUsable(ReplayProcess& replay) {
        ExpectOpens(replay, 2);
        EXPECT_EQ(CountBlank(replay), 0);
    }
    // How many blocks on the screen have no bitmap.
    static int CountBlank(ReplayProcess& replay) {
        ExpectIdle(replay);
        const QJsonArray items = State(replay).value("items").toArray();
        EXPECT_FALSE(items.isEmpty());
        int nBlank = 0;
        for (const QJsonValue& item : items) {
            for (const QJsonValue& block : item["blocks"].toArray()) {
                EXPECT_FALSE(block["rendering"].toBool(true));
                nBlank += block["display"].toBool() && !block["bitmap"].isArray() ? 1 : 0;
            }
        }
        return nBlank;
    }
};

TEST_F(FaultsTest, WhatCannotBeOpenedIsAClearAnswer) {
    const std::pair<std::string, QJsonValue> kCases[] = {
        {folder / "missing.pdf", "Platform::FileNotFoundException"},
        {folder.Path(), "Platform::AccessDeniedException"},
        {folder.Write("empty.pdf", ""), 2},
        {folder.Write("text.pdf", "no PDF at all, only text"), 2},
        {folder.Write("no-pages.pdf", MakePdf({})), 2},
        {folder.WriteSparse("huge.pdf", (1ULL << 32U) + 4096, MakePdf({MarkedPage(0)})), 9},
    };
    ReplayProcess replay;
    for (const auto& [strPath, error] : kCases) {
        SCOPED_TRACE(strPath);
        EXPECT_EQ(Open(replay, strPath).value("error"), error);
        EXPECT_TRUE(State(replay).value("items").toArray().isEmpty());
        ExpectUsable(replay);
        replay.Run({{"op", "close"}});
    }
    EXPECT_EQ(replay.Finish(), 0) << replay.Errors();
}

// What an open could not read is read when it is asked for, or the open says so.
TEST_F(FaultsTest, AReadThatFailsInAnOpenLeavesAPictureOrAClearAnswer) {
    const std::string strPath = WritePages(4);
    ReplayProcess replay({"--size", "500x700"});
    for (int nRead = 0; nRead < 3; ++nRead) {
        replay.Run({{"op", "fault"}, {"what", "read_error"}, {"after", nRead}});
        const QJsonValue error = Open(replay, strPath).value("error");
        if (error == QJsonValue(0)) {
            EXPECT_EQ(CountBlank(replay), 0);
        } else {
            EXPECT_EQ(error, QJsonValue(1)) << nRead;
            ExpectUsable(replay);
        }
    }
    EXPECT_EQ(replay.Finish(), 0) << replay.Errors();
}

TEST_F(FaultsTest, AnOrderedFaultStrikesOnceAtItsPlace) {
    ReplayProcess replay({"--size", "500x700"});
    replay.Run({{"op", "fault"}, {"what", "engine_throw"}, {"after", 0}});
    ExpectOpens(replay, 2);
    EXPECT_EQ(CountBlank(replay), 1); // of whichever page came first to the engine
    replay.Run({{"op", "redraw"}});
    EXPECT_EQ(CountBlank(replay), 0);
    for (int nAfter = 0; nAfter < 3; ++nAfter) {
        SCOPED_TRACE(nAfter);
        replay.Run({{"op", "fault"}, {"what", "device_lost"}, {"after", nAfter}});
        for (int nPaint = 0; nPaint <= nAfter; ++nPaint) {
            replay.Run({{"op", "update"}});
        }
        EXPECT_EQ(CountBlank(replay), 0);
    }
    replay.Run({{"op", "fault"}, {"what", "present_failure"}});
    EXPECT_FALSE(replay.Run({{"op", "update"}}).contains("message"));
    ExpectUsable(replay);
    EXPECT_EQ(replay.Finish(), 0) << replay.Errors();
}

TEST_F(FaultsTest, AWrongPasswordKeepsAskingAndTheRightOneOpens) {
    PdfOptions options;
    options.strUserPassword = "reader";
    options.strOwnerPassword = "writer";
    const std::string strPath = folder.Write("locked.pdf", MakePdf({MarkedPage(0)}, options));
    ReplayProcess replay({"--size", "500x700"});
    EXPECT_EQ(Open(replay, strPath).value("error").toInt(-1), 3);
    EXPECT_TRUE(State(replay).value("dialog").toBool());
    EXPECT_TRUE(replay.Run({{"op", "password"}, {"text", "guess"}}).value("open").toBool());
    EXPECT_FALSE(replay.Run({{"op", "password"}, {"text", "reader"}}).value("open").toBool(true));
    EXPECT_EQ(CountBlank(replay), 0);

    EXPECT_EQ(Open(replay, strPath).value("error").toInt(-1), 3);
    replay.Run({{"op", "password_cancel"}});
    EXPECT_FALSE(State(replay).value("dialog").toBool(true));
    EXPECT_FALSE(replay.Run({{"op", "password"}, {"text", "reader"}}).value("open").toBool(true));
    EXPECT_EQ(State(replay).value("count").toInt(-1), 0) << "nobody asks any more";
    EXPECT_EQ(Open(replay, strPath).value("error").toInt(-1), 3);
    EXPECT_TRUE(replay.Run({{"op", "back"}}).value("handled").toBool());
    EXPECT_FALSE(replay.Run({{"op", "back"}}).value("handled").toBool(true));
    EXPECT_EQ(Open(replay, strPath).value("error").toInt(-1), 3);
    EXPECT_TRUE(replay.Run({{"op", "key"}, {"key", "Escape"}}).value("handled").toBool());
    EXPECT_FALSE(State(replay).value("dialog").toBool(true));
}

}

}
