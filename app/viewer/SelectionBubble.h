// What can be done with text that a finger has selected, beside it: copy, highlight,
// select all. It goes with the next touch, key or turn of the wheel.
//
// Lifetime: a child of the view. Threads: UI thread only.
#pragma once

#include <QFrame>

#include "app/viewer/Commands.h"

namespace velko::viewer {

class SelectionBubble : public QFrame {
public:
    SelectionBubble(vkit::VelkoPdfView& view, const Commands& commands);

    void ShowBeside(); // what is selected

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    vkit::VelkoPdfView& m_view;
};

}
