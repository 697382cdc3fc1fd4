// A scroll bar that lies over an edge of the pages and takes no room from them: slim at
// rest, wide under the pointer, with marks on it. Of the pages below it takes only what
// hits the handle, until the pointer comes near the edge.
//
// Threads: UI thread only. Units: Qt's; places on the track from its start.
#pragma once

#include <QColor>
#include <QPointer>
#include <QRect>
#include <QWidget>
#include <functional>
#include <optional>
#include <vector>

#include "widget/scroll/ScrollRange.h"

namespace velko::vkit {

class ScrollBar : public QObject {
    Q_OBJECT

public:
    static constexpr int kWidth = 14;      // under the pointer
    static constexpr double kLeast = 32.0; // of the handle's length

    // What it does. Starts are those of a `ScrollRange`.
    struct Hands {
        std::function<void(double dbStart)> fnDrag; // to there, while the handle is held
        std::function<void(double dbStart)> fnGo;   // there at once
        std::function<void(int nScreens)> fnScreen;
        std::function<void(bool bHeld)> fnHeld; // by its handle, or no more
    };

    // Its widgets are children of `pages`, over the others.
    ScrollBar(Qt::Orientation eDirection, QWidget& pages, Hands hands);
    ~ScrollBar() override;

    // `rcTrack` of the pages, as wide as the bar is at most. A range that fits, or none,
    // hides the bar.
    void Show(const QRect& rcTrack, const std::optional<ScrollRange>& range);
    void SetColor(const QColor& color);
    // Places of a range of that total; `strong` is drawn so.
    void SetMarks(std::vector<double> marks, std::optional<double> strong);

    void SetNear(bool bNear); // the pointer is at the edge
    bool IsShown() const;
    bool IsHeld() const { return m_held.has_value(); }
    QRect HandleRect() const; // of the pages

private:
    class Track;
    class Handle;

    bool IsDown() const { return m_eDirection == Qt::Vertical; }
    double Along(QPointF pt) const { return IsDown() ? pt.y() : pt.x(); }
    double TrackLength() const;
    QRect HandleRectOf(const ScrollRange& range) const;
    void Grasp(QPointF ptPages);
    void DragTo(QPointF ptPages);
    void LetGo();
    void PressTrack(QPointF ptPages, bool bThere);
    void PaintTrack(QPainter& painter);
    void PaintHandle(QPainter& painter, const QRect& rc) const;
    void FindMarks();

    const Qt::Orientation m_eDirection;
    const Hands m_hands;
    QPointer<Track> m_pTrack; // children of the pages
    QPointer<Handle> m_pHandle;
    QRect m_rcTrack;
    ScrollRange m_range;
    QColor m_color;
    bool m_bNear = false;
    std::optional<double> m_held; // where on the handle
    std::vector<double> m_marks;
    std::optional<double> m_strong;
    std::vector<QRect> m_markRects; // merged, of the track
};

}
