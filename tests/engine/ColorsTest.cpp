// The mapped colour mode: numbers, pictures and blending.

#include <chrono>
#include <string>

#include "engines/mupdf/ColorMapping.h"
#include "tests/engine/MuPdfFixture.h"
#include "tests/support/pdf_writer/PdfWriter.h"

namespace velko::testing {

using engines::mupdf::ColorMapping;
using std::string_literals::operator""s;

namespace {

constexpr std::uint32_t kNightPaper = 0xFF101010U;
constexpr std::uint32_t kNightInk = 0xFFE0E0E0U;

int Red(std::uint32_t n) {
    return static_cast<int>((n >> 16U) & 0xFFU);
}
int Green(std::uint32_t n) {
    return static_cast<int>((n >> 8U) & 0xFFU);
}
int Blue(std::uint32_t n) {
    return static_cast<int>(n & 0xFFU);
}

View NightView(const pdf::PDFPage& page) {
    View view = WholePage(page);
    view.nBackColor = kNightPaper;
    view.nForeColor = kNightInk;
    return view;
}

}

class ColorsTest : public MuPdfTest {};

TEST_F(ColorsTest, GreysLieBetweenBothColours) {
    const ColorMapping mapping(0xFF204060U, 0xFFFFE0C0U);
    EXPECT_EQ(mapping.Map(kWhite), 0xFF204060U);
    EXPECT_EQ(mapping.Map(kBlack), 0xFFFFE0C0U);
    int nLast = 256;
    for (std::uint32_t nGrey = 0; nGrey < 256; ++nGrey) {
        const std::uint32_t nMapped = mapping.Map(kBlack | nGrey << 16U | nGrey << 8U | nGrey);
        EXPECT_LE(Red(nMapped), nLast);
        nLast = Red(nMapped);
        EXPECT_NEAR(Green(nMapped), 0xE0 + (0x40 - 0xE0) * static_cast<int>(nGrey) / 255, 1);
    }
}

TEST_F(ColorsTest, HuesStay) {
    const ColorMapping mapping(kBlack, kWhite);
    const std::uint32_t nRed = mapping.Map(0xFFC00000U);
    EXPECT_GT(Red(nRed), Green(nRed) + 100);
    EXPECT_EQ(Green(nRed), Blue(nRed));
    const std::uint32_t nBlue = mapping.Map(0xFF0000C0U);
    EXPECT_GT(Blue(nBlue), Red(nBlue) + 20);
    EXPECT_GT(Green(nBlue), 100) << "a dark link is light on dark paper";
}

TEST_F(ColorsTest, PicturesStayAndStencilsAreInk) {
    PdfOptions options;
    options.images = {{1, 1, "\x10\x80\xF0"}};
    PdfPage page;
    page.mediaBox = {0, 0, 100, 100};
    page.strContent =
        "q 40 0 0 40 0 0 cm /I1 Do Q\n"                        // a picture
        "q 50 0 40 40 re W n q 40 0 0 40 55 0 cm /I1 Do Q Q\n" // cut off by a clip
        "q 20 0 0 20 0 60 cm BI /IM true /W 1 /H 1 /BPC 1 /D [1 0] ID \xFF EI Q\n"
        "q 20 0 0 20 40 60 cm BI /CS /G /W 1 /H 1 /BPC 1 ID \x00 EI Q\n"s;
    const auto pDoc = OpenDoc(MakePdf({page}, options));
    ASSERT_TRUE(pDoc);
    const auto pPage = pDoc->GetPage(0);
    const auto pBitmap = Render(pPage, NightView(*pPage));
    EXPECT_EQ(PixelAt(*pBitmap, 20, 80), 0xFF1080F0U);
    EXPECT_EQ(PixelAt(*pBitmap, 70, 80), 0xFF1080F0U);
    EXPECT_EQ(PixelAt(*pBitmap, 94, 80), kNightPaper) << "hidden by the clip";
    EXPECT_EQ(PixelAt(*pBitmap, 10, 30), kNightInk) << "a stencil";
    EXPECT_EQ(PixelAt(*pBitmap, 50, 30), kNightInk) << "one bit a pixel";
    EXPECT_EQ(PixelAt(*pBitmap, 80, 30), kNightPaper);
}

// At night each annotation used to draw the page and all before it once more.
TEST_F(ColorsTest, ManyAnnotationsCostByNightAboutWhatTheyCostByDay) {
    constexpr int kAnnots = 400;
    constexpr int kTries = 3;
    PdfOptions options;
    options.extraObjects = {FormObject(4, 4, "1 0 0")};
    PdfPage page;
    for (int i = 0; i < kAnnots; ++i) {
        const double dbX = i % 20 * 30.0;
        const double dbY = i / 20 * 30.0;
        page.annots.push_back(
            AnnotDictionary("Square", {dbX, dbY, dbX + 20, dbY + 20}, kFirstExtraObject));
        page.strContent += "0 0 m 612 " + std::to_string(2 * i) + " l S\n";
    }
    const auto pDoc = OpenDoc(MakePdf({page}, options));
    ASSERT_TRUE(pDoc);
    const auto pPage = pDoc->GetPage(0);
    const auto fnFastest = [&](View view) {
        view.bAnnots = true;
        auto fastest = std::chrono::steady_clock::duration::max();
        for (int nTry = 0; nTry < kTries; ++nTry) {
            const auto start = std::chrono::steady_clock::now();
            Render(pPage, view);
            fastest = std::min(fastest, std::chrono::steady_clock::now() - start);
        }
        return fastest;
    };
    const auto day = fnFastest(WholePage(*pPage));
    const auto night = fnFastest(NightView(*pPage));
    EXPECT_LT(night, 6 * day) << "over fifty times, when the page is drawn anew for each";
}

// A marker over text leaves the text to be read, on dark paper too.
TEST_F(ColorsTest, MarkersBlendWithWhatTheyMark) {
    const std::string strForm =
        "<< /Type /XObject /Subtype /Form /BBox [0 0 100 20] /Resources << /ExtGState << /G << "
        "/BM /Multiply >> >> >> /Length 38 >>\nstream\n/G gs 1 1 0 rg 0 0 100 20 re f        "
        "\nendstream";
    PdfOptions options;
    options.extraObjects = {strForm};
    PdfPage page;
    page.mediaBox = {0, 0, 100, 20};
    page.strContent = "0 0 50 20 re f";
    page.annots = {AnnotDictionary("Highlight", {0, 0, 100, 20}, kFirstExtraObject)};
    const auto pDoc = OpenDoc(MakePdf({page}, options));
    ASSERT_TRUE(pDoc);
    const auto pPage = pDoc->GetPage(0);
    View view = NightView(*pPage);
    view.bAnnots = true;
    const auto pBitmap = Render(pPage, view);
    EXPECT_EQ(PixelAt(*pBitmap, 25, 10), kNightInk) << "marked text";
    const std::uint32_t nMarked = PixelAt(*pBitmap, 75, 10);
    EXPECT_GT(Red(nMarked), Blue(nMarked)) << "marked paper";
    EXPECT_EQ(PixelAt(*Render(pPage, WholePage(*pPage)), 75, 10), kWhite);
}

}
