// The closed hand of the pointer while a mouse drags the pages.
//
// Lifetime: goes before the window that it watches and the shape. Threads: UI thread only.
#pragma once

#include <QObject>
#include <QPointF>
#include <optional>

#include "widget/PointerShape.h"

class QMouseEvent;
class QWidget;

namespace velko::vkit {

class DragHand : public QObject {
public:
    DragHand(QWidget& window, PointerShape& shape);

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override; // takes nothing

private:
    void Follow(const QMouseEvent& event);
    void LetGo();

    PointerShape& m_shape;
    std::optional<QPointF> m_pressed; // where, while the left button is down
};

}
