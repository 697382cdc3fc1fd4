// The small pictures on buttons, as outlines to be stroked.
//
// Threads: values. Units: a square of `kGlyphSide`.
#pragma once

#include <QPainterPath>

namespace velko::viewer {

inline constexpr double kGlyphSide = 20.0;

enum class Glyph {
    Menu,
    Open,
    Previous,
    Next,
    ZoomOut,
    ZoomIn,
    FitWidth,
    FitPage,
    Rotate,
    Continuous,
    SinglePage,
    Text,
    Highlight,
    Note,
    Night,
    FullScreen,
    Close,
    Down,
    Up,
    Find,
    MatchCase,
    WholeWords,
    List,
    More,
    SidePanel,
    Outline,
    Pages,
    Bookmark,
    Attachment
};

QPainterPath OutlineOf(Glyph eGlyph);

}
