#include "app/viewer/TopEdge.h"

#include <QApplication>
#include <QMouseEvent>
#include <utility>

namespace velko::viewer {

namespace {

constexpr int kEdge = 2;    // where the bar is called from
constexpr int kMargin = 16; // below the bar, so that it does not go at the first tremble

}

TopEdge::TopEdge(QWidget& pages, int nBarHeight, QObject* pParent)
    : QObject(pParent), m_nBarHeight(nBarHeight) {
    pages.installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this, &TopEdge::OnFocus);
}

void TopEdge::SetWatching(bool bWatching) {
    m_bWatching = bWatching;
    Set(false);
}

void TopEdge::Call() {
    Set(m_bWatching);
}

void TopEdge::Set(bool bCalled) {
    if (std::exchange(m_bCalled, bCalled) != bCalled) {
        emit Changed();
    }
}

bool TopEdge::IsOfBar(const QWidget* pWidget) const {
    return m_pBar && pWidget != nullptr && (pWidget == m_pBar || m_pBar->isAncestorOf(pWidget));
}

bool TopEdge::eventFilter(QObject* /*pWatched*/, QEvent* pEvent) {
    if (m_bWatching && pEvent->type() == QEvent::MouseMove) {
        const auto& move = *static_cast<QMouseEvent*>(pEvent);
        const double dbY = move.position().y();
        if (dbY < kEdge && move.buttons() == Qt::NoButton) {
            Set(true);
        } else if (dbY > m_nBarHeight + kMargin && !IsOfBar(QApplication::focusWidget())) {
            Set(false);
        }
    }
    return false;
}

void TopEdge::OnFocus(const QWidget* pOld, const QWidget* pNow) {
    if (m_bCalled && IsOfBar(pOld) && pNow != nullptr && !IsOfBar(pNow)) {
        Set(false);
    }
}

}
