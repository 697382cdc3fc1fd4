#include "app/viewer/keys/PageKeys.h"

#include <algorithm>
#include <iterator>

namespace velko::viewer {

const std::vector<PageKeySection>& PageKeySections() {
    static const std::vector<PageKeySection> s_sections{
        {QStringLiteral("On the pages"),
         {{"A screen on, or back", "Space, Page Down, Return; Shift+Space, Page Up, Backspace"},
          {"A line on, or back", "Down or J; Up or K"},
          {"To the side", "Left, Right"},
          {"Next page, previous page", "N; P"},
          {"Start and end of the document", "Home; End"},
          {"Zoom, or the size of text for reading", QStringLiteral("+ and −")},
          {"Next link, previous link; follow it, leave it", "Tab, Shift+Tab; Return, Esc"},
          {"Leave a field, a notice or the full screen", "Esc"}}},
        {QStringLiteral("Selected text"),
         {{"By characters, by words", "Shift+Left, Shift+Right; with Ctrl as well"},
          {"By lines", "Shift+Up, Shift+Down"},
          {"To the line's end, the document's", "Shift+End; Ctrl+Shift+End, and with Home"},
          {"A word, a line; to the pointer", "two clicks, three; Shift and a click"},
          {"Leave it", "Esc"}}},
        {QStringLiteral("With mouse, touchpad and fingers"),
         {{"Zoom at the pointer", "Ctrl and the wheel; two fingers"},
          {"To the side", "Shift and the wheel"},
          {"Move the pages", "the middle button, or the left one beside text"},
          {"Back and forward", "the mouse's own buttons"},
          {"What can be done at a place", "the right button"},
          {"Select a word", "hold it with a finger"}}},
        {QStringLiteral("In a presentation"),
         {{"Next page, previous page",
           "Space, Page Down, a click; Backspace, Page Up, the right button"},
          {"To a page", "its number and Return"},
          {"Black, white", "B; W"},
          {"End it", "Esc"}}},
    };
    return s_sections;
}

bool IsPageKey(const QKeySequence& key) {
    static constexpr int kKeys[] = {
        Qt::Key_Space, Qt::Key_PageUp,    Qt::Key_PageDown, Qt::Key_Home,    Qt::Key_End,
        Qt::Key_Left,  Qt::Key_Right,     Qt::Key_Up,       Qt::Key_Down,    Qt::Key_Return,
        Qt::Key_Enter, Qt::Key_Backspace, Qt::Key_Tab,      Qt::Key_Backtab, Qt::Key_Escape};
    const auto modifiers = key[0].keyboardModifiers();
    const bool bPlain = (modifiers & ~Qt::ShiftModifier) == 0;
    return bPlain && std::find(std::begin(kKeys), std::end(kKeys), key[0].key()) != std::end(kKeys);
}

}
