#include "app/viewer/GlyphButton.h"

#include <QAction>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>

#include "app/viewer/FocusRing.h"

namespace velko::viewer {

namespace {

constexpr int kSide = 30;
constexpr double kStroke = 1.5;
constexpr double kCorner = 5.0;
constexpr int kHoverAlpha = 22;
constexpr int kPressAlpha = 46;

// "Next page (Ctrl+Right)".
QString TipOf(const QAction& action) {
    QString strName = action.text().remove('&').remove(QChar(0x2026));
    const QString strKey = action.shortcut().toString(QKeySequence::NativeText);
    return strKey.isEmpty() ? strName : QStringLiteral("%1 (%2)").arg(strName, strKey);
}

}

GlyphButton::GlyphButton(Glyph eGlyph, QAction* pAction, QWidget* pParent)
    : QToolButton(pParent), m_outline(OutlineOf(eGlyph)) {
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus);
    if (pAction != nullptr) {
        setDefaultAction(pAction);
        setAccessibleName(pAction->text().remove('&'));
    }
}

QSize GlyphButton::sizeHint() const {
    return {m_nWidth, kSide};
}

void GlyphButton::keyPressEvent(QKeyEvent* pEvent) {
    if (!PressByReturn(*this, *pEvent)) {
        QToolButton::keyPressEvent(pEvent);
    }
}

bool GlyphButton::event(QEvent* pEvent) {
    if (pEvent->type() == QEvent::ToolTip && defaultAction() != nullptr) {
        QToolTip::showText(static_cast<QHelpEvent*>(pEvent)->globalPos(), TipOf(*defaultAction()),
                           this);
        return true;
    }
    return QToolButton::event(pEvent);
}

void GlyphButton::paintEvent(QPaintEvent* /*pEvent*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto eGroup = isEnabled() ? QPalette::Active : QPalette::Disabled;
    const QColor color = palette().color(eGroup, QPalette::WindowText);
    const bool bLow = isDown() || isChecked();
    if (bLow || (underMouse() && isEnabled())) {
        QColor back = color;
        back.setAlpha(bLow ? kPressAlpha : kHoverAlpha);
        painter.setPen(Qt::NoPen);
        painter.setBrush(back);
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), kCorner, kCorner);
    }
    DrawFocusRing(painter, *this);
    painter.translate((width() - kGlyphSide) / 2.0, (height() - kGlyphSide) / 2.0);
    painter.setPen(QPen(color, kStroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(m_outline);
}

}
