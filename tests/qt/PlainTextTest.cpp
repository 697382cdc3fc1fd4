// What is copied of a page's characters, and where the keyboard steps among them.
#include <gtest/gtest.h>

#include "tests/qt/MadeText.h"
#include "widget/text/PlainText.h"
#include "widget/text/TextSteps.h"

namespace velko::vkit {
namespace {

using testing::MadeText;
using Point = MadeText::Point;

QString Plain(const MadeText& text) {
    return PlainTextOf(text.Get(), {0, text.Count()});
}

// Lines of 10 by 10 points from the left edge, of one block, downwards.
MadeText Block(const std::vector<std::u32string>& lines) {
    MadeText text;
    float fY = 500.0F;
    for (const std::u32string& strLine : lines) {
        text.Line(strLine, {0, fY}, {1, 0}, fY < 500.0F);
        fY -= 12.0F;
    }
    return text;
}

}

// A line break is in the text where the line had room for the next word.
TEST(PlainTextTest, LinesOfAParagraphAreJoinedAndOthersAreNot) {
    EXPECT_EQ(Plain(Block({U"these lines are", U"broken by width", U"alone."})),
              "these lines are broken by width alone.");
    EXPECT_EQ(
        Plain(Block({U"the lines", U"of a text", U"of which one", U"is longer", U"than most"})),
        "the lines of a text of which one is longer than most")
        << "a line beyond the margin";
    EXPECT_EQ(Plain(Block({U"one", U"two", U"a line as long as this"})),
              "one\ntwo\na line as long as this");
    EXPECT_EQ(Plain(Block({U"中文字符", U"没有空格", U"ab"})), "中文字符没有空格 ab");
    MadeText apart;
    apart.Line("first block", {0, 100}).Line("second", {0, 50});
    EXPECT_EQ(Plain(apart), "first block\nsecond");

    MadeText table;
    table.Line("a", {0, 100}).Line("b", {100, 100}, {1, 0}, true);
    table.Line("c", {0, 80}, {1, 0}, true).Line("d", {100, 80}, {1, 0}, true);
    EXPECT_EQ(Plain(table), "a b\nc d");

    MadeText back; // read to the left
    back.Line("abcde fg", {200, 100}, {-1, 0}, false, true);
    back.Line("hij", {200, 88}, {-1, 0}, true, true);
    EXPECT_EQ(Plain(back), "abcde fg hij");
}

TEST(PlainTextTest, HyphensOfLineEndsAreUndoneAlsoOverBlocks) {
    MadeText text;
    text.Line("para-", {0, 100}).Hyphenated().Line("graph", {0, 88}, {1, 0}, true);
    text.Line("next col-", {0, 76}, {1, 0}, true).Hyphenated();
    text.Line("umn", {200, 100});
    EXPECT_EQ(Plain(text), "paragraph next column");
    EXPECT_EQ(PlainTextOf(text.Get(), {0, 5}), "para-") << "as it is seen";
    EXPECT_EQ(PlainTextOf(text.Get(), {2, 7}), "ragr");
    EXPECT_EQ(Plain(MadeText().Line(U"a\u0007\u0085b\U0001F600", {0, 0})),
              QString::fromUtf8("ab😀"));
    QString strPages;
    for (const char* const szPage : {"", "one", "", "two"}) {
        AppendPage(strPages, szPage);
    }
    EXPECT_EQ(strPages, "one\ntwo");
}

// Lines are stepped as a reader sees them: cells of a row are beside each other.
TEST(TextStepsTest, StepsGoByCharactersWordsAndLines) {
    MadeText text;
    text.Line("left cell", {0, 100}).Line("right cell", {200, 100});
    text.Line("under left", {0, 80}).Line("under right", {200, 80});
    const auto fnStep = [&](int nPlace, TextStep eStep, int nDirection) {
        const Point goal = PointOf(text.Get(), {nPlace, false});
        const auto spot = SpotAfter(text.Get(), {nPlace, false}, goal, eStep, nDirection);
        return spot ? spot->nPlace : -1;
    };
    EXPECT_EQ(fnStep(12, TextStep::Line, 1), 32) << "from the right cell to the one below";
    EXPECT_EQ(fnStep(32, TextStep::Line, -1), 12);
    EXPECT_EQ(fnStep(2, TextStep::Line, -1), -1) << "the page before";
    EXPECT_EQ(fnStep(2, TextStep::Word, 1), 4);
    EXPECT_EQ(fnStep(4, TextStep::Word, 1), 9);
    EXPECT_EQ(fnStep(9, TextStep::Word, -1), 5);
    EXPECT_EQ(fnStep(9, TextStep::Word, 1), 14) << "lines part words";
    EXPECT_EQ(fnStep(12, TextStep::LineEdge, -1), 9);
    EXPECT_EQ(fnStep(12, TextStep::LineEdge, 1), 19);
    EXPECT_EQ(fnStep(text.Count(), TextStep::Char, 1), -1);
    EXPECT_EQ(SpotOnEntering(text.Get(), TextStep::Line, -1, {230, 0}).nPlace, 32);
    EXPECT_EQ(SpotOnEntering(text.Get(), TextStep::Word, 1, {}).nPlace, 4);
    EXPECT_EQ(SpotOnEntering(MadeText().Get(), TextStep::Line, 1, {}).nPlace, 0);
}

}
