// The mark of what has the keys: a ring in the colour of the letters, so that it
// stands out from any ground that letters are read on, pressed buttons too.
//
// Threads: UI thread only.
#pragma once

#include <QPushButton>

class QKeyEvent;
class QPainter;

namespace velko::viewer {

// Just within the widget's edges, when it has the focus.
void DrawFocusRing(QPainter& painter, const QWidget& widget);

// Presses the button when the key is Return, which Qt leaves to dialogs. False for
// other keys.
bool PressByReturn(QAbstractButton& button, const QKeyEvent& event);

// A button with words and that ring; Return presses it.
class TextButton : public QPushButton {
public:
    using QPushButton::QPushButton;

protected:
    void keyPressEvent(QKeyEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;
};

}
