#include "widget/scroll/ScrollBar.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace velko::vkit {

namespace {

constexpr int kSlim = 5; // of the handle at rest
constexpr int kEdge = 2; // between the handle and the window's edge
constexpr int kRestAlpha = 160;
constexpr int kNearAlpha = 200;
constexpr int kHeldAlpha = 235;
constexpr int kTrackAlpha = 28;

QColor WithAlpha(QColor color, int nAlpha) {
    color.setAlpha(nAlpha);
    return color;
}

// Scrolls what lies below, which is nobody's parent here.
void PassOn(const QWheelEvent& event, QWidget& from) {
    QWidget* const pPages = from.parentWidget();
    QWidget* const pBelow = pPages->focusProxy() != nullptr ? pPages->focusProxy() : pPages;
    const QPointF pt = pBelow->mapFromGlobal(event.globalPosition());
    QWheelEvent passed(pt, event.globalPosition(), event.pixelDelta(), event.angleDelta(),
                       event.buttons(), event.modifiers(), event.phase(), event.inverted());
    QCoreApplication::sendEvent(pBelow, &passed);
}

}

class ScrollBar::Track : public QWidget {
public:
    Track(ScrollBar& bar, QWidget& pages) : QWidget(&pages), m_bar(bar) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setFocusPolicy(Qt::NoFocus);
        setCursor(Qt::ArrowCursor);
        hide();
    }

protected:
    void paintEvent(QPaintEvent* /*pEvent*/) override {
        QPainter painter(this);
        m_bar.PaintTrack(painter);
    }
    void mousePressEvent(QMouseEvent* pEvent) override {
        const bool bThere =
            pEvent->button() == Qt::MiddleButton || pEvent->modifiers().testFlag(Qt::ShiftModifier);
        m_bar.PressTrack(mapToParent(pEvent->position()), bThere);
    }
    void mouseMoveEvent(QMouseEvent* pEvent) override {
        m_bar.DragTo(mapToParent(pEvent->position()));
    }
    void mouseReleaseEvent(QMouseEvent* /*pEvent*/) override { m_bar.LetGo(); }
    void leaveEvent(QEvent* /*pEvent*/) override { m_bar.SetNear(false); }
    void wheelEvent(QWheelEvent* pEvent) override { PassOn(*pEvent, *this); }

private:
    ScrollBar& m_bar;
};

class ScrollBar::Handle : public QWidget {
public:
    Handle(ScrollBar& bar, QWidget& pages) : QWidget(&pages), m_bar(bar) {
        setFocusPolicy(Qt::NoFocus);
        setCursor(Qt::ArrowCursor);
        hide();
    }

protected:
    void paintEvent(QPaintEvent* /*pEvent*/) override {
        QPainter painter(this);
        m_bar.PaintHandle(painter, rect());
    }
    void enterEvent(QEnterEvent* /*pEvent*/) override { m_bar.SetNear(true); }
    void leaveEvent(QEvent* /*pEvent*/) override {
        const QPoint pt = parentWidget()->mapFromGlobal(QCursor::pos());
        if (!m_bar.m_rcTrack.contains(pt)) {
            m_bar.SetNear(false);
        }
    }
    void mousePressEvent(QMouseEvent* pEvent) override {
        m_bar.Grasp(mapToParent(pEvent->position()));
    }
    void mouseMoveEvent(QMouseEvent* pEvent) override {
        m_bar.DragTo(mapToParent(pEvent->position()));
    }
    void mouseReleaseEvent(QMouseEvent* /*pEvent*/) override { m_bar.LetGo(); }
    void wheelEvent(QWheelEvent* pEvent) override { PassOn(*pEvent, *this); }

private:
    ScrollBar& m_bar;
};

ScrollBar::ScrollBar(Qt::Orientation eDirection, QWidget& pages, Hands hands)
    : m_eDirection(eDirection),
      m_hands(std::move(hands)),
      m_pTrack(new Track(*this, pages)),
      m_pHandle(new Handle(*this, pages)) {}

ScrollBar::~ScrollBar() {
    delete m_pHandle;
    delete m_pTrack;
}

// --- places ------------------------------------------------------------------

double ScrollBar::TrackLength() const {
    return IsDown() ? m_rcTrack.height() : m_rcTrack.width();
}

QRect ScrollBar::HandleRectOf(const ScrollRange& range) const {
    const HandlePlace place = PlaceHandle(range, TrackLength(), kLeast);
    const int nStart = static_cast<int>(std::lround(place.dbStart));
    const int nLength = static_cast<int>(std::lround(place.dbLength));
    return IsDown() ? QRect(m_rcTrack.x(), m_rcTrack.y() + nStart, m_rcTrack.width(), nLength)
                    : QRect(m_rcTrack.x() + nStart, m_rcTrack.y(), nLength, m_rcTrack.height());
}

QRect ScrollBar::HandleRect() const {
    return m_pHandle->geometry();
}

bool ScrollBar::IsShown() const {
    return !m_pHandle->isHidden();
}

void ScrollBar::Show(const QRect& rcTrack, const std::optional<ScrollRange>& range) {
    const bool bShown = range && !range->Fits() && rcTrack.isValid();
    if (!bShown) {
        m_pHandle->hide();
        m_pTrack->hide();
        m_held.reset();
        return;
    }
    const bool bOther = m_rcTrack != rcTrack || m_range.dbTotal != range->dbTotal;
    m_rcTrack = rcTrack;
    m_range = *range;
    if (bOther) {
        m_pTrack->setGeometry(rcTrack);
        FindMarks();
    }
    if (!m_held) { // a handle that is held stays where the pointer has it
        m_pHandle->setGeometry(HandleRectOf(m_range));
    }
    if (m_pHandle->isHidden()) {
        m_pTrack->setVisible(m_bNear || !m_markRects.empty());
        m_pTrack->raise();
        m_pHandle->show();
        m_pHandle->raise();
    }
}

void ScrollBar::SetNear(bool bNear) {
    if (m_bNear == bNear || (m_held && !bNear)) {
        return;
    }
    m_bNear = bNear;
    m_pTrack->setAttribute(Qt::WA_TransparentForMouseEvents, !bNear);
    m_pTrack->setVisible(IsShown() && (bNear || !m_markRects.empty()));
    m_pTrack->update();
    m_pHandle->update();
}

// --- the pointer ---------------------------------------------------------------

void ScrollBar::Grasp(QPointF ptPages) {
    m_held = Along(ptPages) - Along(m_pHandle->pos());
    m_pHandle->update();
    m_hands.fnHeld(true);
}

void ScrollBar::DragTo(QPointF ptPages) {
    if (!m_held) {
        return;
    }
    const double dbTop = Along(ptPages) - Along(m_rcTrack.topLeft()) - *m_held;
    ScrollRange range = m_range;
    range.dbStart = StartFor(m_range, TrackLength(), kLeast, dbTop);
    m_pHandle->setGeometry(HandleRectOf(range));
    m_hands.fnDrag(range.dbStart);
}

void ScrollBar::LetGo() {
    if (m_held) {
        m_held.reset();
        m_pHandle->update();
        m_hands.fnHeld(false);
        if (!m_rcTrack.contains(m_pTrack->parentWidget()->mapFromGlobal(QCursor::pos()))) {
            SetNear(false);
        }
    }
}

void ScrollBar::PressTrack(QPointF ptPages, bool bThere) {
    const double db = Along(ptPages);
    const QRect rc = m_pHandle->geometry();
    if (bThere) {
        const double dbMiddle = (IsDown() ? rc.height() : rc.width()) / 2.0;
        m_hands.fnGo(
            StartFor(m_range, TrackLength(), kLeast, db - Along(m_rcTrack.topLeft()) - dbMiddle));
    } else {
        m_hands.fnScreen(db < Along(rc.topLeft()) ? -1 : 1);
    }
}

// --- pictures ------------------------------------------------------------------

void ScrollBar::SetColor(const QColor& color) {
    if (m_color != color) {
        m_color = color;
        m_pTrack->update();
        m_pHandle->update();
    }
}

void ScrollBar::SetMarks(std::vector<double> marks, std::optional<double> strong) {
    m_marks = std::move(marks);
    m_strong = strong;
    FindMarks();
    m_pTrack->setVisible(IsShown() && (m_bNear || !m_markRects.empty()));
    if (m_pTrack->isVisible() && IsShown()) {
        m_pHandle->raise();
    }
    m_pTrack->update();
}

// One for each run of marks that touch.
void ScrollBar::FindMarks() {
    constexpr int kHigh = 3;
    m_markRects.clear();
    const double dbScale = m_range.dbTotal > 0.0 ? TrackLength() / m_range.dbTotal : 0.0;
    for (const double dbMark : m_marks) { // ascending
        const int nAt = static_cast<int>(dbMark * dbScale);
        if (!m_markRects.empty() && m_markRects.back().bottom() + 1 >= nAt) {
            m_markRects.back().setBottom(nAt + kHigh - 1);
        } else {
            m_markRects.emplace_back(m_rcTrack.width() - kSlim - kEdge, nAt, kSlim, kHigh);
        }
    }
}

void ScrollBar::PaintTrack(QPainter& painter) {
    if (m_bNear) {
        painter.fillRect(m_pTrack->rect(), WithAlpha(m_color, kTrackAlpha));
    }
    for (const QRect& rc : m_markRects) {
        painter.fillRect(rc, QColor(226, 168, 0));
    }
    if (m_strong && m_range.dbTotal > 0.0) {
        const int nAt = static_cast<int>(*m_strong * TrackLength() / m_range.dbTotal);
        painter.fillRect(0, nAt - 1, m_pTrack->width(), 4, QColor(230, 90, 0));
    }
}

void ScrollBar::PaintHandle(QPainter& painter, const QRect& rc) const {
    const int nWide = (m_bNear || m_held ? kWidth - 2 * kEdge : kSlim);
    const QRectF rcDrawn = IsDown() ? QRectF(rc.width() - kEdge - nWide, 1, nWide, rc.height() - 2)
                                    : QRectF(1, rc.height() - kEdge - nWide, rc.width() - 2, nWide);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(WithAlpha(m_color, m_held ? kHeldAlpha : m_bNear ? kNearAlpha : kRestAlpha));
    painter.drawRoundedRect(rcDrawn, nWide / 2.0, nWide / 2.0);
}

}
