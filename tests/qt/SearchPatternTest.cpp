// What a search finds on a page, and which characters that are.
#include <gtest/gtest.h>

#include <QStringList>
#include <chrono>
#include <string>

#include "widget/search/SearchPattern.h"

namespace velko::vkit {
namespace {

using velko::pdf::PageText;

// Lines of characters as an engine gives them; one that ends with "~" goes on in the next.
PageText PageOf(const QStringList& lines) {
    PageText text;
    for (QString strLine : lines) {
        const bool bGoesOn = strLine.endsWith('~');
        strLine.chop(bGoesOn ? 1 : 0);
        const auto nFirst = static_cast<std::int32_t>(text.chars.size());
        for (const char32_t nCode : strLine.toUcs4()) {
            text.chars.push_back({nCode, {}, 10.0F});
        }
        text.lines.push_back(
            {nFirst, static_cast<std::int32_t>(text.chars.size()), {1, 0}, bGoesOn});
    }
    return text;
}

std::string CharsOf(const PageText& text, CharRange range) {
    QString str;
    for (std::int32_t i = range.nFirst; i < range.nEnd; ++i) {
        str += QString::fromUcs4(&text.chars[static_cast<std::size_t>(i)].nCode, 1);
    }
    return str.toStdString();
}

// The characters of the hits, with a bar between two.
std::string Found(const QStringList& lines, const QString& strPattern,
                  const SearchOptions& options = {}) {
    const PageText text = PageOf(lines);
    PageSearch search(SearchPattern(strPattern, options));
    std::string strFound;
    for (const CharRange hit : search.In(SearchText(text))) {
        strFound += (strFound.empty() ? "" : "|") + CharsOf(text, hit);
    }
    return strFound;
}

constexpr SearchOptions kCase{.bCase = true};
constexpr SearchOptions kWords{.bWholeWords = true};
constexpr SearchOptions kAccents{.bExactAccents = true};

}

TEST(SearchPatternTest, LettersThatReadAlikeAreFound) {
    struct Case {
        const char* szPage;
        const char* szPattern;
        const char* szFound;
        SearchOptions options{};
    };
    const Case cases[] = {
        {"Résumé resume RESUME", "resume", "Résumé|resume|RESUME"},
        {"résumé resume", "Résumé", "résumé|resume"},
        {"Résumé resume RESUME", "resume", "resume", kCase},
        {"re\u0301sume\u0301 x", "résumé", "re\u0301sume\u0301", kAccents},
        {"résumé resume", "resume", "resume", kAccents},
        {"r\u00B4esum\u00B4e", "resume", "r\u00B4esum\u00B4e"}, // accents beside their letters
        {"e\u0301", "e", "", kAccents},
        {"\uFB01nd \uFB03 find", "fi", "\uFB01|\uFB03|fi"},
        {"Straße STRASSE", "strasse", "Straße|STRASSE"},
        {"Straße STRASSE", "Strasse", "", kCase},
        {"Łódź Søren Œuvre", "lodz", "Łódź"},
        {"Łódź Søren Œuvre", "soren oe", "Søren Œ"},
        {"ＡＢＣ ｱ", "abc ア", "ＡＢＣ ｱ"},
        {"soft\u00ADly zero\u200Bwidth", "softly zerow", "soft\u00ADly zero\u200Bw"},
        {"\uFEE3\uFEAE\uFEA3\uFE92\uFE8E", "مرحبا", "\uFEE3\uFEAE\uFEA3\uFE92\uFE8E"},
        {"مـرحـبا", "مرحبا", "مـرحـبا"},
        {"it\u2019s \u201Cso\u201D", "it's \"so\"", "it\u2019s \u201Cso\u201D"},
        {"pages 3\u20139", "3-9", "3\u20139"},
        {"ΟΔΟΣ οδος", "οδός", "ΟΔΟΣ|οδος"},
        {"が か", "か", "か"}, // another letter, not another accent
        {"각 가", "가", "가"},
        {"\U0001D400 b \U0001F600b", "b \U0001F600", "b \U0001F600"},
        {"\U0001D400 b \U0001D400b", "a", "\U0001D400|\U0001D400"},
        {"½ 12", "1", "½|1"},
        {"ii Ⅱ", "i", "i|i|Ⅱ"}, // two hits within one character are one
    };
    for (const Case& item : cases) {
        SCOPED_TRACE(std::string(item.szPage) + " / " + item.szPattern);
        EXPECT_EQ(Found({item.szPage}, item.szPattern, item.options), item.szFound);
    }
}

TEST(SearchPatternTest, LineEndsAndHyphensAreReadThrough) {
    const QStringList page{"the inter-~",      "national well-~", "known phrase",
                           "goes  on, COVID-", "19 pre-~",        "and post-war"};
    EXPECT_EQ(Found(page, "international"), "inter-national");
    EXPECT_EQ(Found(page, "well-known phrase goes on"), "well-known phrasegoes  on");
    EXPECT_EQ(Found(page, "  phrase\tgoes\n on "), "phrasegoes  on");
    EXPECT_EQ(Found(page, "covid-19"), "COVID-19");
    EXPECT_EQ(Found(page, "pre- and post-"), "pre-and post-");
    EXPECT_EQ(Found(page, "phrase-goes"), "");
    EXPECT_EQ(Found(page, "phrasegoes"), "");
    EXPECT_EQ(Found(page, "inter", kWords), "");
    EXPECT_EQ(Found({"inter\u00AD~", "national"}, "international"), "inter\u00ADnational");
    EXPECT_EQ(Found({"日本", "語の"}, "日本語"), "日本語");
    EXPECT_EQ(Found({"关 于 红 军", "作战"}, "于红军作 战"), "于 红 军作战");
    EXPECT_EQ(Found({"A 级 B"}, "A级"), "") << "a space beside a word is one";
    EXPECT_EQ(Found({"ไทย", "นี้"}, "ไทยนี้"), "ไทยนี้");
}

TEST(SearchPatternTest, WholeWordsEndWhereNoWordGoesOn) {
    EXPECT_EQ(Found({"cat concat cats cat's cat_x (cat) 2cat cat2", "cat"}, "cat", kWords),
              "cat|cat|cat|cat");
    EXPECT_EQ(Found({"a-cat éclat"}, "cat", kWords), "cat");
    EXPECT_EQ(Found({"élan lan"}, "lan", kWords), "lan");
    EXPECT_EQ(Found({"日本語"}, "本", kWords), "本");
    EXPECT_EQ(Found({"C++ and C"}, "c++", kWords), "C++");
}

// Whatever cannot be found ends at once, and hits are those that a reader can count.
TEST(SearchPatternTest, EmptyOnesFindNothingAndHardOnesTakeNoLonger) {
    for (const char* szEmpty : {"", "   ", "\t\n", "\u00AD", "\u200B"}) {
        EXPECT_TRUE(SearchPattern(szEmpty, {}).IsEmpty());
        EXPECT_EQ(Found({"a b", ""}, szEmpty), "");
    }
    EXPECT_EQ(Found({}, "a"), "");
    EXPECT_EQ(Found({"aaaa"}, "aa"), "aa|aa");
    EXPECT_EQ(Found({"abababac"}, "ababac"), "ababac");
    const SearchText page(PageOf({QString(1'000'000, 'a')}));
    const auto fnTime = [&page](const QString& strPattern, std::size_t nHits) {
        const auto start = std::chrono::steady_clock::now();
        PageSearch search(SearchPattern(strPattern, {}));
        EXPECT_EQ(search.In(page).size(), nHits);
        return std::chrono::steady_clock::now() - start;
    };
    const auto simple = fnTime("b", 0);
    EXPECT_LT(fnTime(QString(50'000, 'a') + 'b', 0), 20 * simple + std::chrono::milliseconds(50));
    EXPECT_LT(fnTime(QString(50'000, 'a'), 20), 20 * simple + std::chrono::milliseconds(50));
}

TEST(SearchPatternTest, AHitIsShownWithItsLine) {
    const PageText text = PageOf({"A\U0001D400 first line", "that goes on, inter-~", "nationally",
                                  QString(100, 'x') + " far"});
    const auto fnAround = [&](const QString& strPattern) {
        PageSearch search(SearchPattern(strPattern, {}));
        const SearchText kept(text);
        const CharRange hit = search.In(kept).at(0);
        auto excerpt = kept.Around(hit.nFirst, hit.nEnd);
        excerpt.strText.insert(excerpt.nFirst + excerpt.nLength, ']');
        return excerpt.strText.insert(excerpt.nFirst, '[').toStdString();
    };
    EXPECT_EQ(fnAround("first"), "A\U0001D400 [first] line");
    EXPECT_EQ(fnAround("line that"), "A\U0001D400 first [line that] goes on, inter-");
    EXPECT_EQ(fnAround("international"), "that goes on, [inter-national]ly");
    EXPECT_EQ(fnAround("far"), "…" + std::string(39, 'x') + " [far]");
}

}
