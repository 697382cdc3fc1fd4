// The canvas's frame against what the engine draws for the same pixels.
#include <QImage>
#include <QJsonArray>
#include <algorithm>
#include <cmath>

#include "tests/replay/Documents.h"
#include "tests/replay/EnginePicture.h"
#include "tests/replay/ReplayProcess.h"

namespace velko::testing {

namespace {

constexpr QRgb kAroundPages = qRgb(224, 224, 224);

class PixelsTest : public DocumentsTest {
protected:
    QString Path(const std::string& strName) const {
        return QString::fromStdString(PathOf(strName));
    }
    void Open(ReplayProcess& replay, const std::string& strPath) {
        const QJsonObject opened =
            replay.Run({{"op", "open"}, {"path", QString::fromStdString(strPath)}});
        ASSERT_EQ(opened.value("error").toInt(-1), 0);
        WaitUntilIdle(replay);
    }
    void WaitUntilIdle(ReplayProcess& replay) {
        EXPECT_TRUE(replay.Run({{"op", "wait"}}).value("idle").toBool());
    }
    QImage Screenshot(ReplayProcess& replay) {
        const QJsonObject taken = replay.Run({{"op", "screenshot"}, {"file", Path("frame.png")}});
        QImage frame(Path("frame.png"));
        EXPECT_EQ(taken.value("w").toInt(), frame.width());
        EXPECT_EQ(taken.value("h").toInt(), frame.height());
        return frame.convertToFormat(QImage::Format_RGB32);
    }
};

QRect ItemRect(const QJsonObject& item) {
    return {static_cast<int>(std::lround(item.value("x").toDouble())),
            static_cast<int>(std::lround(item.value("y").toDouble())), item.value("w").toInt(),
            item.value("h").toInt()};
}

// Pixels of the frame inside `rcPage` that differ from the page's picture.
int DifferingPixels(const QImage& frame, const QRect& rcPage, const QImage& picture) {
    const QRect rcSeen = rcPage.intersected(frame.rect());
    int nDiffering = 0;
    for (int nY = rcSeen.top(); nY <= rcSeen.bottom(); ++nY) {
        for (int nX = rcSeen.left(); nX <= rcSeen.right(); ++nX) {
            nDiffering += frame.pixel(nX, nY) != picture.pixel(nX - rcPage.x(), nY - rcPage.y());
        }
    }
    return nDiffering;
}

void ExpectSharp(const QImage& frame, const QJsonObject& state, const std::string& strPath) {
    const QJsonArray items = state.value("items").toArray();
    ASSERT_FALSE(items.isEmpty());
    for (const QJsonValue& value : items) {
        const QJsonObject item = value.toObject();
        const QRect rc = ItemRect(item);
        const int nPage = item.value("page").toInt();
        const QImage picture = EnginePicture(strPath, nPage, rc.width(), rc.height());
        EXPECT_EQ(DifferingPixels(frame, rc, picture), 0) << "page " << nPage;
    }
}

TEST_F(PixelsTest, TheFrameIsTheEnginesPictureOfThePagesOnGrey) {
    const std::string strPath = WritePages("a.pdf", 3);
    ReplayProcess replay({"--size", "700x1000"});
    Open(replay, strPath);
    replay.Run({{"op", "move"}, {"dy", 333}, {"dx", 0}});
    WaitUntilIdle(replay);
    const QImage frame = Screenshot(replay);
    ASSERT_EQ(frame.size(), QSize(700, 1000));
    const QJsonObject state = replay.Run({{"op", "state"}});
    ExpectSharp(frame, state, strPath);
    const QRect rcFirst = ItemRect(state.value("items")[0].toObject());
    EXPECT_EQ(frame.pixel(350, rcFirst.bottom() + 8), kAroundPages) << "the gap";
}

TEST_F(PixelsTest, TheFrameIsInDevicePixelsAtAnyCompositionScale) {
    const std::string strPath = WritePages("a.pdf", 2);
    ReplayProcess replay({"--size", "500x500"});
    Open(replay, strPath);
    replay.Run({{"op", "resize"}, {"w", 400}, {"h", 600}, {"sx", 1.5}, {"sy", 1.5}});
    WaitUntilIdle(replay);
    const QImage frame = Screenshot(replay);
    ASSERT_EQ(frame.size(), QSize(600, 900));
    ExpectSharp(frame, replay.Run({{"op", "state"}}), strPath);
}

TEST_F(PixelsTest, ALogicalSizeIsTakenAsItIsAndItsFrameIsCutToWholePixels) {
    ReplayProcess replay({"--size", "333x217", "--composition-scale", "1.25"});
    replay.Run({{"op", "open"}, {"path", QString::fromStdString(WritePages("a.pdf", 1))}});
    replay.Run({{"op", "wait"}});
    const auto fnFrame = [&] {
        const QJsonObject shot =
            replay.Run({{"op", "screenshot"}, {"file", QString::fromStdString(PathOf("a.png"))}});
        return QSize(shot.value("w").toInt(), shot.value("h").toInt());
    };
    EXPECT_EQ(fnFrame(), QSize(416, 271)); // 416.25 x 271.25
    replay.Run({{"op", "resize"}, {"w", 335}, {"h", 219}});
    EXPECT_EQ(fnFrame(), QSize(418, 273)); // 418.75 x 273.75
}

TEST_F(PixelsTest, AScaleOfItsOwnLaysOutAnewAtTheSameLogicalSize) {
    const std::string strPath = WritePages("a.pdf", 2);
    ReplayProcess replay({"--size", "400x600"});
    Open(replay, strPath);
    replay.Run({{"op", "resize"}, {"w", 400}, {"h", 600}, {"sx", 1.5}, {"sy", 2}});
    WaitUntilIdle(replay);
    const QImage frame = Screenshot(replay);
    ASSERT_EQ(frame.size(), QSize(600, 1200));
    ExpectSharp(frame, replay.Run({{"op", "state"}}), strPath);
}

TEST_F(PixelsTest, ManyBlocksJoinToTheWholePage) {
    const std::string strPath = WritePages("a.pdf", 1);
    ReplayProcess replay({"--size", "400x500"});
    Open(replay, strPath);
    replay.Run({{"op", "zoom"}, {"x", 200}, {"y", 250}, {"scale", 4.0}, {"complete", true}});
    WaitUntilIdle(replay);
    const QJsonObject state = replay.Run({{"op", "state"}});
    EXPECT_GT(state.value("items")[0]["rows"].toInt(), 1);
    EXPECT_GT(state.value("items")[0]["cols"].toInt(), 1);
    ExpectSharp(Screenshot(replay), state, strPath);
}

TEST_F(PixelsTest, NightColoursAreTheEnginesMapping) {
    ReplayProcess replay({"--size", "400x500"});
    Open(replay, WritePages("a.pdf", 1));
    replay.Run({{"op", "night"}, {"on", true}});
    WaitUntilIdle(replay);
    const QJsonObject state = replay.Run({{"op", "state"}});
    EXPECT_TRUE(state.value("night").toBool());
    const QRect rc = ItemRect(state.value("items")[0].toObject());
    EXPECT_EQ(Screenshot(replay).pixel(rc.left() + 2, rc.top() + 2), qRgb(0, 0, 27));
}

TEST_F(PixelsTest, AClosedDocumentLeavesAnEmptyCanvas) {
    ReplayProcess replay({"--size", "300x400"});
    Open(replay, WritePages("a.pdf", 1));
    replay.Run({{"op", "close"}});
    const QImage frame = Screenshot(replay);
    EXPECT_EQ(frame.pixel(20, 20), kAroundPages);
    EXPECT_EQ(frame.pixel(150, 200), kAroundPages);
}

}

}
