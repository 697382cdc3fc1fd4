// Which tool the pointer is over the pages, and what is done with it.
//
// Without a tool a drag moves the pages and a tap follows links. With one, the left
// button and a pen are the tool's; the middle button, the wheel and fingers move the
// pages as ever. Escape gives up a drag that is under way, and then the tool.
//
// Lifetime: goes before what it works on. Made after whatever else listens to the
// window, so that it is asked first.
// Threads: UI thread only.
#pragma once

#include <QObject>
#include <QPointF>
#include <functional>
#include <optional>

#include "widget/PointerShape.h"
#include "widget/edit/MarkDrag.h"
#include "widget/text/EdgeScroll.h"
#include "widget/text/PagePlaces.h"

namespace velko::vkit {

class EditTools : public QObject {
    Q_OBJECT

public:
    enum class Tool { None, Highlight, Note };

    struct Hands {
        std::function<void(const MarkDrag::Marks&)> fnMark;
        std::function<void(const PagePoint&)> fnPutNote;
        std::function<void()> fnNoText; // where a mark was wanted
        std::function<void()> fnRedraw;
        std::function<void(double dbX, double dbY)> fnScroll; // device pixels
        std::function<void()> fnToolChanged;
    };

    EditTools(Platform::Qt::QtElementWindow& window, const PagePlaces& places, PageTexts& texts,
              PointerShape& shape, Hands hands);

    Tool Current() const { return m_eTool; }
    void Take(Tool eTool);

    // What a drag marks by now.
    MarkDrag::Marks Marks() const { return m_drag.Find(); }
    bool IsDragging() const { return m_pointer.has_value(); }

    // The pages have moved under the pointer.
    void Update();
    void GiveUp(); // what is under way

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    bool OnPress(QPointF pt, bool bDouble);
    void OnMove(QPointF pt);
    void OnRelease(QPointF pt);
    bool OnMouse(QEvent& event);
    bool OnPen(QEvent& event);
    bool OnEscape();
    void Follow(QPointF pt);
    void End(); // of a mark, as soon as all texts are there

    Platform::Qt::QtElementWindow& m_window;
    const PagePlaces& m_places;
    PageTexts& m_texts;
    PointerShape& m_shape;
    const Hands m_hands;
    Tool m_eTool = Tool::None;
    MarkDrag m_drag;
    std::optional<QPointF> m_pointer; // of a drag that is under way
    bool m_bEnded = false;            // the drag waits for texts only
    EdgeScroll m_edge;
};

}
