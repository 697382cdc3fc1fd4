// The closed hand of the pointer while a mouse drags the pages.
//
// Lifetime: goes before the window that it watches. Threads: UI thread only.
#pragma once

#include <QObject>
#include <QPointF>
#include <optional>

class QMouseEvent;
class QWidget;

namespace velko::vkit {

class DragHand : public QObject {
public:
    explicit DragHand(QWidget& window);

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override; // takes nothing

private:
    void Follow(const QMouseEvent& event);
    void LetGo();

    QWidget& m_window;
    std::optional<QPointF> m_pressed; // where, while the left button is down
    bool m_bClosed = false;
};

}
