// Searching the document of a view: what is found, what is shown, what is waited for.
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTimer>
#include <algorithm>
#include <ctime>

#include "tests/qt/ViewFixture.h"
#include "widget/search/HitModel.h"
#include "widget/search/ViewSearch.h"
#include "widget/text/PagePlaces.h"
#include "widget/text/PageTexts.h"

namespace velko::vkit {
namespace {

using testing::PdfPage;
using testing::RunUntil;

class SearchTest : public testing::ViewFixture {
protected:
    // Each page with its number and, if it is among these, with the word "needle" at
    // those heights.
    QString WriteText(const QString& strName, int nPages,
                      const std::map<int, std::vector<int>>& needles) {
        std::vector<PdfPage> pages(static_cast<std::size_t>(nPages));
        for (int n = 0; n < nPages; ++n) {
            std::string& strContent = pages[static_cast<std::size_t>(n)].strContent;
            strContent = "BT /F1 12 Tf 72 760 Td (This is page " + std::to_string(n) + ") Tj ET ";
            const auto heights = needles.find(n);
            for (const int nHeight :
                 heights == needles.end() ? std::vector<int>() : heights->second) {
                strContent +=
                    "BT /F1 12 Tf 300 " + std::to_string(nHeight) + " Td (a Needle here) Tj ET ";
            }
        }
        return Write(strName, testing::MakePdf(pages));
    }

    void Show(const QString& strFile) {
        m_view.resize(600, 500);
        m_view.show();
        ASSERT_TRUE(OpenUntilSharp(m_view, strFile));
    }

    ViewSearch& Search() { return m_view.Search(); }
    bool Ends() {
        return RunUntil([&] { return !Search().Hits().IsSearching(); });
    }
    // As soon as the hit's place on the page is known, all of it is in the window.
    bool IsInSight() {
        const auto place = Search().Current();
        const auto hit = place ? Search().Hits().At(*place) : std::nullopt;
        const auto pText = hit ? m_view.Texts().TextOf(place->nPage) : nullptr;
        if (!pText) {
            return false;
        }
        const auto quad = QuadsOf(*pText, *hit).at(0);
        const auto in = PagePlaces(*m_view.Control(), m_view.Window())
                            .InWindow(place->nPage, {quad.ptBottomLeft.X, quad.ptBottomLeft.Y,
                                                     quad.ptTopRight.X, quad.ptTopRight.Y});
        return in && QRectF(m_view.Window().rect()).contains(*in);
    }
    bool ComesInSight() {
        return RunUntil([&] { return IsInSight(); });
    }
    std::string Told() {
        return std::to_string(Search().CurrentNumber()) + " of " +
               std::to_string(Search().Hits().Count());
    }

    View m_view;
};

TEST_F(SearchTest, StepsGoFromTheReadersPlaceRoundTheDocument) {
    Show(WriteText("a.pdf", 30, {{2, {400}}, {10, {700, 100}}, {25, {50}}}));
    m_view.GotoPage(5);
    const double dbZoom = m_view.Zoom();
    QSignalSpy round(&Search(), &ViewSearch::WentRound);
    Search().Find("needle", {});
    ASSERT_TRUE(Ends() && ComesInSight());
    EXPECT_EQ(Told(), "2 of 4");
    EXPECT_EQ(Search().Current(), (HitPlace{10, 0}));
    for (const char* szTold : {"3 of 4", "4 of 4", "1 of 4"}) {
        Search().Next();
        EXPECT_TRUE(ComesInSight()) << szTold;
        EXPECT_EQ(Told(), szTold);
    }
    ASSERT_EQ(round.size(), 1);
    EXPECT_FALSE(round[0][0].toBool());
    Search().Previous();
    EXPECT_TRUE(ComesInSight());
    EXPECT_EQ(Told(), "4 of 4");
    EXPECT_EQ(round.size(), 2);
    EXPECT_EQ(m_view.Zoom(), dbZoom);
    m_view.GoBack();
    EXPECT_TRUE(RunUntil([&] { return m_view.CurrentPage() == 5; }));
    EXPECT_FALSE(m_view.CanGoBack()) << "one place, however many hits";
    Search().End();
    EXPECT_EQ(Told(), "0 of 0");
    EXPECT_EQ(m_view.CurrentPage(), 5);
}

// What is typed on keeps the hit; what is above the window's top comes last.
TEST_F(SearchTest, TypingOnStaysWhereTheReaderIs) {
    Show(WriteText("a.pdf", 8, {{0, {730}}, {3, {700, 400}}, {6, {300}}}));
    m_view.ZoomTo(2.0);
    m_view.ScrollBy(0, 700);
    ASSERT_TRUE(Settles(m_view));
    Search().Find("n", {});
    ASSERT_TRUE(Ends());
    Search().Find("needl", {});
    ASSERT_TRUE(Ends() && ComesInSight());
    EXPECT_EQ(Search().Current(), (HitPlace{3, 0}));
    Search().Next();
    for (const char* szText : {"needle", "needle h", "needle", "nee"}) {
        Search().Find(szText, {});
        ASSERT_TRUE(Ends());
        EXPECT_EQ(Search().Current(), (HitPlace{3, 1})) << szText;
    }
    Search().Find("needless", {});
    ASSERT_TRUE(Ends());
    EXPECT_EQ(Told(), "0 of 0");
    EXPECT_TRUE(Search().Hits().HasText());
    Search().Find("NEEDLE", {.bCase = true});
    ASSERT_TRUE(Ends());
    EXPECT_EQ(Told(), "0 of 0");
}

TEST_F(SearchTest, AHitComesIntoSightInEveryLayoutTurnedAndZoomed) {
    Show(WriteText("a.pdf", 12, {{4, {700}}, {9, {60}}}));
    const auto fnFindBoth = [&](const char* szHow) {
        SCOPED_TRACE(szHow);
        m_view.GotoPage(0);
        Search().End();
        Search().Find("needle", {});
        EXPECT_TRUE(ComesInSight());
        EXPECT_EQ(Search().Current()->nPage, 4);
        Search().Next();
        EXPECT_TRUE(RunUntil([&] { return Search().Current()->nPage == 9 && IsInSight(); }));
    };
    fnFindBoth("fit");
    m_view.ZoomTo(4.0);
    fnFindBoth("zoomed in");
    m_view.RotateBy(1);
    fnFindBoth("turned");
    m_view.SetLayoutMode(View::Layout::SinglePage);
    fnFindBoth("one page at a time");
}

TEST_F(SearchTest, AnotherDocumentIsSearchedAndNothingMoves) {
    Show(WriteText("a.pdf", 30, {{20, {400}}}));
    Search().Find("needle", {});
    ASSERT_TRUE(Ends() && ComesInSight());
    m_view.Open(WriteText("b.pdf", 30, {{1, {700}}, {7, {100}}, {25, {400}}}));
    ASSERT_TRUE(RunUntil([&] { return Search().Hits().Count() == 3; }));
    ASSERT_TRUE(Ends());
    EXPECT_EQ(Search().Current(), (HitPlace{25, 0})) << "nearest to where the reader was";
    EXPECT_EQ(m_view.CurrentPage(), 0);
    m_view.CloseDocument();
    EXPECT_EQ(Told(), "0 of 0");
    EXPECT_FALSE(Search().Hits().IsSearching());
}

// Cancelled at any moment: by other text, by the end, by the view's.
TEST_F(SearchTest, WhatIsUnderWayEndsAtOnce) {
    Show(WriteText("a.pdf", 400, {{399, {400}}}));
    m_view.GotoPage(200);
    Search().Find("page", {});
    ASSERT_TRUE(RunUntil([&] { return Search().Current().has_value(); }));
    EXPECT_TRUE(Search().CurrentNumber() == 0 || Search().CurrentNumber() > 199)
        << "no number before those before it are counted";
    for (const char* szText : {"page", "needle", "p", "is", "needle"}) {
        Search().Find(szText, {});
        QCoreApplication::processEvents();
    }
    ASSERT_TRUE(Ends());
    EXPECT_EQ(Told(), "1 of 1") << "only what was asked for last";
    Search().Find("page", {});
    Search().End();
    EXPECT_FALSE(Search().Hits().IsSearching());
    EXPECT_EQ(Told(), "0 of 0");
    auto pOther = std::make_unique<View>();
    pOther->resize(300, 300);
    pOther->show();
    ASSERT_TRUE(OpenUntilSharp(*pOther, m_view.File().Text()));
    pOther->Search().Find("page", {});
    pOther.reset();
    QCoreApplication::processEvents();
}

// Pages come in the order of the search, and rows stand in that of the document.
TEST_F(SearchTest, TheListHasEachHitInItsPlaceWithItsLine) {
    Show(WriteText("a.pdf", 40, {{3, {700, 300}}, {20, {500}}, {39, {100}}}));
    m_view.GotoPage(10);
    HitModel model(Search(), m_view.Texts(), [](int nPage) { return QString::number(nPage + 1); });
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    Search().Find("needle", {});
    ASSERT_TRUE(Ends());
    ASSERT_EQ(model.rowCount(), 4);
    EXPECT_TRUE(model.IsWhole());
    EXPECT_EQ(inserted.size(), 3) << "as they are found";
    const std::vector<HitPlace> places{{3, 0}, {3, 1}, {20, 0}, {39, 0}};
    for (int nRow = 0; nRow < 4; ++nRow) {
        const HitPlace place = places[static_cast<std::size_t>(nRow)];
        EXPECT_EQ(model.PlaceOf(nRow), place);
        EXPECT_EQ(model.RowOf(place), nRow);
        const QModelIndex index = model.index(nRow);
        EXPECT_EQ(index.data(HitModel::PageRole).toString(), QString::number(place.nPage + 1));
        EXPECT_EQ(index.data()
                      .toString()
                      .mid(index.data(HitModel::FirstRole).toInt(),
                           index.data(HitModel::LengthRole).toInt())
                      .toStdString(),
                  "Needle");
        EXPECT_TRUE(index.data().toString().contains("a Needle here"));
    }
    HitModel late(Search(), m_view.Texts(), [](int) { return QString(); });
    EXPECT_EQ(late.rowCount(), 4) << "one that comes after the hits";
    Search().End();
    EXPECT_EQ(model.rowCount(), 0);
}

// Its own time counts, whatever else the machine does.
TEST_F(SearchTest, TheUiThreadStaysFreeWhileHitsComeIn) {
    PdfPage page;
    for (int nLine = 0; nLine < 50; ++nLine) {
        page.strContent += "BT /F1 8 Tf 40 " + std::to_string(770 - nLine * 15) +
                           " Td (a banana and a cabbage at a bazaar) Tj ET ";
    }
    Show(Write("a.pdf", testing::MakePdf(std::vector<PdfPage>(200, page))));
    HitModel model(Search(), m_view.Texts(), [](int) { return QString(); });
    const auto fnOwnMs = [] {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
    };
    double dbLongest = 0.0;
    double dbLast = fnOwnMs();
    QTimer beat;
    beat.callOnTimeout([&] {
        dbLongest = std::max(dbLongest, fnOwnMs() - dbLast);
        dbLast = fnOwnMs();
    });
    beat.start(0);
    Search().Find("a", {});
    ASSERT_TRUE(Ends());
    EXPECT_EQ(Search().Hits().Count(), 200 * 50 * 13);
    EXPECT_GT(model.rowCount(), 0);
    EXPECT_LT(dbLongest, 16.0);
}

TEST_F(SearchTest, WhatDoesNotFitIsReadAnewAndNeverTakesMore) {
    SearchTexts texts(2'000);
    for (int n = 0; n < 10; ++n) {
        texts.Keep(n, std::make_shared<SearchText>(QString(300, 'a')));
    }
    EXPECT_TRUE(texts.Find(0));
    EXPECT_FALSE(texts.Find(9));
}

}
}
