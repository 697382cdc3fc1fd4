// Moves the pages while a drag holds the pointer at the window's edge, or beyond it.
//
// Lifetime: goes before the window. Threads: UI thread only. Units: places in Qt's,
// distances in device pixels.
#pragma once

#include <QPointF>
#include <QTimer>
#include <functional>

class QWidget;

namespace velko::vkit {

class EdgeScroll {
public:
    struct Hands {
        std::function<void(double dbX, double dbY)> fnScroll;
        std::function<void(QPointF pt)> fnScrolled; // other places lie under the pointer
    };

    EdgeScroll(QWidget& window, Hands hands);

    void Follow(QPointF pt); // of a drag that is under way
    void Stop() { m_timer.stop(); }

private:
    void Step();

    QWidget& m_window;
    const Hands m_hands;
    QPointF m_pointer;
    QTimer m_timer;
};

}
