// The scroll bars over the pages: where the handle stands, and where it leads.
#include <QtTest/QTest>
#include <cmath>

#include "tests/qt/ViewFixture.h"
#include "widget/scroll/ViewScroll.h"
#include "widget/search/ViewSearch.h"

namespace velko::vkit {
namespace {

using testing::RunUntil;
using testing::SendMouse;

TEST(ScrollRangeTest, AHandleReachesBothEndsAndLeadsBackToItsPlace) {
    for (const double dbTotal : {2.0, 10.0, 2'000.0, 10'000.0}) {
        for (const double dbLength : {0.2, 1.0, 1.7}) {
            for (int n = 0; n <= 20; ++n) {
                const ScrollRange range{n / 20.0 * (dbTotal - dbLength), dbLength, dbTotal};
                const HandlePlace place = PlaceHandle(range, 600.0, 32.0);
                EXPECT_GE(place.dbLength, 32.0);
                EXPECT_GE(place.dbStart, 0.0);
                EXPECT_LE(place.dbStart + place.dbLength, 600.0 + 1e-9);
                EXPECT_NEAR(StartFor(range, 600.0, 32.0, place.dbStart), range.dbStart,
                            1e-6 * dbTotal);
            }
        }
    }
    EXPECT_TRUE((ScrollRange{0.0, 3.0, 3.0}.Fits()));
    EXPECT_EQ(PlaceHandle({0.0, 1.0, 100.0}, 20.0, 32.0).dbLength, 20.0) << "a very small window";
}

class ScrollBarTest : public testing::ViewFixture {
protected:
    void Show(int nPages) {
        m_view.resize(500, 600);
        m_view.show();
        ASSERT_TRUE(OpenUntilSharp(m_view, WritePages("a.pdf", nPages)));
        m_pScroll = std::make_unique<ViewScroll>(m_view);
    }
    const ScrollBar& Down() const { return m_pScroll->Down(); }
    // The widget that has the pointer there.
    void Send(QEvent::Type eType, QPoint pt, bool bDown) {
        QWidget* const pHit = m_pHeld != nullptr ? m_pHeld : m_view.childAt(pt);
        ASSERT_TRUE(pHit);
        m_pHeld = bDown ? pHit : nullptr;
        SendMouse(*pHit, eType, pHit->mapFrom(&m_view, pt), bDown);
    }
    int Page() { return m_view.Control()->GetCurrentPageIndex(); }

    View m_view;
    std::unique_ptr<ViewScroll> m_pScroll;
    QWidget* m_pHeld = nullptr;
};

TEST_F(ScrollBarTest, DraggingReachesEveryPartOfTheDocument) {
    Show(300);
    ASSERT_TRUE(RunUntil([&] { return Down().IsShown(); }));
    EXPECT_GE(Down().HandleRect().height(), 32);
    const QPoint ptGrip = Down().HandleRect().center();
    Send(QEvent::MouseButtonPress, ptGrip, true);
    EXPECT_EQ(m_pScroll->Bubble(), "Page 1");
    int nFrames = 0;
    QObject::connect(&m_view, &View::Painted, [&] { ++nFrames; });
    for (int n = 1; n <= 400; ++n) { // quicker than frames come
        Send(QEvent::MouseMove, ptGrip + QPoint(0, n), true);
    }
    EXPECT_EQ(Down().HandleRect().center().y(), ptGrip.y() + 400) << "it stays with the pointer";
    ASSERT_TRUE(RunUntil([&] { return Page() > 150; }));
    EXPECT_LT(nFrames, 100) << "pages that are passed are not gone to";
    const int nAt = static_cast<int>(std::lround(400.0 / (600.0 - 32.0) * 299.0));
    EXPECT_NEAR(Page(), nAt, 2);
    EXPECT_EQ(m_pScroll->Bubble(), "Page " + QString::number(Page() + 1));
    Send(QEvent::MouseMove, ptGrip + QPoint(0, 900), true);
    EXPECT_TRUE(RunUntil([&] { return Page() == 299; }));
    Send(QEvent::MouseMove, ptGrip - QPoint(0, 50), true);
    EXPECT_TRUE(RunUntil([&] { return Page() == 0; }));
    Send(QEvent::MouseButtonRelease, ptGrip, false);
    EXPECT_EQ(m_pScroll->Bubble(), "");
}

TEST_F(ScrollBarTest, ItTakesNothingOfThePagesUntilThePointerIsNear) {
    Show(30);
    const QPoint ptEdge(497, 500);
    EXPECT_EQ(m_view.childAt(ptEdge), &m_view.Window());
    SendMouse(m_view.Window(), QEvent::MouseMove, ptEdge, false);
    EXPECT_NE(m_view.childAt(ptEdge), &m_view.Window());
    const double dbBefore = RangeDown(*m_view.Control())->dbStart;
    Send(QEvent::MouseButtonPress, ptEdge, true); // on the track: a screen
    Send(QEvent::MouseButtonRelease, ptEdge, false);
    EXPECT_GT(RangeDown(*m_view.Control())->dbStart, dbBefore + 0.3);
    EXPECT_LT(RangeDown(*m_view.Control())->dbStart, dbBefore + 2.1);
    QTest::mouseClick(m_view.childAt(ptEdge), Qt::MiddleButton, {},
                      m_view.childAt(ptEdge)->mapFrom(&m_view, ptEdge));
    EXPECT_NEAR(Page(), 26, 2) << "there";
    EXPECT_NE(m_view.childAt(497, 100), &m_view.Window());
    SendMouse(m_view.Window(), QEvent::MouseMove, {200, 200}, false);
    EXPECT_EQ(m_view.childAt(497, 100), &m_view.Window());
}

TEST_F(ScrollBarTest, ItFollowsEveryLayoutAndIsNotThereWhereAllFits) {
    Show(12);
    EXPECT_FALSE(m_pScroll->Across().IsShown());
    m_view.ZoomTo(3.0);
    EXPECT_TRUE(RunUntil([&] { return m_pScroll->Across().IsShown(); }));
    m_view.SetLayoutMode(View::Layout::SinglePage);
    m_view.FitPage();
    m_view.GotoPage(11);
    EXPECT_TRUE(RunUntil([&] {
        return Down().IsShown() && !m_pScroll->Across().IsShown() &&
               Down().HandleRect().bottom() == m_view.height() - 1;
    }));
    m_pScroll->ScrollTo(4.0);
    EXPECT_EQ(Page(), 4);
    m_view.SetLayoutMode(View::Layout::Continuous);
    ASSERT_TRUE(OpenUntilSharp(m_view, WritePages("one.pdf", 1)));
    m_view.FitPage();
    EXPECT_TRUE(RunUntil([&] { return !Down().IsShown(); }));
    m_view.CloseDocument();
    EXPECT_FALSE(Down().IsShown());
}

}
}
