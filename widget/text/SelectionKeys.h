// The keyboard over text: Shift and the arrows, Home and End move the head of what is
// selected, with Ctrl by words and to the ends of the document.
//
// Without a selection it begins at the first text in sight. A key that needs a text which
// is being read waits for it. The head comes into sight.
//
// Lifetime: goes before what it works on. Threads: UI thread only.
#pragma once

#include <functional>
#include <optional>
#include <utility>

#include "widget/text/PagePlaces.h"
#include "widget/text/PageTexts.h"
#include "widget/text/TextSelection.h"
#include "widget/text/TextSteps.h"

class QKeyEvent;
class QWidget;

namespace velko::vkit {

class SelectionKeys {
public:
    struct Parts {
        PDFViewCtrl& control;
        QWidget& window;
        const PagePlaces& places;
        PageTexts& texts;
        TextSelection& selection;
        std::function<void(int nPage)> fnGotoPage;
        std::function<void(double dbX, double dbY)> fnScroll; // device pixels
    };

    explicit SelectionKeys(Parts parts) : m_parts(std::move(parts)) {}

    bool OnKey(const QKeyEvent& event); // false: it is none of these, or no text is in sight
    void OnRead();                      // a text has come
    void Forget() { m_waiting.reset(); }

private:
    struct Move {
        TextStep eStep = TextStep::Char;
        bool bDocument = false; // to its end
        int nDirection = 1;
        bool bVisual = false; // to the left or right, whichever way the text runs
    };
    enum class Outcome { Done, Waits, Nothing };

    struct Found {
        std::optional<TextPlace> place;
        bool bWaits = false; // for a text
        bool bEnds = false;  // the place belongs to the line that it ends
    };

    static std::optional<Move> MoveOf(const QKeyEvent& event);
    Outcome Carry(const Move& move);
    Outcome Step(const Move& move, TextSelection::Places places);
    TextPlace EdgeOfDocument(int nDirection) const;
    Found PlaceFrom(Move move, const TextSelection::Places& places);
    Found Enter(const Move& move, std::int32_t nFrom);
    Found FirstInSight();
    bool IsInSight(std::int32_t nPage, const velko::pdf::PageText& text, CharRange range) const;
    void Show(TextPlace head);

    const Parts m_parts;
    std::optional<Move> m_waiting;
    std::optional<TextSelection::Places> m_last;         // that a key came to
    bool m_bEnds = false;                                // its head, the line before it
    std::optional<velko::common::vxbase::PointF> m_goal; // of steps from line to line
};

}
