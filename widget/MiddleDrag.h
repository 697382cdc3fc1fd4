// The middle button of a mouse, which moves the pages whatever lies under it.
//
// Lifetime: goes before the window that it watches and the shape.
// Units: the widget's own. Threads: UI thread only.
#pragma once

#include <QObject>
#include <QPointF>
#include <functional>
#include <optional>

#include "widget/PointerShape.h"

class QMouseEvent;
class QWidget;

namespace velko::vkit {

class MiddleDrag : public QObject {
public:
    // `fnScroll` moves the pages across and down; positive: towards their end.
    MiddleDrag(QWidget& window, PointerShape& shape, std::function<void(double, double)> fnScroll);

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    void Begin(const QMouseEvent& event);
    void Move(const QMouseEvent& event);
    void End();

    PointerShape& m_shape;
    const std::function<void(double, double)> m_fnScroll;
    std::optional<QPointF> m_last; // while the button is down
};

}
