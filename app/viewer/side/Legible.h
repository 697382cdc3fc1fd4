// Colours of lists beside the pages.
//
// Threads: UI thread only.
#pragma once

#include <QColor>
#include <QPalette>
#include <QRect>

class QPainter;

namespace velko::viewer {

// `color` where it stands out from the ground well enough to be read; else as much of it
// as does, mixed with the colour of ordinary letters.
QColor LegibleOn(const QColor& ground, const QColor& color, const QColor& letters);

// Behind the row of what is being read, and a bar at its left.
void DrawReadingMark(QPainter& painter, const QRect& rcRow, const QPalette& palette);

}
