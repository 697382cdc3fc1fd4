#include "engines/mupdf/reflow/Formulas.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "engines/mupdf/reflow/Characters.h"

namespace velko::engines::mupdf::reflow {

namespace {

constexpr std::size_t kMostLines = 1'500; // of a page that is looked at
constexpr std::size_t kLetters = 40;      // of a part of a fraction
constexpr std::size_t kLimitLetters = 14; // of a sum's limit
constexpr std::size_t kMostLetters = 160; // of a formula
constexpr std::size_t kMostWords = 4;     // more are a sentence
constexpr std::size_t kWord = 3;          // letters at least
constexpr float kSmall = 0.85F;           // a limit is smaller than what it limits
constexpr float kLimitGap = 0.6F;         // farthest from the operator, in the larger size
constexpr float kBarGap = 0.6F;           // from a fraction's bar, in the part's size
constexpr float kBeyond = 2.0F;           // points, that a part may reach over it
constexpr float kFilled = 0.5F;           // of it by its longer part
constexpr float kCentred = 0.1F;          // of it may a part be off its middle
constexpr float kBeside = 3.0F;           // farthest to the next part of a row, in its size

float MiddleOf(const fz_rect& rc) {
    return (rc.x0 + rc.x1) / 2.0F;
}

float WidthOf(const fz_rect& rc) {
    return rc.x1 - rc.x0;
}

// Above or below the operator, with their middles over each other.
bool IsLimit(const TextLine& line, const fz_rect& rcOperator, float fSize) {
    const float fGap = std::max(line.rc.y0 - rcOperator.y1, rcOperator.y0 - line.rc.y1);
    return line.fSize < kSmall * fSize && line.glyphs.size() <= kLimitLetters &&
           fGap > -0.5F * line.fSize && fGap < kLimitGap * fSize &&
           std::abs(MiddleOf(line.rc) - MiddleOf(rcOperator)) < 0.35F * WidthOf(rcOperator);
}

bool IsOnBar(const TextLine& line, const fz_rect& rcBar) {
    return line.glyphs.size() <= kLetters && line.rc.x0 > rcBar.x0 - kBeyond &&
           line.rc.x1 < rcBar.x1 + kBeyond &&
           std::abs(MiddleOf(line.rc) - MiddleOf(rcBar)) < kCentred * WidthOf(rcBar) + kBeyond;
}

bool AreBeside(const fz_rect& one, const TextLine& two) {
    const float fShared = std::min(one.y1, two.rc.y1) - std::max(one.y0, two.rc.y0);
    const float fGap = std::max(one.x0, two.rc.x0) - std::min(one.x1, two.rc.x1);
    return fShared > 0.5F * (two.rc.y1 - two.rc.y0) && fGap < kBeside * two.fSize;
}

std::size_t CountWords(const Glyphs& glyphs) {
    std::size_t nWords = 0;
    std::size_t nLetters = 0;
    for (const Glyph& glyph : glyphs) {
        nLetters = IsLetter(glyph.nUnicode) ? nLetters + 1 : 0;
        nWords += nLetters == kWord ? 1U : 0U;
    }
    return nWords;
}

class Finder {
public:
    Finder(const CapturedPage& page, const std::vector<bool>& taken) : m_page(page) {
        for (std::size_t i = 0; i < page.lines.size(); ++i) {
            if (!taken[i] && page.lines[i].eDirection == Direction::kRight) {
                m_free.push_back(i);
            }
        }
    }

    std::vector<Formula> Find() {
        if (m_free.size() > kMostLines) {
            return {};
        }
        std::vector<Formula> cores;
        FindFractions(cores);
        FindSums(cores);
        std::vector<Formula> formulas;
        for (Formula& core : cores) {
            Complete(core);
            if (IsFormula(core)) {
                Add(formulas, std::move(core));
            }
        }
        return formulas;
    }

private:
    const TextLine& Line(std::size_t i) const { return m_page.lines[i]; }

    void FindFractions(std::vector<Formula>& cores) const {
        for (const fz_rect& rcBar : m_page.bars) {
            AddFraction(cores, rcBar);
        }
    }

    void AddFraction(std::vector<Formula>& cores, const fz_rect& rcBar) const {
        Formula core{rcBar, {}};
        float fWidest = 0.0F;
        bool bAbove = false;
        bool bBelow = false;
        for (const std::size_t i : m_free) {
            const TextLine& line = Line(i);
            const float fAbove = rcBar.y0 - line.rc.y1; // boxes reach below what is inked
            const float fBelow = line.rc.y0 - rcBar.y1;
            const float fNear = kBarGap * line.fSize;
            const bool bIsAbove = fAbove > -fNear && fAbove < fNear && line.fBaseline < rcBar.y1;
            const bool bIsBelow = fBelow > -fNear && fBelow < fNear && line.fBaseline > rcBar.y1;
            if ((bIsAbove || bIsBelow) && IsOnBar(line, rcBar)) {
                bAbove = bAbove || bIsAbove;
                bBelow = bBelow || bIsBelow;
                fWidest = std::max(fWidest, WidthOf(line.rc));
                core.lines.push_back(i);
            }
        }
        if (bAbove && bBelow && fWidest > kFilled * WidthOf(rcBar)) {
            cores.push_back(std::move(core));
        }
    }

    void FindSums(std::vector<Formula>& cores) const {
        for (const std::size_t i : m_free) {
            for (const fz_rect& rcOperator : Line(i).operators) {
                Formula core{rcOperator, {i}};
                for (const std::size_t k : m_free) {
                    if (k != i && IsLimit(Line(k), rcOperator, Line(i).fSize)) {
                        core.lines.push_back(k);
                    }
                }
                if (core.lines.size() > 1) {
                    cores.push_back(std::move(core));
                }
            }
        }
    }

    // What stands beside its parts and between them.
    void Complete(Formula& formula) const {
        for (const std::size_t i : formula.lines) {
            Grow(formula, i);
        }
        bool bGrew = true;
        while (bGrew && formula.lines.size() <= kMostLetters) {
            bGrew = false;
            for (const std::size_t i : m_free) {
                const auto it = std::find(formula.lines.begin(), formula.lines.end(), i);
                if (it == formula.lines.end() && AreBeside(formula.rc, Line(i))) {
                    formula.lines.push_back(i);
                    Grow(formula, i);
                    bGrew = true;
                }
            }
        }
    }

    void Grow(Formula& formula, std::size_t i) const {
        formula.rc = fz_union_rect(formula.rc, Line(i).rc);
        for (const fz_rect& rcOperator : Line(i).operators) {
            formula.rc = fz_union_rect(formula.rc, rcOperator);
        }
    }

    bool IsFormula(const Formula& formula) const {
        std::size_t nLetters = 0;
        std::size_t nWords = 0;
        for (const std::size_t i : formula.lines) {
            nLetters += Line(i).glyphs.size();
            nWords += CountWords(Line(i).glyphs);
        }
        return nLetters <= kMostLetters && nWords <= kMostWords;
    }

    // Cores of one formula have grown into the same.
    static void Add(std::vector<Formula>& formulas, Formula formula) {
        for (Formula& other : formulas) {
            const bool bShares =
                std::any_of(formula.lines.begin(), formula.lines.end(), [&](std::size_t i) {
                    return std::find(other.lines.begin(), other.lines.end(), i) !=
                           other.lines.end();
                });
            if (bShares) {
                formula.lines.insert(formula.lines.end(), other.lines.begin(), other.lines.end());
                std::sort(formula.lines.begin(), formula.lines.end());
                formula.lines.erase(std::unique(formula.lines.begin(), formula.lines.end()),
                                    formula.lines.end());
                other = {fz_union_rect(formula.rc, other.rc), std::move(formula.lines)};
                return;
            }
        }
        formulas.push_back(std::move(formula));
    }

    const CapturedPage& m_page;
    std::vector<std::size_t> m_free;
};

}

std::vector<Formula> FindFormulas(const CapturedPage& page, const std::vector<bool>& taken) {
    return Finder(page, taken).Find();
}

}
