// The text between two points of pages, and where it is marked.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "tests/qt/MadeText.h"
#include "widget/text/TextRange.h"

namespace velko::vkit {
namespace {

using testing::MadeText;
using velko::pdf::PageText;
using velko::pdf::TextQuad;

void ExpectBox(const TextQuad& quad, double dbLeft, double dbBottom, double dbRight, double dbTop) {
    EXPECT_NEAR(std::min({quad.ptTopLeft.X, quad.ptTopRight.X, quad.ptBottomLeft.X}), dbLeft, 0.1);
    EXPECT_NEAR(std::max({quad.ptTopLeft.X, quad.ptTopRight.X, quad.ptBottomLeft.X}), dbRight, 0.1);
    EXPECT_NEAR(std::min({quad.ptTopLeft.Y, quad.ptTopRight.Y, quad.ptBottomLeft.Y}), dbBottom,
                0.1);
    EXPECT_NEAR(std::max({quad.ptTopLeft.Y, quad.ptTopRight.Y, quad.ptBottomLeft.Y}), dbTop, 0.1);
}

}

// Two columns: a line that ends short has what is beside it in its column, and what lies
// in the other column is not between two points of one.
TEST(TextRangeTest, APointMeansTheLineOfItsColumn) {
    MadeText text;
    text.Line("Title", {20, 200});
    text.Line("left one two", {20, 150}).Line("end", {20, 135}, {1, 0}, true);
    text.Line("the last", {20, 120}, {1, 0}, true);
    text.Line("right", {200, 150}).Line("column", {200, 135}, {1, 0}, true);
    EXPECT_EQ(text.Between({42, 155}, {138, 140}), "ft one twoend") << "beside the short line";
    EXPECT_EQ(text.Between({138, 140}, {42, 155}), "ft one twoend") << "backwards";
    EXPECT_EQ(text.Between({20, 155}, {100, 122}), "left one twoendthe last");
    EXPECT_EQ(text.Between({20, 155}, {150, 140}), "left one twoend") << "and beside the block";
    EXPECT_EQ(text.Between({198, 154}, {238, 137}), "rightcolu");
    EXPECT_EQ(text.Between({0, 300}, {500, 0}), "Titleleft one twoendthe lastrightcolumn");
    EXPECT_EQ(text.Between({44, 155}, {41, 155}), "") << "the near sides of one letter";
    EXPECT_EQ(MadeText().Between({0, 0}, {9, 9}), "nothing");
    EXPECT_TRUE(IsOverText(text.Get(), {25, 155}));
    EXPECT_FALSE(IsOverText(text.Get(), {170, 155}));
}

TEST(TextRangeTest, LinesOfAnyWayAreReadAlongIt) {
    MadeText down;
    down.Line("down", {100, 100}, {0, -1});
    EXPECT_EQ(down.Between({105, 88}, {105, 71}), "ow");
    MadeText slanted;
    slanted.Line("slant", {0, 0}, {std::sqrt(0.5F), std::sqrt(0.5F)});
    EXPECT_EQ(slanted.Between({6, 9}, {20, 22}), "la");
    const auto quads = QuadsOf(slanted.Get(), {1, 3});
    ASSERT_EQ(quads.size(), 1U);
    EXPECT_NEAR(std::hypot(quads[0].ptTopRight.X - quads[0].ptTopLeft.X,
                           quads[0].ptTopRight.Y - quads[0].ptTopLeft.Y),
                20.0, 0.1)
        << "along the line, not the box around it";
    MadeText left;
    left.Line("abcd", {100, 50}, {-1, 0}, false, true);
    EXPECT_EQ(left.Between({88, 55}, {71, 55}), "bc");
    EXPECT_EQ(left.Between({150, 55}, {0, 55}), "abcd");
    const auto all = QuadsOf(left.Get(), {0, 4});
    ASSERT_EQ(all.size(), 1U);
    ExpectBox(all[0], 60, 50, 100, 60);
    EXPECT_LT(all[0].ptTopLeft.X, all[0].ptTopRight.X) << "the letters' left";
}

TEST(TextRangeTest, AMarkIsAQuadALineWithoutGapsAndOverlaps) {
    MadeText text;
    text.Line("one two ", {0, 100}).Line("three", {0, 94}, {1, 0}, true); // close lines
    auto quads = QuadsOf(text.Get(), {3, 13});
    ASSERT_EQ(quads.size(), 2U);
    ExpectBox(quads[0], 40, 102, 70, 110); // no spaces at the ends
    ExpectBox(quads[1], 0, 94, 50, 102);

    // What was picked of a line of both ways may lie apart.
    PageText mixed = MadeText().Line("abcdef", {0, 0}).Get();
    std::swap(mixed.chars[1].quad, mixed.chars[4].quad);
    quads = QuadsOf(mixed, {0, 2});
    ASSERT_EQ(quads.size(), 2U);
    ExpectBox(quads[0], 0, 0, 10, 10);
    ExpectBox(quads[1], 40, 0, 50, 10);
    EXPECT_TRUE(QuadsOf(mixed, {3, 3}).empty());
}

TEST(TextRangeTest, PagesBetweenAreTakenWholeAndWordsByTheirEnds) {
    const TextPlace from{3, 7};
    const TextPlace to{5, 2};
    EXPECT_EQ(RangeOn(3, 10, to, from), (CharRange{7, 10}));
    EXPECT_EQ(RangeOn(4, 10, from, to), (CharRange{0, 10}));
    EXPECT_EQ(RangeOn(5, 10, from, to), (CharRange{0, 2}));
    EXPECT_TRUE(RangeOn(6, 10, from, to).IsEmpty());
    EXPECT_EQ(RangeOn(5, 1, from, to), (CharRange{0, 1})) << "a text that came shorter";

    MadeText text;
    text.Line("it's well-known", {0, 0}).Line("x", {0, 20});
    EXPECT_EQ(text.Of(WordAt(text.Get(), 1)), "it's");
    EXPECT_EQ(text.Of(WordAt(text.Get(), 6)), "well");
    EXPECT_EQ(text.Of(WordAt(text.Get(), 9)), "-");
    EXPECT_EQ(text.Of(WordAt(text.Get(), 14)), "known");
    EXPECT_EQ(text.Of(WordAt(text.Get(), 15)), "x") << "of the next line";

    MadeText japanese;
    japanese.Line(U"日本語のテキストー2か\u3099PDF", {0, 0});
    const auto fnWord = [&](int nChar) { return WordAt(japanese.Get(), nChar); };
    EXPECT_EQ(fnWord(1), (CharRange{0, 3}));
    EXPECT_EQ(fnWord(3), (CharRange{3, 4}));
    EXPECT_EQ(fnWord(8), (CharRange{4, 9}));
    EXPECT_EQ(fnWord(9), (CharRange{9, 10}));
    EXPECT_EQ(fnWord(11), (CharRange{10, 12})) << "with the mark on it";
    EXPECT_EQ(fnWord(12), (CharRange{12, 15}));
}

}
