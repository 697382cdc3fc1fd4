#include "app/viewer/keys/KeyField.h"

#include <QKeyEvent>

namespace velko::viewer {

namespace {

bool IsHeldOnly(int nKey) {
    return nKey == Qt::Key_Control || nKey == Qt::Key_Shift || nKey == Qt::Key_Alt ||
           nKey == Qt::Key_Meta || nKey == Qt::Key_AltGr || nKey == Qt::Key_CapsLock ||
           nKey == Qt::Key_unknown || nKey == 0;
}

// Shift is a part of the sign where it makes another one, as of "?".
QKeySequence KeyOf(const QKeyEvent& event) {
    Qt::KeyboardModifiers modifiers =
        event.modifiers() & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
    const QString strText = event.text();
    const bool bSign = event.key() > Qt::Key_Space && event.key() < Qt::Key_Escape &&
                       (event.key() < Qt::Key_A || event.key() > Qt::Key_Z);
    if (bSign) {
        modifiers &= ~Qt::ShiftModifier;
    }
    return QKeySequence(QKeyCombination(modifiers, static_cast<Qt::Key>(event.key())));
}

}

KeyField::KeyField(QWidget* pParent) : QLineEdit(pParent) {
    setReadOnly(true);
    setPlaceholderText("Press the new key");
    setAccessibleName("New key");
    setContextMenuPolicy(Qt::NoContextMenu);
}

// Keys that are commands elsewhere are none here.
bool KeyField::event(QEvent* pEvent) {
    if (pEvent->type() == QEvent::ShortcutOverride) {
        pEvent->accept();
        return true;
    }
    if (pEvent->type() != QEvent::KeyPress) {
        return QLineEdit::event(pEvent);
    }
    const auto& key = *static_cast<QKeyEvent*>(pEvent);
    if (key.key() == Qt::Key_Escape) {
        emit GivenUp();
    } else if (!IsHeldOnly(key.key()) && !key.isAutoRepeat()) {
        emit Taken(KeyOf(key));
    }
    return true;
}

void KeyField::focusOutEvent(QFocusEvent* pEvent) {
    QLineEdit::focusOutEvent(pEvent);
    emit GivenUp();
}

}
