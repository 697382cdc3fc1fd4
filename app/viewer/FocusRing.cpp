#include "app/viewer/FocusRing.h"

#include <QKeyEvent>
#include <QPainter>

namespace velko::viewer {

namespace {

constexpr double kStroke = 2.0;
constexpr double kCorner = 4.0;

}

void DrawFocusRing(QPainter& painter, const QWidget& widget) {
    if (!widget.hasFocus()) {
        return;
    }
    painter.save();
    painter.resetTransform();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(widget.palette().color(QPalette::WindowText), kStroke));
    painter.setBrush(Qt::NoBrush);
    constexpr double kInset = kStroke / 2.0;
    painter.drawRoundedRect(QRectF(widget.rect()).adjusted(kInset, kInset, -kInset, -kInset),
                            kCorner, kCorner);
    painter.restore();
}

bool PressByReturn(QAbstractButton& button, const QKeyEvent& event) {
    const bool bReturn = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if (bReturn) {
        button.click();
    }
    return bReturn;
}

void TextButton::keyPressEvent(QKeyEvent* pEvent) {
    if (!PressByReturn(*this, *pEvent)) {
        QPushButton::keyPressEvent(pEvent);
    }
}

void TextButton::paintEvent(QPaintEvent* pEvent) {
    QPushButton::paintEvent(pEvent);
    QPainter painter(this);
    DrawFocusRing(painter, *this);
}

}
