#include "engines/mupdf/reflow/LineBreaker.h"

#include <algorithm>
#include <numeric>

#include "engines/mupdf/reflow/Characters.h"

namespace velko::engines::mupdf::reflow {

namespace {

bool EndsPart(char32_t c) {
    return IsHyphen(c) || c == 0x2013 || c == 0x2014 || c == U'/';
}

bool MayBreakBefore(const Glyphs& glyphs, std::size_t i) {
    const char32_t cBefore = glyphs[i - 1].nUnicode;
    const char32_t c = glyphs[i].nUnicode;
    if (glyphs[i].bNoRoom || IsSpace(c)) {
        return false;
    }
    if (IsSpace(cBefore)) {
        return true;
    }
    const bool bMay =
        IsIdeographic(cBefore) || IsIdeographic(c) || (EndsPart(cBefore) && IsLetter(c));
    return bMay && !MayNotBegin(c) && !MayNotEnd(cBefore);
}

struct Collector {
    const std::uint32_t* pText;
    std::uint8_t* pLevels;
};

void CollectLevels(const std::uint32_t* pFragment, std::size_t nLength, int nLevel, int,
                   void* pArgument) {
    const auto* const pCollector = static_cast<const Collector*>(pArgument);
    std::fill_n(pCollector->pLevels + (pFragment - pCollector->pText), nLength,
                static_cast<std::uint8_t>(nLevel));
}

}

std::vector<BrokenLine> BreakLines(const Glyphs& glyphs,
                                   const std::function<float(std::size_t)>& fnRoom,
                                   const std::function<float(std::size_t)>& fnAdvance) {
    std::vector<BrokenLine> lines;
    BrokenLine line;    // up to the glyph at hand
    BrokenLine whole;   // up to the last place where it may end; empty for none
    float fUsed = 0.0F; // of the line, a space at its end included
    const auto fnEnd = [&](const BrokenLine& ended) {
        lines.push_back(ended);
        std::size_t i = ended.nEnd;
        while (i < glyphs.size() && IsSpace(glyphs[i].nUnicode)) {
            ++i;
        }
        line = {i, i, 0.0F};
        whole = line;
        fUsed = 0.0F;
        return i;
    };
    for (std::size_t i = 0; i < glyphs.size();) {
        if (i > line.nFirst && MayBreakBefore(glyphs, i)) {
            whole = line;
        }
        const float fAdvance = fnAdvance(i);
        const bool bSpace = IsSpace(glyphs[i].nUnicode);
        const bool bFits = fUsed + fAdvance <= fnRoom(lines.size());
        if (!bSpace && !bFits && line.nEnd > line.nFirst && !glyphs[i].bNoRoom) {
            i = fnEnd(whole.nEnd > whole.nFirst ? whole : line);
            continue;
        }
        fUsed += fAdvance;
        ++i;
        if (!bSpace) {
            line.nEnd = i;
            line.fWidth = fUsed;
        }
    }
    if (line.nEnd > line.nFirst) {
        lines.push_back(line);
    }
    return lines;
}

float WidestPart(const Glyphs& glyphs, const std::function<float(std::size_t)>& fnAdvance) {
    float fWidest = 0.0F;
    float fPart = 0.0F;
    for (std::size_t i = 0; i < glyphs.size(); ++i) {
        if (i > 0 && MayBreakBefore(glyphs, i)) {
            fPart = 0.0F;
        }
        if (!IsSpace(glyphs[i].nUnicode)) {
            fPart += fnAdvance(i);
            fWidest = std::max(fWidest, fPart);
        }
    }
    return fWidest;
}

Levels LevelsOf(const Paragraph& paragraph) {
    const bool bPlain = !paragraph.bRightToLeft &&
                        std::none_of(paragraph.glyphs.begin(), paragraph.glyphs.end(),
                                     [](const Glyph& g) { return IsRightToLeft(g.nUnicode); });
    if (bPlain) {
        return {};
    }
    std::vector<std::uint32_t> text;
    for (const Glyph& glyph : paragraph.glyphs) {
        text.push_back(glyph.nUnicode);
    }
    Levels levels(text.size(), 0);
    Collector collector{text.data(), levels.data()};
    fz_bidi_direction eBase = paragraph.bRightToLeft ? FZ_BIDI_RTL : FZ_BIDI_LTR;
    fz_context* const ctx = ThreadContext();
    Guard(ctx, [&] {
        fz_bidi_fragment_text(ctx, text.data(), text.size(), &eBase, &CollectLevels, &collector, 0);
    });
    return levels;
}

std::vector<std::size_t> VisualOrder(const BrokenLine& line, const Levels& levels) {
    std::vector<std::size_t> order(line.nEnd - line.nFirst);
    std::iota(order.begin(), order.end(), line.nFirst);
    if (levels.empty() || order.empty()) {
        return order;
    }
    const auto fnLevel = [&](std::size_t i) { return levels[i]; };
    std::uint8_t nLevel = 0;
    for (const std::size_t i : order) {
        nLevel = std::max(nLevel, fnLevel(i));
    }
    for (; nLevel > 0; --nLevel) { // from the deepest stretch outward
        auto it = order.begin();
        while (it != order.end()) {
            const auto itEnd =
                std::find_if(it, order.end(), [&](std::size_t i) { return fnLevel(i) < nLevel; });
            std::reverse(it, itEnd);
            it = itEnd == order.end() ? itEnd : std::next(itEnd);
        }
    }
    return order;
}

}
