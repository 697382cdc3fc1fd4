// The words of a page, to tell a hyphen of a compound from one that parts a word.
//
// Threads: one at a time while it is made; then any.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "engines/mupdf/reflow/Capture.h"

namespace velko::engines::mupdf::reflow {

class Words {
public:
    Words() = default; // none
    explicit Words(const std::vector<TextLine>& lines);

    // Whether the hyphen that `text` ends with stays when `more` goes on with a small
    // letter: the page has the compound elsewhere, or both of its parts and not the
    // word that they would make.
    bool KeepHyphen(const Glyphs& text, const Glyphs& more) const;

private:
    void AddLine(const Glyphs& glyphs, bool bGoesOn);
    int CountOf(std::uint64_t nWord) const;

    std::unordered_map<std::uint64_t, int> m_counts; // by the word's hash
};

}
