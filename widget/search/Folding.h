// Writes text in such a way that what a search takes for the same is the same: letters
// of either case, with and without accents, ligatures and the letters they stand for,
// full and half width, the shapes of Arabic letters, kinds of quotes and of dashes, any
// run of white space, and words that a hyphen breaks at the end of a line.
//
// Unicode's own foldings say what that is; `SearchOptions` leave some of it out.
// Threads: one at a time; it remembers what it has folded.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "widget/search/SearchText.h"

namespace velko::vkit {

struct SearchOptions {
    bool bCase = false;         // only letters of the same case
    bool bWholeWords = false;   // only where no word goes on at either end
    bool bExactAccents = false; // only letters with the same accents
    friend bool operator==(const SearchOptions&, const SearchOptions&) = default;
};

struct FoldedText {
    std::u16string units;
    std::vector<std::int32_t> chars; // for each unit the character that it comes from
};

// What a hyphen at the end of a line, within a word, may be.
enum class LineHyphens { GoAway, Stay };

class Folding {
public:
    explicit Folding(const SearchOptions& options) : m_options(options) {}

    // Into `folded`, whose memory is used again. It neither begins nor ends with a space.
    void Fold(const SearchText& text, LineHyphens eHyphens, FoldedText& folded);

private:
    struct Piece { // of `m_pool`
        std::uint32_t nFirst = 0;
        std::uint16_t nLength = 0;
        bool bKnown = false;
    };
    using Block = std::array<Piece, 256>;

    std::u16string_view Of(char32_t nCode);
    std::u16string Make(char32_t nCode) const;

    const SearchOptions m_options;
    std::array<std::unique_ptr<Block>, 256> m_blocks; // of codes below 0x10000
    std::u16string m_pool;
    std::u16string m_rare; // of the others
};

// Signs that stand over or under the letter before them and belong to it.
bool IsAccentMark(char32_t nCode);

// Of scripts that set no spaces between words: neither a line's end nor a gap is one.
bool IsWithoutSpaces(char32_t nCode);

}
