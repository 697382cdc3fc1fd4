// Reading the text of the pages, set anew: the way there and back, its size, and the
// place that is kept.
#include <QTest>

#include "tests/qt/ViewFixture.h"

namespace velko::testing {

namespace {

class ReadingTest : public ViewFixture {
protected:
    // Pages of forty lines; one in the middle has nothing.
    QString WriteBook(int nPages) {
        std::vector<PdfPage> pages(static_cast<std::size_t>(nPages));
        for (int nPage = 0; nPage < nPages; ++nPage) {
            std::string& strContent = pages[static_cast<std::size_t>(nPage)].strContent;
            strContent = "BT /F1 10 Tf 14 TL 72 700 Td ";
            for (int n = 0; n < 40 && nPage != 4; ++n) {
                strContent += "(Line " + std::to_string(n) + " of page " + std::to_string(nPage) +
                              ", long enough to be set in more than one line of a window) Tj T* ";
            }
            strContent += "ET";
        }
        return Write("book.pdf", MakePdf(pages));
    }
    std::unique_ptr<View> MakeView(QSize size = {500, 600}) {
        auto pView = std::make_unique<View>();
        pView->KeepPlace(true);
        pView->resize(size);
        pView->show();
        return pView;
    }
    // How much of the page stands above the view's top.
    static double ShareAbove(View& view, int nPage) {
        const auto place = view.Control()->GetPageScreenRect(nPage);
        return place ? -place->dbOffsetY / place->nHeight : -1e9;
    }
};

TEST_F(ReadingTest, GoesToTheSamePlaceAndBackToThePagesAsTheyWere) {
    const auto pView = MakeView({500, 400});
    ASSERT_TRUE(OpenUntilSharp(*pView, WriteBook(9)));
    pView->SetLayoutMode(View::Layout::SinglePage);
    pView->RotateBy(2);
    pView->RotateBy(2);
    pView->FitWidth();
    pView->GotoPage(5);
    pView->ScrollBy(0.0, 200.0);
    ASSERT_TRUE(Settles(*pView));
    const double dbShare = ShareAbove(*pView, 5);
    const double dbZoom = pView->Zoom();
    ASSERT_GT(dbShare, 0.1);

    pView->SetReading(true);
    ASSERT_TRUE(Settles(*pView));
    EXPECT_EQ(pView->LayoutMode(), View::Layout::Text);
    EXPECT_EQ(pView->FitMode(), View::Fit::None);
    EXPECT_EQ(pView->Zoom(), 2.5);
    EXPECT_NEAR(ShareAbove(*pView, 5), dbShare, 0.01);
    pView->RotateBy(1); // text has no rotation
    EXPECT_EQ(pView->Rotation(), 0);

    for (const int nKey : {Qt::Key_Plus, Qt::Key_Minus, Qt::Key_Minus}) {
        QTest::keyClick(pView->focusProxy(), static_cast<Qt::Key>(nKey));
        ASSERT_TRUE(Settles(*pView));
        EXPECT_NEAR(ShareAbove(*pView, 5), dbShare, 0.01) << pView->Zoom();
    }
    EXPECT_EQ(pView->Zoom(), 2.0);
    pView->resize(320, 480);
    ASSERT_TRUE(Settles(*pView));
    EXPECT_NEAR(ShareAbove(*pView, 5), dbShare, 0.02);
    pView->SetTextPictures(false);
    ASSERT_TRUE(Settles(*pView));
    EXPECT_NEAR(ShareAbove(*pView, 5), dbShare, 0.02);
    pView->resize(500, 400);

    pView->SetReading(false);
    ASSERT_TRUE(Settles(*pView));
    EXPECT_EQ(pView->LayoutMode(), View::Layout::SinglePage);
    EXPECT_EQ(pView->FitMode(), View::Fit::Width);
    EXPECT_NEAR(pView->Zoom(), dbZoom, 0.001);
    EXPECT_NEAR(ShareAbove(*pView, 5), dbShare, 0.03);
    pView->SetReading(true); // in the size that was chosen last
    EXPECT_EQ(pView->Control()->GetScale(), 2.0F);
}

// Nothing of the text shows: the page and the place on it stay known.
TEST_F(ReadingTest, ComesBackFromADocumentWithoutTextToThePlaceThatWasSeen) {
    const auto pView = MakeView({500, 400});
    std::vector<PdfPage> pages(9);
    for (PdfPage& page : pages) {
        page.strContent = " ";
    }
    ASSERT_TRUE(OpenUntilSharp(*pView, Write("blank.pdf", MakePdf(pages))));
    pView->FitWidth();
    pView->GotoPage(5);
    pView->ScrollBy(0.0, 200.0);
    const double dbShare = ShareAbove(*pView, 5);
    ASSERT_GT(dbShare, 0.1);
    pView->SetReading(true);
    pView->SetTextPictures(false);
    pView->SetTextPictures(true);
    ASSERT_TRUE(RunUntil([&] { return pView->IsReading() && !pView->ShowsSomething(); }));
    EXPECT_EQ(pView->CurrentPage(), 5);
    EXPECT_EQ(pView->Zoom(), 2.5); // not that of the pages
    pView->SetReading(false);
    ASSERT_TRUE(Settles(*pView));
    EXPECT_NEAR(ShareAbove(*pView, 5), dbShare, 0.01);
}

TEST_F(ReadingTest, PagesOfTextAreSteppedByScreensAndFoundByNumber) {
    const auto pView = MakeView();
    ASSERT_TRUE(OpenUntilSharp(*pView, WriteBook(9)));
    pView->SetReading(true);
    pView->ZoomTo(1.0);
    for (const int nPage : {8, 7, 6, 5, 3, 2, 1, 0}) { // however busy the machine, all are
        pView->GotoPage(nPage);                        // measured from here on
        ASSERT_TRUE(Settles(*pView));
    }
    const auto fnTopOf = [&](int nPage) {
        return pView->Control()->GetPageScreenRect(nPage)->dbOffsetY;
    };
    const double dbBefore = fnTopOf(1);
    pView->ScrollByScreen(1);
    EXPECT_NEAR(fnTopOf(1), dbBefore - 540.0, 1.0) << "not from page to page";
    pView->GotoPage(4); // has nothing: the next one that has
    EXPECT_EQ(pView->Control()->GetVisiblePages().front(), 5);
    EXPECT_TRUE(Settles(*pView));
    pView->GotoLastPage();
    EXPECT_TRUE(Settles(*pView));
    EXPECT_EQ(pView->Control()->GetVisiblePages().back(), 8);
    pView->GoBack();
    EXPECT_EQ(pView->Control()->GetVisiblePages().front(), 5);
}

TEST_F(ReadingTest, ComesUpAgainAtItsPlaceAndInItsSize) {
    const QString strFile = WriteBook(9);
    double dbShare = 0.0;
    {
        const auto pView = MakeView();
        ASSERT_TRUE(OpenUntilSharp(*pView, strFile));
        pView->FitWidth();
        pView->SetReading(true);
        pView->ZoomTo(1.5);
        pView->SetTextPictures(false);
        pView->GotoPage(6);
        pView->ScrollBy(0.0, 150.0);
        ASSERT_TRUE(Settles(*pView));
        dbShare = ShareAbove(*pView, 6);
    }
    const auto pView = MakeView({640, 480});
    ASSERT_TRUE(OpenUntilSharp(*pView, strFile));
    EXPECT_EQ(pView->LayoutMode(), View::Layout::Text);
    EXPECT_EQ(pView->Zoom(), 1.5);
    EXPECT_FALSE(pView->TextPictures());
    EXPECT_NEAR(ShareAbove(*pView, 6), dbShare, 0.02);
    pView->SetReading(false);
    ASSERT_TRUE(Settles(*pView));
    EXPECT_EQ(pView->FitMode(), View::Fit::Width);
    EXPECT_EQ(pView->CurrentPage(), 6);
}

TEST_F(ReadingTest, ADocumentWithoutTextHasNothingToShow) {
    const auto pView = MakeView();
    ASSERT_TRUE(OpenUntilSharp(*pView, Write("blank.pdf", MakePdf(std::vector<PdfPage>(3)))));
    pView->SetReading(true);
    EXPECT_TRUE(RunUntil([&] { return pView->IsReading() && !pView->ShowsSomething(); }));
    pView->ZoomIn();
    pView->GotoNextPage();
    pView->SetReading(false);
    EXPECT_TRUE(RunUntil([&] { return pView->ShowsSomething(); }));
}

}
}
