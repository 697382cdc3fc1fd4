// The mark of what has the keys: a ring in the colour of the letters, so that it
// stands out from any ground that letters are read on, pressed buttons too.
//
// Threads: UI thread only.
#pragma once

#include <QPushButton>

class QPainter;

namespace velko::viewer {

// Just within the widget's edges, when it has the focus.
void DrawFocusRing(QPainter& painter, const QWidget& widget);

// A button with words and that ring.
class TextButton : public QPushButton {
public:
    using QPushButton::QPushButton;

protected:
    void paintEvent(QPaintEvent* pEvent) override;
};

}
