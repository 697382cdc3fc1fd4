// A window whose pages are worked on by a real pointer and keys, for tests.
//
// Threads: the UI thread.
#pragma once

#include <QTest>

#include "tests/qt/WindowFixture.h"

namespace velko::testing {

class PointerFixture : public WindowFixture {
protected:
    vkit::VelkoPdfView& TheView() { return m_pWindow->View(); }

    // Where a point of a page lies in the window of the pages.
    QPoint At(int nPage, float fX, float fY) {
        const auto pt = TheView().Control()->PagePointToDevicePoint(nPage, {fX, fY});
        const double dbRatio = TheView().devicePixelRatioF();
        return QPointF(pt.X / dbRatio, pt.Y / dbRatio).toPoint();
    }
    void Press(QPoint pt, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::mousePress(&TheView().Window(), Qt::LeftButton, modifiers, pt);
    }
    void Release(QPoint pt) {
        QTest::mouseRelease(&TheView().Window(), Qt::LeftButton, Qt::NoModifier, pt);
    }
    void MoveTo(QPoint pt) { SendMouse(TheView().Window(), QEvent::MouseMove, pt, true); }
    void Drag(QPoint from, QPoint to) {
        Press(from);
        MoveTo((from + to) / 2);
        MoveTo(to);
        Release(to);
    }
    void Click(QPoint pt) {
        QTest::mouseClick(&TheView().Window(), Qt::LeftButton, Qt::NoModifier, pt);
    }
    void Key(int nKey, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&TheView().Window(), static_cast<Qt::Key>(nKey), modifiers);
    }
};

}
