// The canvas's frame against what the engine draws for the same pixels.
#include <QImage>
#include <QJsonArray>
#include <cmath>

#include "engines/mupdf/Register.h"
#include "tests/engine/EngineFixture.h"
#include "tests/replay/ReplayFixture.h"

namespace velko::testing {

namespace {

constexpr QRgb kAroundPages = qRgb(224, 224, 224);

class PixelsTest : public ReplayFixture {
protected:
    QImage Screenshot(ReplayProcess& replay) {
        ExpectIdle(replay);
        const std::string strFile = folder / "frame.png";
        const QJsonObject taken =
            replay.Run({{"op", "screenshot"}, {"file", QString::fromStdString(strFile)}});
        const QImage frame(QString::fromStdString(strFile));
        EXPECT_EQ(QSize(taken.value("w").toInt(), taken.value("h").toInt()), frame.size());
        return frame.convertToFormat(QImage::Format_RGB32);
    }
    // Pixel for pixel the engine's picture of each page, with grey between.
    void ExpectSharp(ReplayProcess& replay, QSize frameSize);
};

QRect ItemRect(const QJsonValue& item) {
    return {static_cast<int>(std::lround(item["x"].toDouble())),
            static_cast<int>(std::lround(item["y"].toDouble())), item["w"].toInt(),
            item["h"].toInt()};
}

QImage EnginePicture(const std::string& strBytes, int nPage, QSize size) {
    View view;
    view.nPageWidth = view.nWidth = size.width();
    view.nPageHeight = view.nHeight = size.height();
    const auto pBitmap = Render(OpenDoc(strBytes)->GetPage(nPage), view);
    return QImage(pBitmap->GetBuffer().data(), size.width(), size.height(), size.width() * 4,
                  QImage::Format_RGB32)
        .copy();
}

void PixelsTest::ExpectSharp(ReplayProcess& replay, QSize frameSize) {
    const QImage frame = Screenshot(replay);
    EXPECT_EQ(frame.size(), frameSize);
    const QJsonArray items = State(replay).value("items").toArray();
    EXPECT_FALSE(items.isEmpty());
    for (const QJsonValue& item : items) {
        const QRect rc = ItemRect(item);
        const int nPage = item["page"].toInt();
        const QImage picture = EnginePicture(folder.Read("a.pdf"), nPage, rc.size());
        const QRect rcSeen = rc.intersected(frame.rect());
        EXPECT_TRUE(frame.copy(rcSeen) == picture.copy(rcSeen.translated(-rc.topLeft())))
            << "page " << nPage;
    }
}

TEST_F(PixelsTest, TheFrameIsTheEnginesPictureOfThePagesOnGrey) {
    velko::engines::mupdf::RegisterEngine();
    ReplayProcess replay({"--size", "700x1000"});
    ExpectOpens(replay, 3);
    replay.Run({{"op", "move"}, {"dy", 333}, {"dx", 0}});
    ExpectSharp(replay, {700, 1000});
    const QRect rcFirst = ItemRect(State(replay).value("items")[0]);
    EXPECT_EQ(Screenshot(replay).pixel(350, rcFirst.bottom() + 8), kAroundPages) << "the gap";
    // In device pixels at any composition scale; one that changes alone lays out anew.
    replay.Run({{"op", "resize"}, {"w", 400}, {"h", 600}, {"sx", 1.5}, {"sy", 1.5}});
    ExpectSharp(replay, {600, 900});
    replay.Run({{"op", "resize"}, {"w", 400}, {"h", 600}, {"sx", 1.5}, {"sy", 2}});
    ExpectSharp(replay, {600, 1200});
    // Many blocks join to the whole page.
    replay.Run({{"op", "resize"}, {"w", 400}, {"h", 500}, {"sx", 1}, {"sy", 1}});
    replay.Run({{"op", "zoom"}, {"x", 200}, {"y", 250}, {"scale", 4.0}, {"complete", true}});
    ExpectSharp(replay, {400, 500});
    const QJsonValue item = State(replay).value("items")[0];
    EXPECT_GT(item["rows"].toInt(), 1);
    EXPECT_GT(item["cols"].toInt(), 1);
    replay.Run({{"op", "close"}});
    EXPECT_EQ(Screenshot(replay).pixel(150, 200), kAroundPages) << "an empty canvas";
}

TEST_F(PixelsTest, ALogicalSizeIsTakenAsItIsAndItsFrameIsCutToWholePixels) {
    ReplayProcess replay({"--size", "333x217", "--composition-scale", "1.25"});
    ExpectOpens(replay, 1);
    EXPECT_EQ(Screenshot(replay).size(), QSize(416, 271)); // 416.25 x 271.25
    replay.Run({{"op", "resize"}, {"w", 335}, {"h", 219}});
    EXPECT_EQ(Screenshot(replay).size(), QSize(418, 273)); // 418.75 x 273.75
}

TEST_F(PixelsTest, NightColoursAreTheEnginesMapping) {
    ReplayProcess replay({"--size", "400x500"});
    ExpectOpens(replay, 1);
    replay.Run({{"op", "night"}, {"on", true}});
    const QImage frame = Screenshot(replay);
    EXPECT_TRUE(State(replay).value("night").toBool());
    const QPoint ptPaper = ItemRect(State(replay).value("items")[0]).topLeft() + QPoint(2, 2);
    EXPECT_EQ(frame.pixel(ptPaper), qRgb(0, 0, 27));
}

}

}
