// The shape of the pointer over the pages. Whoever has a say in it tells what
// holds; a drag weighs more than a tool, a tool more than a link that it passes, and a
// link more than the text that it is.
//
// Lifetime: goes before the window. Threads: UI thread only.
#pragma once

class QWidget;

namespace velko::vkit {

class PointerShape {
public:
    enum Reason : unsigned {
        OverLink = 1,
        LeftDrag = 2,
        MiddleDrag = 4,
        Marks = 8,
        PutsNote = 16,
        OverText = 32,
        Selects = 64,
        Hidden = 128
    };

    explicit PointerShape(QWidget& window) : m_window(window) {}

    void Set(Reason eReason, bool bHolds);

private:
    QWidget& m_window;
    unsigned m_nReasons = 0;
};

}
