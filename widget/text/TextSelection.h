// What the reader has selected of the shown document's text: the stretch between an
// anchor, which stays, and a head, which moves, over as many pages as lie between.
//
// Places count characters, so a selection holds in every layout, at every zoom. It grows
// by the unit in which it was begun: what was taken first stays in it.
//
// Threads: UI thread only.
#pragma once

#include <QObject>
#include <limits>

#include "widget/text/TextRange.h"

namespace velko::vkit {

// From a place to one that is not before it.
struct TextSpan {
    TextPlace first;
    TextPlace last;
    friend bool operator==(const TextSpan&, const TextSpan&) = default;
};

enum class TextUnit { Char, Word, Line };

class TextSelection : public QObject {
    Q_OBJECT

public:
    // As a character's index: behind all of a page.
    static constexpr std::int32_t kPageEnd = std::numeric_limits<std::int32_t>::max();

    // What is kept of a selection to bring it back over the same text.
    struct Places {
        TextPlace anchor;
        TextPlace head;
        friend bool operator==(const Places&, const Places&) = default;
    };

    bool IsEmpty() const { return m_places.anchor == m_places.head; }
    Places Now() const { return m_places; }
    TextSpan Span() const;
    // What of a page with so many characters is selected.
    CharRange On(std::int32_t nPage, std::int32_t nChars) const;

    void Begin(const TextSpan& unit, TextUnit eUnit);
    void ExtendTo(const TextSpan& unit);
    TextUnit Unit() const { return m_eUnit; }
    void Set(const Places& places); // by characters
    void Clear() { Set({}); }

signals:
    void Changed();

private:
    void Show(const Places& places);

    TextSpan m_base; // taken first
    TextUnit m_eUnit = TextUnit::Char;
    Places m_places;
};

}
