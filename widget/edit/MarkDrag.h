// A drag over words, from where it began to where the pointer is, and what it marks by
// now. The texts of the pages may come while it goes on, or after it.
//
// Lifetime: goes before the texts. Threads: UI thread only.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include "document/engine/AnnotEditor.h"
#include "widget/text/PagePlaces.h"
#include "widget/text/PageTexts.h"
#include "widget/text/TextRange.h"

namespace velko::vkit {

class MarkDrag {
public:
    using Quads = std::vector<velko::pdf::TextQuad>;

    // Of each page that has something marked.
    struct Marks {
        std::map<std::int32_t, Quads> pages;
        bool bComplete = true; // the texts of all pages are there
        bool bText = false;    // there is text on them
    };

    explicit MarkDrag(PageTexts& texts) : m_texts(texts) {}

    void Begin(const PagePoint& point);
    void BeginWord(const PagePoint& point); // the whole word there
    void MoveTo(const PagePoint& point) { m_end = point; }
    void Cancel() { m_start.reset(); }
    bool IsOn() const { return m_start.has_value(); }
    std::int32_t FirstPage() const { return m_start ? m_start->nPage : -1; }

    Marks Find() const;

private:
    std::optional<TextPlace> PlaceOf(const PagePoint& point) const;
    CharRange RangeOf(std::int32_t nPage, const velko::pdf::PageText& text) const;

    PageTexts& m_texts;
    std::optional<PagePoint> m_start; // empty: no drag
    PagePoint m_end;
    bool m_bWord = false;
};

}
