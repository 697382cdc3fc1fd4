#include "widget/PointerShape.h"

#include <QWidget>
#include <utility>

namespace velko::vkit {

void PointerShape::Set(Reason eReason, bool bHolds) {
    const unsigned nNow = bHolds ? m_nReasons | eReason : m_nReasons & ~unsigned(eReason);
    if (std::exchange(m_nReasons, nNow) == nNow) {
        return;
    }
    if ((nNow & Hidden) != 0) {
        m_window.setCursor(Qt::BlankCursor);
    } else if ((nNow & (LeftDrag | MiddleDrag)) != 0) {
        m_window.setCursor(Qt::ClosedHandCursor);
    } else if ((nNow & (Selects | Marks)) != 0) {
        m_window.setCursor(Qt::IBeamCursor);
    } else if ((nNow & PutsNote) != 0) {
        m_window.setCursor(Qt::CrossCursor);
    } else if ((nNow & OverLink) != 0) {
        m_window.setCursor(Qt::PointingHandCursor);
    } else if ((nNow & OverText) != 0) {
        m_window.setCursor(Qt::IBeamCursor);
    } else {
        m_window.unsetCursor();
    }
}

}
