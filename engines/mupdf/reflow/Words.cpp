#include "engines/mupdf/reflow/Words.h"

#include <algorithm>
#include <span>

#include "engines/mupdf/reflow/Characters.h"

namespace velko::engines::mupdf::reflow {

namespace {

constexpr std::size_t kLeastPart = 3; // letters of a compound's part

class Hash {
public:
    void Add(char32_t c) {
        const bool bCapital = (c >= U'A' && c <= U'Z') || (c >= 0xC0 && c <= 0xDE);
        m_nHash = (m_nHash ^ (bCapital ? c + 0x20 : c)) * 0x100000001B3U;
    }
    void Add(std::span<const Glyph> glyphs) {
        for (const Glyph& glyph : glyphs) {
            Add(glyph.nUnicode);
        }
    }
    std::uint64_t Value() const { return m_nHash; }

private:
    std::uint64_t m_nHash = 0xCBF29CE484222325U;
};

std::uint64_t HashOf(std::span<const Glyph> glyphs) {
    Hash hash;
    hash.Add(glyphs);
    return hash.Value();
}

bool EndsWithHyphen(const Glyphs& glyphs) {
    return !glyphs.empty() && IsHyphen(glyphs.back().nUnicode);
}

std::span<const Glyph> FirstWord(const Glyphs& glyphs) {
    const auto itEnd = std::find_if_not(glyphs.begin(), glyphs.end(),
                                        [](const Glyph& g) { return IsLetter(g.nUnicode); });
    return {glyphs.begin(), itEnd};
}

// Without the hyphen that follows it.
std::span<const Glyph> LastWord(const Glyphs& glyphs) {
    const auto itEnd = glyphs.end() - 1;
    auto it = itEnd;
    while (it != glyphs.begin() && IsLetter((it - 1)->nUnicode)) {
        --it;
    }
    return {it, itEnd};
}

}

Words::Words(const std::vector<TextLine>& lines) {
    const bool bAny = std::any_of(lines.begin(), lines.end(),
                                  [](const TextLine& line) { return EndsWithHyphen(line.glyphs); });
    bool bGoesOn = false;
    for (const TextLine& line : lines) {
        if (bAny) { // else nobody will ask
            AddLine(line.glyphs, bGoesOn);
            bGoesOn = EndsWithHyphen(line.glyphs);
        }
    }
}

// Whole words only, and pairs of them with a hyphen between.
void Words::AddLine(const Glyphs& glyphs, bool bGoesOn) {
    const auto fnIsLetter = [](const Glyph& glyph) { return IsLetter(glyph.nUnicode); };
    std::span<const Glyph> before; // the word just behind a hyphen
    auto it = bGoesOn ? glyphs.begin() + static_cast<std::ptrdiff_t>(FirstWord(glyphs).size())
                      : glyphs.begin();
    while ((it = std::find_if(it, glyphs.end(), fnIsLetter)) != glyphs.end()) {
        const auto itEnd = std::find_if_not(it, glyphs.end(), fnIsLetter);
        if (!before.empty()) {
            ++m_counts[HashOf({before.begin(), std::span(it, itEnd).end()})];
        }
        const bool bHyphen = itEnd != glyphs.end() && IsHyphen(itEnd->nUnicode);
        const bool bParted = bHyphen && itEnd + 1 == glyphs.end();
        if (!bParted) {
            ++m_counts[HashOf({it, itEnd})];
        }
        const bool bPair = bHyphen && !bParted && fnIsLetter(*(itEnd + 1));
        before = bPair ? std::span<const Glyph>(it, itEnd) : std::span<const Glyph>();
        it = itEnd;
    }
}

int Words::CountOf(std::uint64_t nWord) const {
    const auto it = m_counts.find(nWord);
    return it == m_counts.end() ? 0 : it->second;
}

bool Words::KeepHyphen(const Glyphs& text, const Glyphs& more) const {
    const std::span<const Glyph> first = LastWord(text);
    const std::span<const Glyph> second = FirstWord(more);
    Hash joined;
    joined.Add(first);
    joined.Add(second);
    Hash compound;
    compound.Add(first);
    compound.Add(text.back().nUnicode);
    compound.Add(second);
    const int nJoined = CountOf(joined.Value());
    const int nCompound = CountOf(compound.Value());
    if (nJoined != 0 || nCompound != 0) {
        return nCompound > nJoined;
    }
    const bool bFirst = CountOf(HashOf(first)) != 0;
    const bool bSecond = CountOf(HashOf(second)) != 0;
    const bool bLonger = second.size() < more.size() && IsHyphen(more[second.size()].nUnicode);
    if (bLonger) { // "state-of-the-art" anywhere in it
        return bFirst;
    }
    return first.size() >= kLeastPart && second.size() >= kLeastPart && bFirst && bSecond;
}

}
