// Reflowed pages: reading order, paragraphs, setting, bands and limits.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <limits>
#include <map>
#include <set>

#include "document/engine/ReflowPage.h"
#include "engines/mupdf/reflow/Characters.h"
#include "engines/mupdf/reflow/LineBreaker.h"
#include "engines/mupdf/reflow/LogicalOrder.h"
#include "engines/mupdf/reflow/ReflowedPage.h"
#include "tests/engine/ReflowFixture.h"
#include "tests/support/pdf_writer/PdfWriter.h"
#include "tests/support/pdf_writer/PlainText.h"

namespace velko::testing {

namespace reflow = engines::mupdf::reflow;
using engines::mupdf::reflow::BreakLines;
using engines::mupdf::reflow::Glyph;
using engines::mupdf::reflow::Glyphs;
using engines::mupdf::reflow::PlacedCharacter;
using engines::mupdf::reflow::ReflowedPage;
using Clock = std::chrono::steady_clock;
using pdf::ReflowPage;

namespace {

// Far above what a page needs, far below what quadratic work would take; a
// sanitizer slows everything down.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::chrono::seconds kPatience{30};
#else
constexpr std::chrono::seconds kPatience{5};
#endif

// An article: running head, title, two columns drawn row by row, a number at the foot.
std::string Article() {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"The first column begins with a line that is", "which is what a reader of the page would"},
        {"full, and goes on with one that ends in a hy-",
         "have expected all along, and nobody else."},
        {"phen. It also has a second sentence here.", "   The second column has a new paragraph"},
        {"   A new paragraph is indented a little, and",
         "with a number of lines, so that it looks"},
        {"takes some more lines before the column is at",
         "like a column of prose and is not taken"},
        {"an end, where the sentence simply continues,",
         "for the cells of a table by anybody at all."},
    };
    std::string strContent = TextAt(60, 770, "A running head") +
                             TextAt(60, 700, "Columns of an Article on the Setting of Text", 20);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const double y = 650.0 - 12.0 * static_cast<double>(i);
        const auto fnIndent = [](const std::string& str) { return str[0] == ' ' ? 12.0 : 0.0; };
        const auto fnText = [](const std::string& str) {
            return str.substr(str.find_first_not_of(' '));
        };
        strContent += TextAt(60 + fnIndent(rows[i].first), y, fnText(rows[i].first));
        strContent += TextAt(320 + fnIndent(rows[i].second), y, fnText(rows[i].second));
    }
    return OnePage(strContent + TextAt(300, 30, "17"));
}

// Letters on a circle, each turned its own way.
std::string Circle() {
    std::string strContent;
    for (int i = 0; i < 36; ++i) {
        const double a = i * 3.14159265 / 18;
        char sz[160];
        std::snprintf(sz, sizeof sz, "BT /F1 12 Tf %f %f %f %f %f %f Tm (c) Tj ET\n", std::cos(a),
                      -std::sin(a), std::sin(a), std::cos(a), 300 + 99 * std::sin(a),
                      400 + 99 * std::cos(a));
        strContent += sz;
    }
    return strContent;
}

std::u32string FromUtf8(const std::string& strText) {
    std::u32string str;
    for (const char c : strText) {
        const auto n = static_cast<unsigned char>(c);
        if ((n & 0xC0U) != 0x80U) {
            str += n < 0x80U ? n : n < 0xE0U ? n & 0x1FU : n < 0xF0U ? n & 0x0FU : n & 0x07U;
        } else if (!str.empty()) {
            str.back() = str.back() << 6U | (n & 0x3FU);
        }
    }
    return str;
}

// The words of a text. Line ends within words are undone; each ideograph is a word;
// hyphens do not count, nor the order of right-to-left letters, which one side
// may have as they stand, nor accents, before or behind their letter. Characters
// that nobody knows part words: one side takes blanks among them for such.
std::multiset<std::string> WordsOf(const std::string& strText) {
    std::multiset<std::string> words;
    std::u32string strWord;
    const auto fnEnd = [&] {
        if (std::any_of(strWord.begin(), strWord.end(), &reflow::IsRightToLeft)) {
            std::sort(strWord.begin(), strWord.end());
        }
        std::string strBytes;
        for (const char32_t c : strWord) {
            reflow::AppendUtf8(strBytes, c);
        }
        if (!strBytes.empty()) {
            words.insert(strBytes);
        }
        strWord.clear();
    };
    bool bHyphen = false; // just before
    for (const char32_t c : FromUtf8(strText)) {
        if (reflow::IsSpace(c) || c == 0xFFFD) {
            if (!bHyphen) {
                fnEnd();
            }
        } else if (reflow::IsIdeographic(c)) {
            fnEnd();
            strWord = c;
            fnEnd();
        } else if (!reflow::IsHyphen(c) && !reflow::IsAccent(c)) {
            strWord += c;
        }
        bHyphen = reflow::IsHyphen(c) || (bHyphen && reflow::IsSpace(c));
    }
    fnEnd();
    return words;
}

std::size_t CountShared(const std::multiset<std::string>& one,
                        const std::multiset<std::string>& two) {
    std::vector<std::string> shared;
    std::set_intersection(one.begin(), one.end(), two.begin(), two.end(),
                          std::back_inserter(shared));
    return shared.size();
}

}

class ReflowTest : public MuPdfTest {};

TEST_F(ReflowTest, AnArticleIsReadInItsOrderWithoutItsLineEnds) {
    EXPECT_EQ(TextOf(ReflowOf(Article())),
              "A running head\n"
              "Columns of an Article on the Setting of Text\n"
              "The first column begins with a line that is full, and goes on with one that ends "
              "in a hyphen. It also has a second sentence here.\n"
              "A new paragraph is indented a little, and takes some more lines before the column "
              "is at an end, where the sentence simply continues, which is what a reader of the "
              "page would have expected all along, and nobody else.\n"
              "The second column has a new paragraph with a number of lines, so that it looks "
              "like a column of prose and is not taken for the cells of a table by anybody at "
              "all.\n"
              "17\n");
}

TEST_F(ReflowTest, ListsAndTablesKeepTheirItemsAndRows) {
    std::string strContent;
    const char* const items[] = {"1. The first item of a list that takes more than the one line",
                                 "2. A second item", "3. A third one"};
    strContent += TextAt(60, 700, items[0]) + TextAt(72, 688, "that there is for it");
    strContent += TextAt(60, 676, items[1]) + TextAt(60, 664, items[2]);
    for (int nRow = 0; nRow < 6; ++nRow) { // drawn row by row, as tables are
        for (int nCell = 0; nCell < 3; ++nCell) {
            strContent += TextAt(60 + 150 * nCell, 600 - 14 * nRow,
                                 "r" + std::to_string(nRow) + "c" + std::to_string(nCell));
        }
    }
    const std::string strText = TextOf(ReflowOf(OnePage(strContent)));
    EXPECT_NE(strText.find("more than the one line that there is for it\n2. A second item\n3. A"),
              std::string::npos)
        << strText;
    EXPECT_NE(strText.find("\nr3c0\u2003r3c1\u2003r3c2\n"), std::string::npos) << strText;
}

TEST_F(ReflowTest, AHyphenAtALinesEndStaysWhereItIsTheWords) {
    const char* const lines[] = {
        "A page about the state of the art says mixed-mode at one place, and elsewhere mixed-",
        "mode again. It knows an engine and an interpreter, so that an interpreter-to-engine",
        "way is one, and whoever goes the interpreter-",
        "to-engine way sees that. This line is as long as the others are, and has the engine-",
        "interpreter pair. A word that is parted stays one, as this one does, which is comfor-",
        "table for the reader, and does not depend on what a table is to an engine or output.",
        "The word that follows is known from the line above, whatever its parts are: it is out-",
        "put. The word out and the word put are on this page, but they do not count for it."};
    std::string strContent;
    for (int i = 0; i < 8; ++i) {
        strContent += TextAt(60, 700 - 12 * i, lines[i]);
    }
    const std::string strText = TextOf(ReflowOf(OnePage(strContent)));
    for (const char* szWhole : {"elsewhere mixed-mode again", "the interpreter-to-engine way sees",
                                "engine-interpreter pair", "comfortable for", "is output. The"}) {
        EXPECT_NE(strText.find(szWhole), std::string::npos) << szWhole << " in " << strText;
    }
}

// Set as lines, a fraction and a sum would be three lines each.
TEST_F(ReflowTest, FormulasInStoreysAreShownAsTheyAre) {
    std::string strContent = TextAt(60, 700, "A line of text above the formulas, which is long.");
    strContent += TextAt(100, 660, "x =") + TextAt(122, 667, "a + b") + TextAt(122, 653, "2c + d") +
                  "0.5 w 120 663 m 154 663 l S\n";
    strContent += TextAt(60, 620, "A line of text below the formulas. It is an underlined one.") +
                  "0.5 w 60 617 m 320 617 l S\n" + TextAt(60, 606, "And one more below the rule.");
    for (const std::int32_t nFlags : {ReflowPage::kText, ReflowPage::kTextAndPictures}) {
        const auto pLayout =
            LayoutOf(ReflowOf(OnePage(strContent), {.fWidth = 1200.0F, .nFlags = nFlags}));
        ASSERT_EQ(pLayout->figures.size(), 1U);
        const fz_rect& rc = pLayout->figures[0].rcRegion;
        EXPECT_LE(rc.x0, 100.0F);
        EXPECT_GE(rc.x1, 150.0F);
        EXPECT_GT(rc.y0, 792.0F - 700.0F) << "no line of text is seen at its edge";
        EXPECT_LT(rc.y1, 792.0F - 627.0F);
        EXPECT_EQ(pLayout->lines.size(), 2U) << "the formula is not among them";
    }
}

TEST_F(ReflowTest, AListingKeepsItsSpacesAndItsLines) {
    const std::string strListing =
        "/F2 10 Tf 60 700 Td (if (a.IsAsLongAs(b)) {) Tj 0 -11 Td (    b = 1;   // c) "
        "Tj 0 -11 Td [(1) -1800 (two)] TJ 0 -11 Td (}) Tj";
    PdfPage page;
    page.strContent = "BT " + strListing + " ET";
    page.strExtra =
        "/Resources << /Font << /F2 << /Type /Font /Subtype /Type1 /BaseFont /Courier "
        ">> >> >>";
    const auto pReflow = ReflowOf(MakePdf({page}), {.fParagraphSpacing = 50.0F});
    EXPECT_EQ(TextOf(pReflow), "if (a.IsAsLongAs(b)) {\nb = 1;   // c\n1   two\n}\n");
    const auto& lines = LayoutOf(pReflow)->lines;
    ASSERT_EQ(lines.size(), 4U);
    const auto& glyphs = LayoutOf(pReflow)->glyphs;
    EXPECT_GT(glyphs[lines[1].nFirst].x, glyphs[lines[0].nFirst].x + 40.0F) << "indented";
    EXPECT_LT(lines[3].nInkTop - lines[0].nInkTop, 100) << "no space between its lines";
}

// Drawn column by column, above columns of prose whose gutter runs through it.
TEST_F(ReflowTest, ATableAcrossColumnsKeepsItsRowsAndWhereThereIsRoomItsColumns) {
    std::string strContent;
    const char* const heads[] = {"names", "loops", "trees", "traces", "aborts", "speed"};
    for (int nColumn = 0; nColumn < 6; ++nColumn) {
        const double x = 60 + 90 * nColumn;
        strContent += TextAt(x, 714, heads[nColumn]);
        for (int nRow = 0; nRow < 6; ++nRow) {
            strContent += TextAt(x + (nColumn == 2 && nRow == 3 ? 20 : 0), 700 - 12 * nRow,
                                 "r" + std::to_string(nRow) + "c" + std::to_string(nColumn));
        }
    }
    for (int nSide = 0; nSide < 2; ++nSide) {
        for (int nRow = 0; nRow < 12; ++nRow) {
            strContent += TextAt(60 + 270 * nSide, 600 - 12 * nRow,
                                 "a line of prose that fills its column, as others do");
        }
    }
    const auto pWide = ReflowOf(OnePage(strContent), {.fWidth = 1200.0F});
    EXPECT_NE(TextOf(pWide).find("\nr3c0\u2003r3c1\u2003r3c2\u2003r3c3\u2003r3c4\u2003r3c5\n"),
              std::string::npos)
        << TextOf(pWide);
    const auto pLayout = LayoutOf(pWide);
    const auto fnStart = [&](std::size_t nLine, char32_t c) { // of the cell of that column
        float x = -1.0F;
        for (std::size_t i = pLayout->lines[nLine].nFirst; i < pLayout->lines[nLine].nEnd; ++i) {
            x = pLayout->glyphs[i].nUnicode == c ? pLayout->glyphs[i].x : x;
        }
        return x;
    };
    for (const char32_t c : {U'1', U'4', U'5'}) {
        EXPECT_NEAR(fnStart(1, c), fnStart(4, c), 2.0F) << "under each other";
    }
    EXPECT_EQ(pLayout->lines[0].nEnd, 32U) << "the head is one row";
    const auto pNarrow = LayoutOf(ReflowOf(OnePage(strContent), {.fWidth = 300.0F}));
    for (const auto& glyph : pNarrow->glyphs) {
        ASSERT_LT(glyph.x, 300.0F);
    }
}

TEST_F(ReflowTest, ZoomMeasureAndSpacingsChangeTheHeightAndNotTheText) {
    const auto pReflow = ReflowOf(Article());
    const std::string strText = TextOf(pReflow);
    const auto fnHeight = [&](const Wanted& wanted) {
        Parse(*pReflow, wanted);
        EXPECT_EQ(pReflow->GetContentWidth(), static_cast<int>(wanted.fWidth));
        EXPECT_EQ(TextOf(pReflow), strText);
        return pReflow->GetContentHeight();
    };
    const int nHeight = fnHeight({});
    EXPECT_GT(fnHeight({.nPercent = 300}), nHeight);
    EXPECT_LT(fnHeight({.fWidth = 800.0F}), nHeight);
    EXPECT_GT(fnHeight({.fLineSpacing = 2.0F}), nHeight);
    EXPECT_GT(fnHeight({.fParagraphSpacing = 9.0F}), nHeight);
    EXPECT_EQ(fnHeight({}), nHeight);
}

TEST_F(ReflowTest, BandsJoinedEqualTheWhole) {
    const auto pReflow = ReflowOf(Illustrated(), {.fWidth = 317.0F, .nPercent = 277});
    const int nWidth = pReflow->GetContentWidth();
    const int nHeight = pReflow->GetContentHeight();
    const auto pWhole = DrawBand(pReflow, 0, nHeight);
    EXPECT_GT(InkedPixels(*pWhole), 10'000);
    for (const int nBand : {7, 100, 601}) {
        const auto pJoined = CreateBitmap(nWidth, nHeight);
        for (int nTop = 0; nTop < nHeight; nTop += nBand) {
            const int nRows = std::min(nBand, nHeight - nTop);
            const auto pBand = DrawBand(pReflow, nTop, nRows);
            std::memcpy(pJoined->GetBuffer().data() + std::ptrdiff_t{nTop} * nWidth * 4,
                        pBand->GetBuffer().data(), pBand->GetBuffer().size());
        }
        EXPECT_EQ(Compare(*pWhole, *pJoined).nPixels, 0) << nBand;
    }
}

TEST_F(ReflowTest, PicturesStandInTheirPlaceKeepTheirColoursAndCanBeLeftOut) {
    constexpr std::uint32_t kBack = 0xFF102030U;
    const auto pReflow = ReflowOf(Illustrated());
    const int nHeight = pReflow->GetContentHeight();
    const auto pDay = DrawBand(pReflow, 0, nHeight);
    const auto pNight = DrawBand(pReflow, 0, nHeight, kBack, 0xFFC0C0C0U);
    int nFirst = nHeight; // rows of the picture, all of one colour
    int nLast = 0;
    for (int y = 0; y < nHeight; ++y) {
        if (PixelAt(*pDay, 200, y) == kPictureColor) {
            EXPECT_EQ(PixelAt(*pNight, 200, y), kPictureColor);
            nFirst = std::min(nFirst, y);
            nLast = y;
        }
    }
    EXPECT_NEAR(nLast - nFirst + 1, 200, 2) << "100 points at 200 %";
    EXPECT_EQ(PixelAt(*pNight, 399, nHeight - 1), kBack);
    EXPECT_GT(nFirst, nHeight / 8) << "text stands above it";
    EXPECT_LT(nLast, nHeight * 7 / 8) << "and below it";

    const std::string strText = TextOf(pReflow);
    EXPECT_NE(strText.find("the picture above it."), std::string::npos);
    Parse(*pReflow, {.nFlags = ReflowPage::kText});
    EXPECT_LT(pReflow->GetContentHeight(), nHeight - 200);
    EXPECT_EQ(TextOf(pReflow), strText);
}

TEST_F(ReflowTest, AFrameAroundTextAndPictureIsNoReasonToLoseEither) {
    const auto pPlain = LayoutOf(ReflowOf(Illustrated()));
    const auto pFramed = LayoutOf(ReflowOf(Illustrated("1 w 40 420 500 300 re S\n")));
    ASSERT_EQ(pFramed->figures.size(), 1U);
    EXPECT_EQ(pFramed->nHeight, pPlain->nHeight);
    EXPECT_EQ(TextOf(*pFramed->pModel), TextOf(*pPlain->pModel));
    const auto pInset = LayoutOf(ReflowOf(Illustrated("q 60 0 0 40 120 540 cm /I1 Do Q\n")));
    EXPECT_EQ(pInset->figures.size(), 1U) << "what lies in a picture is part of it";
}

// What cannot be set as lines is seen as it is, with pictures and without.
TEST_F(ReflowTest, TextOnACurveIsShownAsItIs) {
    for (const std::int32_t nFlags : {ReflowPage::kText, ReflowPage::kTextAndPictures}) {
        const auto pReflow =
            ReflowOf(OnePage(Circle() + TextAt(60, 100, "A line below.")), {.nFlags = nFlags});
        EXPECT_GT(pReflow->GetContentHeight(), 300) << "as high as the circle";
        EXPECT_NE(TextOf(pReflow).find("A line below."), std::string::npos);
        const auto pTop = DrawBand(pReflow, 0, 300);
        EXPECT_GT(InkedPixels(*pTop), 500);
    }
}

TEST_F(ReflowTest, WhatHasNoTextHasNoHeightAndOthersPagesAreRefused) {
    PdfOptions scan;
    scan.images.push_back({1, 1, "abc"});
    PdfPage page;
    page.strContent = "q 612 0 0 792 0 0 cm /I1 Do Q";
    const auto pScan = ReflowOf(MakePdf({page}, scan));
    EXPECT_GT(pScan->GetContentHeight(), 300) << "a scan is a picture";
    Parse(*pScan, {.nFlags = ReflowPage::kText});
    EXPECT_EQ(pScan->GetContentHeight(), 0);
    for (const char* szContent : {"", "0 0 100 100 re f", "BT /F1 10 Tf 9 9 Td (   ) Tj ET"}) {
        const auto pReflow = ReflowOf(OnePage(szContent));
        EXPECT_EQ(pReflow->GetContentHeight(), 0) << szContent;
        EXPECT_EQ(pReflow->GetContentWidth(), 0) << szContent;
    }
    EXPECT_EQ(EngineCodeOf([] { CreateReflow(nullptr); }), common::ErrorCode::e_ErrParam);
    const auto pUnparsed = CreateReflow(OpenDoc(Article())->GetPage(0));
    EXPECT_EQ(pUnparsed->GetContentHeight(), 0);
    EXPECT_EQ(
        EngineCodeOf([&] {
            CreateRenderer(CreateBitmap(10, 10))->StartRenderReflowPage(pUnparsed, {}, nullptr);
        }),
        common::ErrorCode::e_ErrParam);
}

// From where the characters stand to how they are read; capitals run left.
TEST_F(ReflowTest, RightToLeftTextIsReadAsItIsMeant) {
    const auto fnRead = [](std::u32string strPlaced) {
        std::vector<PlacedCharacter> line;
        for (std::size_t i = 0; i < strPlaced.size(); ++i) {
            const char32_t c = strPlaced[i];
            line.push_back(
                {c >= U'A' && c <= U'Z' ? 0x5D0 + (c - U'A') : c, static_cast<float>(i), i});
        }
        std::rotate(line.begin(), line.begin() + line.size() / 2, line.end()); // drawn anyhow
        ToLogicalOrder(line);
        std::u32string strRead;
        for (const PlacedCharacter& placed : line) {
            strRead += strPlaced[placed.nIndex];
        }
        return strRead;
    };
    EXPECT_EQ(fnRead(U".FED CBA"), U"ABC DEF.");
    EXPECT_EQ(fnRead(U"FED 15.3 CBA"), U"ABC 15.3 DEF");
    EXPECT_EQ(fnRead(U"FEDG two cows KCBAH"), U"HABCK two cows GDEF");
    EXPECT_EQ(fnRead(U"an CBA within Latin"), U"an ABC within Latin");
}

TEST_F(ReflowTest, LinesBreakWhereTheirScriptAllowsIt) {
    const auto fnBreak = [](const std::u32string& strText, float fRoom) {
        Glyphs glyphs;
        for (const char32_t c : strText) {
            glyphs.push_back({c, Glyph::kNone, 0, false});
        }
        std::vector<std::u32string> lines;
        for (const auto& line : BreakLines(
                 glyphs, [&](std::size_t) { return fRoom; }, [](std::size_t) { return 1.0F; })) {
            EXPECT_LE(line.fWidth, fRoom);
            lines.push_back(strText.substr(line.nFirst, line.nEnd - line.nFirst));
        }
        return lines;
    };
    using Lines = std::vector<std::u32string>;
    EXPECT_EQ(fnBreak(U"one two  three", 8), (Lines{U"one two", U"three"}));
    EXPECT_EQ(fnBreak(U"a well-known word", 8), (Lines{U"a well-", U"known", U"word"}));
    EXPECT_EQ(fnBreak(U"unbreakable", 4), (Lines{U"unbr", U"eaka", U"ble"}));
    EXPECT_EQ(fnBreak(U"\u6F22\u5B57\u3002\u300C\u304B\u306A\u300D\u3067", 3),
              (Lines{U"\u6F22\u5B57\u3002", U"\u300C\u304B", U"\u306A\u300D\u3067"}))
        << "no full stop begins a line and no bracket opens at its end";

    const auto fnWidest = [](const std::u32string& strText) {
        Glyphs glyphs;
        for (const char32_t c : strText) {
            glyphs.push_back({c, Glyph::kNone, 0, false});
        }
        return WidestPart(glyphs, [](std::size_t) { return 1.0F; });
    };
    EXPECT_EQ(fnWidest(U"a well-known word"), 5.0F); // to which an indent gives way
    EXPECT_EQ(fnWidest(U"  \u6F22\u5B57 "), 1.0F);
}

// Whether a file says "i" and then sets dots over it, or has no dots at all.
TEST_F(ReflowTest, AnAccentStandsOverItsLetterAndTakesNoRoom) {
    const auto fnPlaces = [](const std::string& strShown) {
        std::map<char32_t, float> places;
        const std::string strContent = "BT /F1 10 Tf 60 700 Td [" + strShown + "] TJ ET";
        const auto pLayout = LayoutOf(ReflowOf(OnePage(strContent)));
        for (const auto& glyph : pLayout->glyphs) {
            places[glyph.nUnicode] = glyph.x;
        }
        return places;
    };
    auto plain = fnPlaces("(na\\365ve naive)");
    for (const char* szShown : {"(na\\310) 305 (\\365ve naive)", // before the letter
                                "(na\\365) 305 (\\310) 27 (ve naive)"}) {
        auto accented = fnPlaces(szShown);
        EXPECT_NEAR(accented[0xA8], accented[0x131], 2.0) << szShown;
        accented.erase(0xA8);
        ASSERT_EQ(accented.size(), plain.size());
        for (const auto& [c, x] : plain) {
            EXPECT_NEAR(accented[c], x, 0.5) << static_cast<char>(c) << szShown;
        }
    }
}

TEST_F(ReflowTest, HostilePagesAreSetWithinBounds) {
    std::string strLong;
    for (int i = 0; i < 100'000; ++i) {
        strLong += i % 7 == 6 ? ' ' : static_cast<char>('a' + i % 26);
    }
    std::string strPieces;
    for (int i = 0; i < 20'000; ++i) {
        strPieces += TextAt(i % 100 * 6, 790 - i / 100 * 3.9, "x", 0.3 + i % 50);
    }
    std::string strSame; // all at one place
    for (int i = 0; i < 50'000; ++i) {
        strSame += TextAt(60, 700, std::string(1, static_cast<char>('a' + i % 3)));
    }
    const std::string pages[] = {
        OnePage(TextAt(0, 700, strLong, 0.006)),
        OnePage(strPieces),
        OnePage(Circle()),
        OnePage(strSame),
        OnePage("BT /F1 12 Tf -1 0 0 -1 500 400 Tm (upside down) Tj ET"),
        OnePage(TextAt(60, 700, "huge", 30'000) + TextAt(60, 600, "tiny", 0.0001)),
        OnePage("BT /F1 -12 Tf 1e30 0 0 1e-30 60 600 Tm (numbers) Tj 1 0 0 0 9 9 Tm (flat) Tj ET"),
        NestedFormsDocument(12),
    };
    engines::mupdf::SetBudgets(
        {.parse = std::chrono::milliseconds(500), .render = std::chrono::milliseconds(500)});
    const float fNan = std::numeric_limits<float>::quiet_NaN();
    for (const std::string& strBytes : pages) {
        for (const Wanted& wanted :
             {Wanted{}, Wanted{0.0F, -5.0F, -100}, Wanted{fNan, fNan, 1'000'000},
              Wanted{1.0E30F, 1.0F, 4'000, 3, -1.0E30F, 1.0E30F}}) {
            const auto start = Clock::now();
            const auto pReflow = ReflowOf(strBytes, wanted);
            EXPECT_LE(pReflow->GetContentWidth(), 16'384);
            EXPECT_LE(pReflow->GetContentHeight(), 4'100'000);
            if (pReflow->GetContentHeight() > 0) {
                DrawBand(pReflow, pReflow->GetContentHeight() / 2, 50);
            }
            EXPECT_LT(Clock::now() - start, kPatience);
        }
    }
    EXPECT_EQ(TextOf(ReflowOf(pages[4])), "upside down\n");
    PdfPage huge;
    huge.mediaBox = {0, 0, 2'000'000, 2'000'000};
    huge.strContent = TextAt(10, 10, "far below");
    EXPECT_EQ(TextOf(ReflowOf(MakePdf({huge}))), "far below\n");
    const std::string strRead = TextOf(ReflowOf(pages[0]));
    EXPECT_GT(strRead.size(), 99'000U);
}

// The words of real files are those that the library's own extraction finds.
TEST_F(ReflowTest, TheWordsOfRealPagesAreAllThere) {
    constexpr int kPages = 3; // of each file
    std::size_t nWords = 0;
    std::size_t nKept = 0;
    int nPages = 0;
    int nWhole = 0;
    for (const char* szFolder : {"open", "made"}) {
        const std::filesystem::path folder = std::filesystem::path(VELKO_CORPUS) / szFolder;
        if (!std::filesystem::exists(folder)) {
            GTEST_SKIP() << "no corpus in " << folder;
        }
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            if (entry.path().filename().string().starts_with("bomb")) {
                continue; // the library alone takes minutes
            }
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string strBytes{std::istreambuf_iterator<char>(file), {}};
            const auto pDoc = OpenDoc(strBytes);
            const std::vector<std::string> texts =
                pDoc ? PlainTextOf(strBytes, kPages) : std::vector<std::string>();
            for (std::size_t i = 0; i < texts.size(); ++i) {
                const auto words = WordsOf(texts[i]);
                const auto pReflow = CreateReflow(pDoc->GetPage(static_cast<int>(i)));
                Parse(*pReflow);
                const std::size_t nShared = CountShared(words, WordsOf(TextOf(pReflow)));
                nPages += words.empty() ? 0 : 1;
                nWhole += !words.empty() && nShared * 100 >= words.size() * 99 ? 1 : 0;
                nWords += words.size();
                nKept += nShared;
            }
        }
    }
    std::cout << nKept << " of " << nWords << " words; " << nWhole << " of " << nPages
              << " pages keep 99 % or more\n";
    EXPECT_GT(nWords, 10'000U);
    EXPECT_GT(static_cast<double>(nKept), 0.99 * static_cast<double>(nWords));
    EXPECT_GT(nWhole, nPages * 97 / 100);
}

}
