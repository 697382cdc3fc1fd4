// The text of a page with its places.
#include <algorithm>
#include <atomic>
#include <cmath>
#include <string>

#include "document/engine/PageText.h"
#include "engines/mupdf/PageCache.h"
#include "engines/mupdf/reflow/Characters.h"
#include "platform/concurrency/Cancellation.h"
#include "tests/engine/MuPdfFixture.h"
#include "tests/engine/ReflowFixture.h"
#include "tests/support/pdf_writer/PdfWriter.h"

namespace velko::testing {

namespace {

using engines::mupdf::PageCache;
using pdf::PageText;
using pdf::TextQuad;

std::shared_ptr<const PageText> TextOf(const std::shared_ptr<pdf::PDFDoc>& pDoc, int nPage = 0) {
    return std::dynamic_pointer_cast<pdf::ITextSource>(pDoc)->TextOf(nPage);
}

// A line for each of the page's, a sign behind those that are hyphenated.
std::string LinesOf(const PageText& text) {
    std::string strText;
    for (const pdf::TextLine& line : text.lines) {
        for (std::int32_t i = line.nFirst; i < line.nEnd; ++i) {
            engines::mupdf::reflow::AppendUtf8(strText, text.chars[i].nCode);
        }
        strText += line.bHyphenated ? "~\n" : "\n";
    }
    return strText;
}

double Width(const TextQuad& quad) {
    return std::hypot(quad.ptTopRight.X - quad.ptTopLeft.X, quad.ptTopRight.Y - quad.ptTopLeft.Y);
}

bool IsWithin(double db, double dbOne, double dbOther) {
    return db >= std::min(dbOne, dbOther) && db <= std::max(dbOne, dbOther);
}

}

class PageTextTest : public MuPdfTest {};

// Places are the file's own, whatever turns the page or cuts it.
TEST_F(PageTextTest, CharactersStandWhereTheFileDrawsThem) {
    PdfPage page;
    page.mediaBox = {-50, -20, 400, 300};
    page.cropBox = {{10, 20, 380, 280}};
    page.dbUserUnit = 2.0;
    page.strContent =
        "BT /F1 20 Tf 100 200 Td (ab) Tj 28 0 Td (cd) Tj ET "
        "BT /F1 10 Tf 0 1 -1 0 300 60 Tm (up) Tj ET BT /F1 10 Tf -40 0 Td (cut off) Tj ET";
    for (const int nRotate : {0, 90, 180, 270}) {
        SCOPED_TRACE(nRotate);
        page.nRotate = nRotate;
        const auto pText = TextOf(OpenDoc(MakePdf({page})));
        ASSERT_EQ(LinesOf(*pText), "ab cd\nup\n");
        const auto fnHas = [&](std::size_t nChar, double x, double y) {
            const TextQuad& quad = pText->chars[nChar].quad;
            EXPECT_TRUE(IsWithin(x, quad.ptBottomLeft.X, quad.ptTopRight.X)) << nChar;
            EXPECT_TRUE(IsWithin(y, quad.ptBottomLeft.Y, quad.ptTopRight.Y)) << nChar;
        };
        fnHas(0, 105, 205);
        fnHas(2, 125, 205); // the space, between the words
        fnHas(3, 133, 205);
        fnHas(5, 296, 63);
        EXPECT_GT(pText->chars[0].quad.ptTopLeft.Y, pText->chars[0].quad.ptBottomLeft.Y);
        EXPECT_NEAR(Width(pText->chars[0].quad), 11.1, 0.3) << "an a of 20 points";
        EXPECT_NEAR(pText->lines[0].ptDirection.X, 1.0F, 1e-4);
        EXPECT_NEAR(pText->lines[1].ptDirection.Y, 1.0F, 1e-4);
    }
}

TEST_F(PageTextTest, ColumnsAreReadOneAfterTheOtherAndWordsGoOnBehindAHyphen) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"The first column begins with a line that", "which nobody but a reader of the page would"},
        {"is full and goes on with one that ends be-", "have expected all along, and nobody else."},
        {"fore its time has come, as they say, and -", "The second column has a new sentence here"},
        {"that is all there is to be said about this",
         "and it looks like a column of prose to all."},
    };
    std::string strContent = TextAt(60, 720, "A Title over Both of the Columns of the Page", 20);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const double y = 650.0 - 12.0 * static_cast<double>(i);
        strContent += TextAt(60, y, rows[i].first) + TextAt(320, y, rows[i].second);
    }
    const auto pText = TextOf(OpenDoc(OnePage(strContent)));
    std::string strExpected = "A Title over Both of the Columns of the Page\n";
    for (std::size_t i = 0; i < rows.size(); ++i) {
        strExpected += rows[i].first + (i == 1 ? "~\n" : "\n");
    }
    for (const auto& row : rows) {
        strExpected += row.second + "\n";
    }
    EXPECT_EQ(LinesOf(*pText), strExpected);
    EXPECT_EQ(pText->blocks.front().nFirstLine, 0);
    EXPECT_EQ(pText->blocks.back().nEndLine, static_cast<int>(pText->lines.size()));
    EXPECT_GT(pText->blocks.size(), 1U);
}

// A file may draw right-to-left letters in either order; a ligature is its letters.
TEST_F(PageTextTest, LettersComeAsTheyAreReadAndLigaturesApart) {
    PdfPage page;
    page.strContent =
        "BT /F2 20 Tf 100 700 Td (cba) Tj ET BT /F2 20 Tf 1 0 0 1 120 600 Tm (a) Tj "
        "1 0 0 1 110 600 Tm (b) Tj 1 0 0 1 100 600 Tm (c) Tj ET BT /F2 20 Tf 100 500 Td (xzy) Tj "
        "ET";
    page.strExtra = "/Resources << /Font << /F2 11 0 R >> >>";
    PdfOptions options;
    const std::string strMap =
        "/CIDInit /ProcSet findresource begin 12 dict begin begincmap 1 begincodespacerange <00> "
        "<FF> endcodespacerange 6 beginbfchar <61> <05D0> <62> <05D1> <63> <05D2> <78> <0078> <79> "
        "<0079> <7A> <FB01> endbfchar endcmap end end";
    options.extraObjects = {
        "<< /Length " + std::to_string(strMap.size()) + " >> stream\n" + strMap + "\nendstream",
        "<< /Type /Font /Subtype /Type1 /BaseFont /Courier /ToUnicode 10 0 R >>"};
    const auto pText = TextOf(OpenDoc(MakePdf({page}, options)));
    EXPECT_EQ(LinesOf(*pText), "אבג\nאבג\nxfiy\n");
    ASSERT_EQ(pText->chars.size(), 10U);
    EXPECT_LT(pText->lines[0].ptDirection.X, 0.0F);
    EXPECT_GT(pText->chars[0].quad.ptTopLeft.X, pText->chars[2].quad.ptTopLeft.X);
    EXPECT_NEAR(Width(pText->chars[7].quad), Width(pText->chars[6].quad) / 2.0, 0.01);
    EXPECT_NEAR(pText->chars[8].quad.ptTopLeft.X, pText->chars[7].quad.ptTopRight.X, 0.01);
}

TEST_F(PageTextTest, WhatAReaderAddsIsNoTextAndWhatIsNotThereIsTold) {
    PdfPage page;
    page.annots = {
        "<< /Type /Annot /Subtype /FreeText /Rect [10 10 200 60] /Contents (added) "
        "/DA (/Helv 12 Tf 0 g) >>"};
    const auto pDoc = OpenDoc(MakePdf({page}));
    EXPECT_TRUE(TextOf(pDoc)->chars.empty());
    EXPECT_EQ(TextOf(pDoc), TextOf(pDoc)) << "kept";
    for (const int nPage : {-1, 1}) {
        EXPECT_EQ(EngineCodeOf([&] { TextOf(pDoc, nPage); }), common::ErrorCode::e_ErrParam);
    }
    const auto pClosed = CreateDoc(std::make_shared<MemoryReader>(MakePdf({page})));
    EXPECT_EQ(EngineCodeOf([&] { TextOf(pClosed); }), common::ErrorCode::e_ErrNotLoaded);
}

// A search over many pages leaves what the screen has in the cache, and gets no other text.
TEST_F(PageTextTest, WhoPassesThroughReadsTheSameAndKeepsNothing) {
    std::vector<PdfPage> pages(4);
    for (std::size_t i = 0; i < pages.size(); ++i) {
        pages[i].strContent = TextAt(100, 700, "Page " + std::to_string(i) + " of many", 12);
    }
    const auto pDoc = OpenDoc(MakePdf(pages));
    const auto pSource = std::dynamic_pointer_cast<pdf::ITextSource>(pDoc);
    const auto pKept = pSource->TextOf(2);
    const auto pAbort = std::make_shared<std::atomic<bool>>(false);
    const auto pReader = pSource->NewReader(pAbort);
    const std::size_t nKept = PageCache::Instance().Count();
    std::vector<std::string> read;
    for (int nPage = 0; nPage < 4; ++nPage) {
        read.push_back(LinesOf(*pReader->Read(nPage)));
    }
    EXPECT_EQ(pReader->Read(2), pKept) << "what is kept already serves";
    EXPECT_EQ(PageCache::Instance().Count(), nKept);
    for (int nPage = 0; nPage < 4; ++nPage) {
        EXPECT_EQ(read[nPage], LinesOf(*TextOf(pDoc, nPage)));
    }
    EXPECT_EQ(EngineCodeOf([&] { pReader->Read(4); }), common::ErrorCode::e_ErrParam);
    PageCache::Instance().SetLimits({1, 1});
    TextOf(pDoc, 0); // what was kept has gone
    PageCache::Instance().SetLimits({});
    *pAbort = true;
    EXPECT_THROW(pReader->Read(3), concurrency::task_canceled);
}

// Text of a page whose time ran out comes whole after it is parsed anew; and so much
// text that nobody reads it ends in bounded time.
TEST_F(PageTextTest, TextThatWasCutShortComesWholeLater) {
    const auto pDoc = OpenDoc(NestedFormsDocument(12));
    engines::mupdf::SetBudgets({std::chrono::milliseconds(30), {}, {}});
    EXPECT_TRUE(TextOf(pDoc)->chars.empty());

    std::string strMany;
    for (int i = 0; i < 30'000; ++i) {
        strMany += TextAt(20 + i % 7 * 80, 10 + i % 997 * 0.7, "word of many", 4);
    }
    engines::mupdf::SetBudgets({});
    const auto pMany = OpenDoc(OnePage(strMany));
    engines::mupdf::SetBudgets({std::chrono::milliseconds(0), {}, {}});
    const std::size_t nShort = TextOf(pMany)->chars.size();
    engines::mupdf::SetBudgets({});
    const auto start = std::chrono::steady_clock::now();
    pMany->GetPage(0)->StartParse(0, nullptr, 1);
    EXPECT_GT(TextOf(pMany)->chars.size(), std::max<std::size_t>(nShort, 200'000U));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

}
