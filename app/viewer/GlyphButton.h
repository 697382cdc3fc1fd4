// A flat button with a glyph, for an action: it shows whether the action is
// enabled and checked, and tells its name and key.
//
// Threads: UI thread only.
#pragma once

#include <QToolButton>

#include "app/viewer/Glyphs.h"

namespace velko::viewer {

class GlyphButton : public QToolButton {
public:
    // Without an action the caller says what the button does.
    GlyphButton(Glyph eGlyph, QAction* pAction, QWidget* pParent);

    void SetWidth(int nWidth) { m_nWidth = nWidth; } // Qt's units
    QSize sizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;
    bool event(QEvent* pEvent) override;

private:
    const QPainterPath m_outline;
    int m_nWidth = 30;
};

}
