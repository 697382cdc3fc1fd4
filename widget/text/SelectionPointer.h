// The mouse and the pen over text: a drag that begins on text selects, two clicks a word,
// three a line, with Shift what is selected goes on to the pointer. A press that stops pages
// in movement moves them on.
//
// A press on text goes on to the panel, so that a click does what it does anywhere; once
// it moves it is this one's. Beside text, and with other buttons, nothing is taken. A link
// is followed by a click, and selected by a drag.
//
// Lifetime: goes before what it works on. Threads: UI thread only.
#pragma once

#include <QEvent>
#include <QObject>
#include <QPointF>
#include <QTimer>
#include <functional>
#include <optional>

#include "widget/PointerShape.h"
#include "widget/text/EdgeScroll.h"
#include "widget/text/SelectionDrag.h"

class QMouseEvent;
class QTabletEvent;

namespace Platform::Qt {
class QtElementWindow;
}

namespace velko::vkit {

class SelectionPointer : public QObject {
    Q_OBJECT

public:
    struct Parts {
        Platform::Qt::QtElementWindow& window;
        const PagePlaces& places;
        PageTexts& texts;
        TextSelection& selection;
        PointerShape& shape;
        std::function<void(double dbX, double dbY)> fnScroll; // device pixels
    };

    explicit SelectionPointer(Parts parts);

    bool IsSelecting() const { return m_eGrip == Grip::Selects; }
    // The pages have moved under the pointer, or others are shown.
    void Update();
    // What is under way comes to nothing; the button does nothing more until it is up.
    void GiveUp();

signals:
    void Selected(); // a drag has ended, and all of its text is known

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    enum class Grip {
        None,
        Pressed, // on text, or where it is not known yet
        Waits,   // for the text where it began
        Selects,
        Spent // until the button is up
    };
    struct Contact {
        QPointF pt;
        bool bShift = false;
        int nClicks = 1;
    };

    bool OnMouse(const QMouseEvent& event, QEvent::Type eType);
    bool OnPen(QTabletEvent& event);
    int CountClick(const QMouseEvent& event, bool bDouble);
    bool OnPress(const Contact& contact);
    bool OnPressAt(const PagePoint& point, const Contact& contact);
    bool OnMove(QPointF pt, bool bDown);
    bool OnRelease(QPointF pt);
    void Select(); // from where the press was
    void PassOn();
    void MoveTo(QPointF pt);
    void Finish();
    void Lose();
    void OnRead();
    bool IsTextAt(const PagePoint& point);
    void Hover();

    Platform::Qt::QtElementWindow& m_window;
    const PagePlaces& m_places;
    PageTexts& m_texts;
    TextSelection& m_selection;
    PointerShape& m_shape;
    SelectionDrag m_drag;
    EdgeScroll m_edge;
    Grip m_eGrip = Grip::None;
    QPointF m_ptPressed;
    PagePoint m_pressed;
    QPointF m_pointer;              // of a drag that is under way
    std::optional<QPointF> m_hover; // over the window, no button down
    QTimer m_rest;                  // of the pointer over a page whose text is not known
    bool m_bPen = false;            // of the pen, not the mouse
    quint64 m_nMovedAt = 0;         // the mouse, as its events tell
    QPointF m_ptClicked;
    quint64 m_nClickedAt = 0;
    int m_nClicks = 0;
};

}
