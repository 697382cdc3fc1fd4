// A finger over text: holding it on a word selects that, and on over words while it stays
// down; then the ends of what is selected have handles to be dragged.
//
// Until it has held, a finger is the panel's: it pans, pinches and taps. A handle that is
// dragged past the other takes its part.
//
// Lifetime: goes before what it works on. Threads: UI thread only.
#pragma once

#include <QObject>
#include <QPointF>
#include <QPointer>
#include <array>
#include <functional>
#include <optional>

#include "platform/foundation/Event.h"
#include "widget/text/EdgeScroll.h"
#include "widget/text/SelectionDrag.h"
#include "widget/text/SelectionHandle.h"

class QTouchEvent;

namespace Platform::Qt {
class QtElementWindow;
}

namespace velko::vkit {

class SelectionTouch : public QObject {
    Q_OBJECT

public:
    struct Parts {
        Platform::Qt::QtElementWindow& window;
        const PagePlaces& places;
        PageTexts& texts;
        TextSelection& selection;
        // From the panel's units to the window's.
        std::function<QPointF(Windows::Foundation::Point)> fnToWindow;
        std::function<void(double dbX, double dbY)> fnScroll; // device pixels
    };

    explicit SelectionTouch(Parts parts);
    ~SelectionTouch() override;

    void Update(); // the pages have moved

signals:
    void Selected(); // a finger has let go of it

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    void OnHolding(QPointF pt);
    void TakeHeld(); // once its text is known
    void OnTouch(const QTouchEvent& event);
    void MoveTo(QPointF pt);
    void LetGo();
    void OnChanged();
    void TakeHandle(int nHandle, QPointF pt);
    void PlaceHandle(int nHandle, TextPlace place);
    std::optional<QPointF> TipOf(TextPlace place) const;

    const Parts m_parts;
    Windows::Foundation::EventRegistrationToken m_holdToken;
    SelectionDrag m_drag;
    EdgeScroll m_edge;
    bool m_bFinger = false;                             // one is down, on the panel
    std::optional<PagePoint> m_held;                    // by it, where the text is read
    bool m_bWord = false;                               // the finger has a word, and goes on
    std::array<QPointer<SelectionHandle>, 2> m_handles; // when first needed
    bool m_bHandles = false;                            // to be shown
    int m_nHead = 1;                                    // which one the head has
    bool m_bDragged = false;                            // one of them
    QPointF m_ptAside;                                  // from the finger to the text
};

}
