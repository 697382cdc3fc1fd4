// The colours of a page, and what suits them around it.
//
// Threads: values.
#pragma once

#include <QColor>

#include "platform/foundation/Color.h"

namespace velko::vkit {

struct PageColors {
    QColor background;
    QColor foreground;

    // True for light on dark.
    bool IsDark() const;

    // What the screen shows around pages of these colours: the usual grey around
    // light ones, or where it is to be dark a dark one; a dark tone of theirs around
    // dark ones.
    QColor Around(bool bDark = false) const;

    friend bool operator==(const PageColors&, const PageColors&) = default;
};

PageColors DayPageColors();
PageColors NightPageColors(); // readable for hours: dark, with a contrast above 7 to 1
PageColors DimPageColors();   // fainter, for a dark room: the control's own night mode

// Those of the settings; in force for the next document.
PageColors StoredPageColors();

QColor ToQColor(Windows::UI::Color color);
Windows::UI::Color ToColor(const QColor& color);

}
