// The wheel over a view, where it does more than the panel's own wheel: with
// Ctrl it zooms about the pointer, with Shift and tilted it scrolls sideways,
// and where one page is shown at a time it scrolls to the page's edge before it
// turns. The rest goes on to the panel.
//
// Fine wheels and touchpads zoom and scroll in proportion; a page is turned by a
// whole notch against its edge. A zoom settles when the wheel has rested.
// Lifetime: goes before the window that it watches.
// Units: distances in device pixels, the pointer in the widget's own.
// Threads: UI thread only.
#pragma once

#include <QObject>
#include <QPointF>
#include <QTimer>
#include <functional>

class QWheelEvent;
class QWidget;

namespace velko::vkit {

class WheelReader : public QObject {
public:
    // What is done with it.
    struct Hands {
        // Whether the view takes the wheel now; else the panel has it all.
        std::function<bool()> fnTakes;
        std::function<bool()> fnTurnsPages;           // one page at a time is shown
        std::function<void(QPointF, double)> fnZoom;  // by a factor
        std::function<void()> fnSettle;               // the last zoom was that
        std::function<void(double, double)> fnScroll; // across and down
        std::function<bool(int)> fnIsAtEdge;          // of the page, 1 down and -1 up
        std::function<void(int)> fnTurn;              // a page on, or back
    };

    WheelReader(QWidget& window, Hands hands);

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    bool Take(const QWheelEvent& event);
    bool IsForPanel(const QWheelEvent& event);
    void Zoom(const QWheelEvent& event);
    void ScrollOrTurn(int nAngle);

    const Hands m_hands;
    QTimer m_rest;                // runs while a zoom is not settled
    bool m_bPanelScrolls = false; // a touchpad's scrolling that the panel follows
    int m_nAgainstEdge = 0;       // eighths of a degree
};

}
