// A drag that selects text, from the point where it began to the one where the pointer
// is. Texts of the pages may come while it goes on, or after it: what is selected follows
// as far as they are known.
//
// Lifetime: goes before the texts and the selection. Threads: UI thread only.
#pragma once

#include <optional>

#include "widget/text/PagePlaces.h"
#include "widget/text/PageTexts.h"
#include "widget/text/TextSelection.h"

namespace velko::vkit {

class SelectionDrag {
public:
    SelectionDrag(PageTexts& texts, TextSelection& selection)
        : m_texts(texts), m_selection(selection) {}

    void Begin(const PagePoint& point, TextUnit eUnit);
    // From what is selected, whose first unit stays.
    void Extend(const PagePoint& point);
    // From one end of what is selected, which stays.
    void Hold(TextPlace anchor, const PagePoint& point);
    void MoveTo(const PagePoint& point);
    void End() { m_bOn = false; } // also while texts are missing
    bool IsOn() const { return m_bOn; }

    // Selects what is known by now; false while there is more to come.
    bool Follow();

private:
    std::optional<TextSpan> SpanAt(const PagePoint& point) const;
    bool TakeStart();

    PageTexts& m_texts;
    TextSelection& m_selection;
    std::optional<PagePoint> m_start; // not taken yet
    PagePoint m_end;
    TextUnit m_eUnit = TextUnit::Char;
    bool m_bOn = false;
};

}
