#include "app/viewer/ValueField.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QPainter>
#include <utility>

#include "app/viewer/FocusRing.h"

namespace velko::viewer {

ValueField::ValueField(const QString& strName, int nWidth, QWidget* pParent) : QLineEdit(pParent) {
    setFixedWidth(nWidth);
    setAlignment(Qt::AlignRight);
    setAccessibleName(strName);
    connect(this, &QLineEdit::returnPressed, this, &ValueField::Take);
}

void ValueField::Show(const QString& strValue) {
    m_strValue = strValue;
    const bool bTyping = hasFocus() && isModified();
    if (bTyping || text() == strValue) {
        return;
    }
    setText(strValue);
    if (hasFocus()) {
        selectAll();
    }
}

void ValueField::Take() {
    const QString strText = text().trimmed();
    const bool bTyped = isModified() && !strText.isEmpty();
    setText(m_strValue);
    selectAll();
    if (bTyped) {
        emit Taken(strText);
    } else {
        emit Left();
    }
}

void ValueField::focusInEvent(QFocusEvent* pEvent) {
    QLineEdit::focusInEvent(pEvent);
    m_bClickSelects = pEvent->reason() == Qt::MouseFocusReason;
}

// A menu, or another window for a while, leaves the field as it is.
void ValueField::focusOutEvent(QFocusEvent* pEvent) {
    QLineEdit::focusOutEvent(pEvent);
    if (pEvent->reason() != Qt::PopupFocusReason &&
        pEvent->reason() != Qt::ActiveWindowFocusReason) {
        setText(m_strValue);
    }
}

// The click that brings the focus puts the cursor somewhere before it is
// released; one that has marked something already is left alone.
void ValueField::mouseReleaseEvent(QMouseEvent* pEvent) {
    QLineEdit::mouseReleaseEvent(pEvent);
    if (std::exchange(m_bClickSelects, false) && !hasSelectedText()) {
        selectAll();
    }
}

void ValueField::keyPressEvent(QKeyEvent* pEvent) {
    if (pEvent->key() == Qt::Key_Escape) {
        setText(m_strValue);
        emit Left();
    } else {
        QLineEdit::keyPressEvent(pEvent);
    }
}

void ValueField::paintEvent(QPaintEvent* pEvent) {
    QLineEdit::paintEvent(pEvent);
    QPainter painter(this);
    DrawFocusRing(painter, *this);
}

}
