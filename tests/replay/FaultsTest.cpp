// Bad files, bad sizes and ordered faults: each is answered clearly, and the
// control shows a good file sharply afterwards.
#include <QJsonArray>
#include <fstream>

#include "tests/replay/Documents.h"
#include "tests/replay/ReplayProcess.h"

namespace velko::testing {

namespace {

class FaultsTest : public DocumentsTest {
protected:
    QJsonObject Open(ReplayProcess& replay, const std::string& strPath) {
        return replay.Run({{"op", "open"}, {"path", QString::fromStdString(strPath)}});
    }
    bool IsIdle(ReplayProcess& replay) {
        return replay.Run({{"op", "wait"}, {"timeout_ms", 30000}}).value("idle").toBool();
    }
    // Opens a good file: all blocks on the screen come to have their bitmaps.
    void ExpectUsable(ReplayProcess& replay) {
        replay.Run({{"op", "resize"}, {"w", 500}, {"h", 700}, {"sx", 1}, {"sy", 1}});
        EXPECT_EQ(Open(replay, WritePages("good.pdf", 2)).value("error").toInt(-1), 0);
        ExpectSharp(replay);
    }
    void ExpectSharp(ReplayProcess& replay) {
        EXPECT_TRUE(IsIdle(replay));
        const QJsonArray items = replay.Run({{"op", "state"}}).value("items").toArray();
        EXPECT_FALSE(items.isEmpty());
        for (const QJsonValue& item : items) {
            for (const QJsonValue& block : item["blocks"].toArray()) {
                EXPECT_EQ(block["display"].toBool(), block["bitmap"].isArray())
                    << "page " << item["page"].toInt();
            }
        }
    }
    // A file of more than 4 GiB that takes no room.
    std::string WriteHuge(const std::string& strName) {
        const std::string strPath = Write(strName, MakePdf({MarkedPage(0)}));
        std::filesystem::resize_file(strPath, (1ULL << 32U) + 4096);
        return strPath;
    }
};

TEST_F(FaultsTest, WhatCannotBeOpenedIsAClearAnswer) {
    struct Case {
        std::string strPath;
        const char* szException; // or the code of the open
        int nCode;
    };
    const std::vector<Case> cases{
        {PathOf("missing.pdf"), "Platform::FileNotFoundException", 0},
        {PathOf(""), "Platform::AccessDeniedException", 0},
        {Write("empty.pdf", ""), nullptr, 2},
        {Write("text.pdf", "no PDF at all, only text"), nullptr, 2},
        {Write("no-pages.pdf", MakePdf({})), nullptr, 2},
        {WriteHuge("huge.pdf"), nullptr, 9},
    };
    ReplayProcess replay;
    for (const Case& bad : cases) {
        SCOPED_TRACE(bad.strPath);
        const QJsonObject answer = Open(replay, bad.strPath);
        if (bad.szException != nullptr) {
            EXPECT_EQ(answer.value("error").toString(), bad.szException);
        } else {
            EXPECT_EQ(answer.value("error").toInt(-1), bad.nCode);
        }
        EXPECT_TRUE(replay.Run({{"op", "state"}}).value("items").toArray().isEmpty());
        ExpectUsable(replay);
        replay.Run({{"op", "close"}});
    }
    EXPECT_EQ(replay.Finish(), 0) << replay.Errors();
}

TEST_F(FaultsTest, AFileThatVanishesWhileOpenStaysReadable) {
    const std::string strPath = WritePages("vanishing.pdf", 8);
    ReplayProcess replay;
    EXPECT_EQ(Open(replay, strPath).value("error").toInt(-1), 0);
    std::filesystem::remove(strPath);
    replay.Run({{"op", "last"}});
    ExpectSharp(replay);
    EXPECT_TRUE(Open(replay, strPath).contains("message"));
    ExpectUsable(replay);
    EXPECT_EQ(replay.Finish(), 0);
}

// What an open could not read is read when it is asked for, or the open says so.
TEST_F(FaultsTest, AReadThatFailsInAnOpenLeavesAPictureOrAClearAnswer) {
    const std::string strPath = WritePages("read.pdf", 4);
    ReplayProcess replay({"--size", "500x700"});
    for (int nRead = 0; nRead < 3; ++nRead) {
        replay.Run({{"op", "fault"}, {"what", "read_error"}, {"after", nRead}});
        const QJsonValue error = Open(replay, strPath).value("error");
        EXPECT_TRUE(IsIdle(replay));
        if (error == QJsonValue(0)) {
            ExpectSharp(replay);
        } else {
            EXPECT_EQ(error, QJsonValue(1)) << nRead;
            ExpectUsable(replay);
        }
    }
    EXPECT_EQ(replay.Finish(), 0) << replay.Errors();
}

TEST_F(FaultsTest, AReadThatFailsInTheMiddleOfALargeFileLeavesTheControlUsable) {
    // Beyond the part that is kept in memory, so that pages are read when they are needed.
    PdfOptions options;
    PdfImage image;
    image.nWidth = 3600;
    image.nHeight = 3400;
    image.strPixels.assign(std::size_t{3600} * 3400 * 3, '\x40');
    options.images.push_back(image);
    PdfPage last = MarkedPage(1);
    last.strContent += " q 300 0 0 300 72 72 cm /I1 Do Q";
    const std::string strPath = Write("large.pdf", MakePdf({MarkedPage(0), last}, options));
    ASSERT_GT(std::filesystem::file_size(strPath), std::uintmax_t{31'457'280});

    ReplayProcess replay({"--size", "500x700"});
    EXPECT_EQ(Open(replay, strPath).value("error").toInt(-1), 0);
    EXPECT_TRUE(IsIdle(replay));
    replay.Run({{"op", "fault"}, {"what", "read_error"}, {"after", 1}});
    replay.Run({{"op", "last"}});
    EXPECT_TRUE(IsIdle(replay));
    replay.Run({{"op", "goto"}, {"page", 0}});
    replay.Run({{"op", "redraw"}});
    EXPECT_TRUE(IsIdle(replay));
    ExpectUsable(replay);
    EXPECT_EQ(replay.Finish(), 0) << replay.Errors();
}

TEST_F(FaultsTest, PageIndexesOutOfRangeChangeNothingForGood) {
    ReplayProcess replay({"--size", "500x700"});
    for (const int nPage : {-1, 2, 1'000'000, 2'147'483'647, -2'147'483'647}) {
        SCOPED_TRACE(nPage);
        Open(replay, WritePages("a.pdf", 2));
        replay.Run({{"op", "goto"}, {"page", nPage}});
        replay.Run({{"op", "exact"}, {"page", nPage}, {"x", 10}, {"y", 10}});
        replay.Run({{"op", "annot_edited"}, {"page", nPage}});
        replay.Run({{"op", "matrix"}, {"page", nPage}});
        const QJsonObject converted = replay.Run(
            {{"op", "convert"}, {"what", "page_to_device"}, {"page", nPage}, {"x", 1}, {"y", 1}});
        EXPECT_FALSE(converted.value("valid").toBool(true));
        EXPECT_TRUE(IsIdle(replay));
        ExpectUsable(replay);
    }
    EXPECT_EQ(replay.Finish(), 0) << replay.Errors();
}

TEST_F(FaultsTest, ACanvasWithoutASizeIsNoFailure) {
    ReplayProcess replay({"--size", "0x0"});
    for (const int nHeight : {0, 500, 1}) {
        SCOPED_TRACE(nHeight);
        replay.Run({{"op", "resize"}, {"w", nHeight == 1 ? 1 : 0}, {"h", nHeight}});
        EXPECT_EQ(Open(replay, WritePages("a.pdf", 2)).value("error").toInt(-1), 0);
        EXPECT_TRUE(IsIdle(replay));
        replay.Run({{"op", "move"}, {"dy", 100}, {"dx", 0}});
        replay.Run({{"op", "zoom"}, {"x", 0}, {"y", 0}, {"scale", 2}, {"complete", true}});
        EXPECT_TRUE(IsIdle(replay));
        ExpectUsable(replay);
    }
    EXPECT_EQ(replay.Finish(), 0) << replay.Errors();
}

TEST_F(FaultsTest, CommandsWithoutADocumentAnswerTheirFallbacks) {
    ReplayProcess replay;
    for (const char* szOp : {"redraw", "update", "cancel_render", "close", "password_cancel"}) {
        EXPECT_FALSE(replay.Run({{"op", szOp}}).contains("error")) << szOp;
    }
    EXPECT_FALSE(replay.Run({{"op", "next"}}).value("value").toBool(true));
    const QJsonObject state = replay.Run({{"op", "state"}});
    for (const char* szKey : {"page", "count", "scale", "rotate", "min_scale", "max_scale"}) {
        EXPECT_EQ(state.value(szKey).toDouble(-1), 0.0) << szKey;
    }
}

TEST_F(FaultsTest, AnEngineFailureCostsOneBlockUntilTheNextDrawing) {
    ReplayProcess replay({"--size", "500x700"});
    replay.Run({{"op", "fault"}, {"what", "engine_throw"}, {"after", 0}});
    EXPECT_EQ(Open(replay, WritePages("a.pdf", 2)).value("error").toInt(-1), 0);
    EXPECT_TRUE(IsIdle(replay));
    // Whichever of the two pages came first to the engine.
    int nBlank = 0;
    for (const QJsonValue& item : replay.Run({{"op", "state"}}).value("items").toArray()) {
        const QJsonValue block = item["blocks"][0];
        EXPECT_FALSE(block["rendering"].toBool(true));
        nBlank += block["bitmap"].isNull() ? 1 : 0;
    }
    EXPECT_EQ(nBlank, 1);
    replay.Run({{"op", "redraw"}});
    ExpectSharp(replay);
    ExpectUsable(replay);
}

TEST_F(FaultsTest, AnOrderedFaultOfTheDeviceStrikesOnceAtItsPlace) {
    ReplayProcess replay({"--size", "500x700"});
    Open(replay, WritePages("a.pdf", 2));
    for (int nAfter = 0; nAfter < 3; ++nAfter) {
        SCOPED_TRACE(nAfter);
        EXPECT_TRUE(IsIdle(replay));
        replay.Run({{"op", "fault"}, {"what", "device_lost"}, {"after", nAfter}});
        for (int nPaint = 0; nPaint <= nAfter; ++nPaint) {
            replay.Run({{"op", "update"}});
        }
        ExpectSharp(replay);
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
    PdfPage page;
    page.strContent = "1 0 0 rg 20 20 300 300 re f";
    const std::string strPath = Write("locked.pdf", MakePdf({page}, options));
    ReplayProcess replay({"--size", "500x700"});
    EXPECT_EQ(Open(replay, strPath).value("error").toInt(-1), 3);
    EXPECT_TRUE(replay.Run({{"op", "state"}}).value("dialog").toBool());
    EXPECT_TRUE(replay.Run({{"op", "password"}, {"text", "guess"}}).value("open").toBool());
    EXPECT_FALSE(replay.Run({{"op", "password"}, {"text", "reader"}}).value("open").toBool(true));
    ExpectSharp(replay);

    EXPECT_EQ(Open(replay, strPath).value("error").toInt(-1), 3);
    replay.ClearEvents();
    replay.Run({{"op", "password_cancel"}});
    ASSERT_EQ(replay.EventNames({"OpenDoc"}).size(), 1U);
    const QJsonObject event = replay.Events()[0];
    EXPECT_EQ(event.value("error").toInt(), 6);
    EXPECT_EQ(event.value("canceled").toInt(), 1);
    ExpectUsable(replay);
}

}

}
