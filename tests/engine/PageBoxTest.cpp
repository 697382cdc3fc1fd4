// Page boxes as files have them, the odd ones too.

#include "tests/engine/MuPdfFixture.h"
#include "tests/support/pdf_writer/PdfWriter.h"

namespace velko::testing {

namespace {

struct BoxCase {
    const char* szName;
    PdfPage page;
    float fWidth;
    float fHeight;
    std::int32_t nRotation;
    PdfBox box; // in page space
};

PdfPage MakeBoxPage(const PdfBox& mediaBox, int nRotate = 0, std::vector<PdfBox> cropBox = {},
                    double dbUserUnit = 1.0) {
    PdfPage page;
    page.mediaBox = mediaBox;
    page.nRotate = nRotate;
    page.cropBox = std::move(cropBox);
    page.dbUserUnit = dbUserUnit;
    return page;
}

std::vector<BoxCase> BoxCases() {
    const PdfBox a4 = {0, 0, 595, 842};
    const PdfBox letter = {0, 0, 612, 792};
    const PdfBox inside = {100, 50, 300, 450};
    const PdfBox tiny = {0, 0, 0.5, 0.25};
    return {
        {"plain", MakeBoxPage(a4), 595, 842, 0, a4},
        {"quarter turn", MakeBoxPage(a4, 90), 842, 595, 1, a4},
        {"turned back", MakeBoxPage(a4, -90), 842, 595, 3, a4},
        {"more than a whole turn", MakeBoxPage(a4, 540), 595, 842, 2, a4},
        {"crop inside", MakeBoxPage(a4, 0, {inside}), 200, 400, 0, inside},
        {"crop larger", MakeBoxPage(a4, 0, {{-100, -50, 900, 950}}), 595, 842, 0, a4},
        {"crop swapped", MakeBoxPage(a4, 0, {{300, 450, 100, 50}}), 200, 400, 0, inside},
        {"crop outside", MakeBoxPage(a4, 0, {{700, 900, 800, 990}}), 595, 842, 0, a4},
        {"user unit", MakeBoxPage({0, 0, 100, 200}, 90, {}, 2.0), 400, 200, 1, {0, 0, 100, 200}},
        {"negative origin", MakeBoxPage({-50, -60, 50, 40}, 180), 100, 100, 2, {-50, -60, 50, 40}},
        {"empty", MakeBoxPage({10, 10, 10, 10}), 612, 792, 0, letter},
        {"large beyond the limit",
         MakeBoxPage({0, 0, 200000, 100000}),
         14400,
         7200,
         0,
         {0, 0, 200000, 100000}},
        {"smaller than a point", MakeBoxPage(tiny), 2, 1, 0, tiny},
    };
}

}

class PageBoxTest : public MuPdfTest {};

TEST_F(PageBoxTest, SizesRotationsAndBoxesAreThoseOfTheFile) {
    const std::vector<BoxCase> cases = BoxCases();
    std::vector<PdfPage> pages;
    for (const BoxCase& c : cases) {
        pages.push_back(c.page);
    }
    const auto pDoc = OpenDoc(MakePdf(pages));
    ASSERT_TRUE(pDoc);
    for (std::size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE(cases[i].szName);
        const auto pPage = pDoc->GetPage(static_cast<std::int32_t>(i));
        EXPECT_NEAR(pPage->GetWidth(), cases[i].fWidth, 0.01F);
        EXPECT_NEAR(pPage->GetHeight(), cases[i].fHeight, 0.01F);
        EXPECT_EQ(pPage->GetRotation(), cases[i].nRotation);
        const auto rc = pPage->GetBox(0);
        EXPECT_NEAR(rc.Left, cases[i].box.dbLeft, 0.01);
        EXPECT_NEAR(rc.Bottom, cases[i].box.dbBottom, 0.01);
        EXPECT_NEAR(rc.Right, cases[i].box.dbRight, 0.01);
        EXPECT_NEAR(rc.Top, cases[i].box.dbTop, 0.01);
    }
}

// What lies in the corner of the box appears in the corner of the picture, so
// matrix and drawing agree also with crop boxes, units and odd sizes.
TEST_F(PageBoxTest, DrawingAgreesWithTheBox) {
    for (BoxCase& c : BoxCases()) {
        SCOPED_TRACE(c.szName);
        const double dbWidth = (c.box.dbRight - c.box.dbLeft) / 2;
        const double dbHeight = (c.box.dbTop - c.box.dbBottom) / 2;
        c.page.strContent = "0 0.6 0 rg " + std::to_string(c.box.dbLeft) + " " +
                            std::to_string(c.box.dbBottom) + " " + std::to_string(dbWidth) + " " +
                            std::to_string(dbHeight) + " re f";
        const auto pDoc = OpenDoc(MakePdf({c.page}));
        ASSERT_TRUE(pDoc);
        const auto pPage = pDoc->GetPage(0);
        View view = WholePage(*pPage);
        view.nPageWidth = view.nWidth = 80;
        view.nPageHeight = view.nHeight = 80;
        const auto pBitmap = Render(pPage, view);
        // The lower left quarter of the box, clockwise through the rotations.
        constexpr std::array<std::array<std::int32_t, 2>, 4> kWhere = {
            {{20, 60}, {20, 20}, {60, 20}, {60, 60}}};
        for (std::int32_t i = 0; i < 4; ++i) {
            const auto [x, y] = kWhere[static_cast<std::size_t>(i)];
            EXPECT_EQ(PixelAt(*pBitmap, x, y), i == c.nRotation ? 0xFF009900U : kWhite) << i;
        }
    }
}

}
