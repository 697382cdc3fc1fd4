// A page's text as a search keeps it: its characters and where its lines end, without
// their places.
//
// Threads: a value.
#pragma once

#include <QString>
#include <cstdint>
#include <string>
#include <vector>

#include "document/engine/PageText.h"

namespace velko::vkit {

class SearchText {
public:
    struct Line {
        std::int32_t nEnd = 0;    // the index of its last character and one
        std::size_t nEndUnit = 0; // the same of `Units`
        bool bGoesOn = false;     // its last word does, in the next line
    };

    explicit SearchText(const velko::pdf::PageText& text);
    explicit SearchText(const QString& strLine); // one line, as typed

    // UTF-16; the index of a character counts code points.
    const std::u16string& Units() const { return m_units; }
    const std::vector<Line>& Lines() const { return m_lines; }
    bool HasHyphenatedLines() const;
    bool IsEmpty() const { return m_units.empty(); }
    std::size_t Bytes() const;

    // A line of the page around the characters, with its neighbour's beginning where the
    // characters go on there; `nFirst` and `nLength` say where they are in it.
    struct Excerpt {
        QString strText;
        qsizetype nFirst = 0;
        qsizetype nLength = 0;
    };
    Excerpt Around(std::int32_t nFirst, std::int32_t nEnd) const;

private:
    // The line that the character stands in; the end beyond the last one.
    std::vector<Line>::const_iterator LineOf(std::int32_t nChar) const;
    std::size_t StartOf(std::vector<Line>::const_iterator line) const; // in units
    std::size_t UnitOf(std::int32_t nChar) const;

    std::u16string m_units;
    std::vector<Line> m_lines;
};

}
