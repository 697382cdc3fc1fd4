// The small pictures of pages beside the pages.
#include <gtest/gtest.h>

#include <QScrollBar>
#include <QTest>
#include <QToolButton>
#include <set>

#include "app/viewer/side/SidePanel.h"
#include "app/viewer/side/ThumbPane.h"
#include "tests/qt/WindowFixture.h"
#include "widget/edit/ViewEdits.h"

namespace velko {
namespace {

using testing::RunUntil;
using vkit::PageThumbs;
using View = vkit::VelkoPdfView;

constexpr QSize kLargest(60, 80);

class ThumbsTest : public testing::WindowFixture {
protected:
    View& TheView() { return m_pWindow->View(); }
    // The colour at a place of a page whose square is red and in its middle.
    static QColor ColorAt(const QImage& image, double dbX, double dbY) {
        return image.isNull() ? QColor()
                              : image.pixelColor(static_cast<int>(image.width() * dbX),
                                                 static_cast<int>(image.height() * dbY));
    }
    static bool IsDark(const QColor& color) { return color.isValid() && color.lightness() < 60; }
    viewer::ThumbPane* Pane() { return m_pWindow->findChild<viewer::ThumbPane*>(); }
    bool ShowPane() {
        QTest::keyClick(m_pWindow.get(), Qt::Key_F9);
        for (auto* const pButton : m_pWindow->findChildren<QToolButton*>()) {
            if (pButton->accessibleName() == "Pages") {
                pButton->click();
            }
        }
        return RunUntil([&] { return Pane() != nullptr && !Pane()->Thumbs().Find(0).isNull(); });
    }
};

TEST_F(ThumbsTest, WhatIsWantedIsDrawnFromTheMiddleOnInTheReadersColours) {
    ASSERT_TRUE(ShowUntilSharp(WritePages("pages.pdf", 9)));
    PageThumbs thumbs(TheView());
    std::vector<int> drawn;
    QObject::connect(&thumbs, &PageThumbs::Drawn, [&](int nPage) { drawn.push_back(nPage); });
    thumbs.Want({4, 5, 3}, kLargest);
    ASSERT_TRUE(RunUntil([&] { return drawn.size() == 3; }));
    EXPECT_EQ(drawn, (std::vector{4, 5, 3}));
    EXPECT_TRUE(thumbs.Find(2).isNull());
    EXPECT_EQ(thumbs.Find(4).size(), QSize(60, 78));
    EXPECT_EQ(ColorAt(thumbs.Find(4), 0.5, 0.5), QColor(Qt::red));
    EXPECT_EQ(ColorAt(thumbs.Find(4), 0.1, 0.1), QColor(Qt::white));
    TheView().SetNightMode(true);
    EXPECT_TRUE(RunUntil([&] { return IsDark(ColorAt(thumbs.Find(3), 0.1, 0.1)); }));
    drawn.clear();
    ASSERT_TRUE(Settles(TheView()));
    emit TheView().Edits().Edits().PageEdited(5);
    EXPECT_TRUE(RunUntil([&] { return drawn == std::vector{5}; })) << "an edited page alone";
    ASSERT_TRUE(ShowUntilSharp(WritePages("other.pdf", 2)));
    EXPECT_TRUE(thumbs.Find(4).isNull()) << "a page of another document";
}

TEST_F(ThumbsTest, ProtectedDocumentsHavePicturesThatStayInMemory) {
    TheView().Open(WriteLocked(), Platform::SecretText("secret"));
    ASSERT_TRUE(RunUntil([&] { return TheView().ViewState() == View::State::Shown; }));
    ASSERT_TRUE(Settles(TheView()));
    PageThumbs thumbs(TheView());
    thumbs.Want({0}, kLargest);
    EXPECT_TRUE(RunUntil([&] { return !thumbs.Find(0).isNull(); }));
}

TEST_F(ThumbsTest, PicturesStayWithinTheirBound) {
    ASSERT_TRUE(ShowUntilSharp(WritePages("pages.pdf", 20)));
    PageThumbs thumbs(TheView());
    int nDrawn = 0;
    QObject::connect(&thumbs, &PageThumbs::Drawn, [&] { ++nDrawn; });
    for (int nPage = 0; nPage < 20; ++nPage) { // of more than two MiB each
        thumbs.Want({nPage}, {800, 1000});
        ASSERT_TRUE(RunUntil([&] { return nDrawn > nPage; }));
        ASSERT_LE(thumbs.Bytes(), PageThumbs::kMostBytes);
    }
    EXPECT_TRUE(thumbs.Find(0).isNull());
    EXPECT_FALSE(thumbs.Find(18).isNull()) << "the nearest stay";
}

TEST_F(ThumbsTest, AfterAFlickThroughManyPagesTheLastOnesComeFirst) {
    ASSERT_TRUE(ShowUntilSharp(WritePages("many.pdf", 2000)));
    ASSERT_TRUE(ShowPane());
    std::set<int> drawn;
    QObject::connect(&Pane()->Thumbs(), &PageThumbs::Drawn,
                     [&](int nPage) { drawn.insert(nPage); });
    QScrollBar& bar = *Pane()->verticalScrollBar();
    for (int nStep = 0; nStep <= 400; ++nStep) {
        bar.setValue(bar.maximum() / 400 * nStep);
        QCoreApplication::processEvents();
    }
    bar.setValue(bar.maximum());
    drawn.clear();
    ASSERT_TRUE(RunUntil([&] { return drawn.count(1999) == 1; }));
    EXPECT_LT(drawn.size(), 20U) << "what was only passed stands before what is seen";
    const QRect rcLast = Pane()->visualRect(Pane()->model()->index(1999, 0));
    QTest::mouseClick(Pane()->viewport(), Qt::LeftButton, Qt::NoModifier, rcLast.center());
    EXPECT_TRUE(RunUntil([&] { return TheView().CurrentPage() == 1999; }));
    Pane()->setFocus();
    QTest::keyClicks(Pane(), "250");
    QTest::keyClick(Pane(), Qt::Key_Return);
    EXPECT_TRUE(RunUntil([&] { return TheView().CurrentPage() == 249; })) << "typed to find";
}

}
}
