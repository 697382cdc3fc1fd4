// The borders that links are drawn with.

#include "tests/engine/MuPdfFixture.h"
#include "tests/support/pdf_writer/PdfWriter.h"

namespace velko::testing {

namespace {

struct BorderCase {
    const char* szEntries;
    std::uint32_t nTop, nSide, nBottom; // in the line's middle; white: no line there
};

}

class LinkBorderTest : public MuPdfTest {};

TEST_F(LinkBorderTest, LinksHaveTheBordersThatTheFileSays) {
    constexpr std::uint32_t kRed = 0xFFFF0000U;
    const std::vector<BorderCase> cases = {
        {"", kBlack, kBlack, kBlack},
        {"/C [1 0 0]", kRed, kRed, kRed},
        {"/C [0 1 1 0] /Border [0 0 2]", kRed, kRed, kRed},
        {"/C [1] /Border [0 0 3]", kWhite, kWhite, kWhite},
        {"/C []", kWhite, kWhite, kWhite},
        {"/Border [0 0 0]", kWhite, kWhite, kWhite},
        {"/Border [0 0 1 [0 0]]", kWhite, kWhite, kWhite},
        {"/BS << /W 0 >> /Border [0 0 2]", kWhite, kWhite, kWhite},
        {"/BS << /S /U >> /C [1 0 0]", kWhite, kWhite, kRed},
        {"/BS << /S /B /W 2 >>", kBlack, kBlack, kBlack},
        {"/BS << /S /D /D [20.5 19] >>", kWhite, kWhite, kBlack}, // from the lower left, around
        {"/F 2", kWhite, kWhite, kWhite},
        {"/F 32", kWhite, kWhite, kWhite},
        {"/Border [0 0 900]", kBlack, kBlack, kBlack},
        {"/Border [0 0 (wide)]", kWhite, kWhite, kWhite},
        {"/Border 7 /BS /S /C (red)", kBlack, kBlack, kBlack},
    };
    PdfPage page;
    page.mediaBox = {0, 0, 50.0 * static_cast<double>(cases.size()), 40};
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const std::string strLeft = std::to_string(50 * i + 5);
        const std::string strRight = std::to_string(50 * i + 45);
        page.annots.push_back("<< /Type /Annot /Subtype /Link /Rect [" + strLeft + " 10 " +
                              strRight + " 30] " + cases[i].szEntries + " >>");
    }
    for (const int nTurn : {0, 1, 2, 3}) { // the file's own and the reader's cancel out
        page.nRotate = 90 * nTurn;
        const auto pDoc = OpenDoc(MakePdf({page}));
        ASSERT_TRUE(pDoc);
        const auto pPage = pDoc->GetPage(0);
        View view = WholePage(*pPage, 1.0, 4 - nTurn);
        view.bAnnots = true;
        const auto pBitmap = Render(pPage, view);
        for (std::size_t i = 0; i < cases.size(); ++i) {
            SCOPED_TRACE(std::to_string(nTurn) + " " + cases[i].szEntries);
            const auto x = static_cast<std::int32_t>(50 * i);
            EXPECT_EQ(PixelAt(*pBitmap, x + 25, 10), cases[i].nTop);
            EXPECT_EQ(PixelAt(*pBitmap, x + 5, 20), cases[i].nSide);
            EXPECT_EQ(PixelAt(*pBitmap, x + 25, 29), cases[i].nBottom);
            EXPECT_EQ(PixelAt(*pBitmap, x + 25, 20), kWhite) << "inside";
            EXPECT_EQ(PixelAt(*pBitmap, x + 4, 20), kWhite) << "outside";
        }
        view.bAnnots = false;
        EXPECT_EQ(PixelAt(*Render(pPage, view), 5, 20), kWhite);
    }
}

}
