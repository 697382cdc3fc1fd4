#include "app/viewer/find/FindField.h"

#include <QKeyEvent>
#include <QPainter>
#include <utility>

#include "app/viewer/FocusRing.h"

namespace velko::viewer {

namespace {

constexpr int kMostLetters = 1'000;
constexpr int kDark = 128; // of a colour's lightness

// The window's commands that the field would take for itself.
bool IsOfThePages(const QKeyEvent& event) {
    return event.modifiers() == Qt::ControlModifier &&
           (event.key() == Qt::Key_Home || event.key() == Qt::Key_End);
}

}

FindField::FindField(QWidget* pParent) : QLineEdit(pParent) {
    setMaxLength(kMostLetters);
    setClearButtonEnabled(true);
    setPlaceholderText("Find in the document");
    setAccessibleName("Find in the document");
}

void FindField::SetMissing(bool bMissing) {
    if (std::exchange(m_bMissing, bMissing) != bMissing) {
        ShowMissing();
    }
}

// The application's palette may have gone into the dark, or out of it.
void FindField::ShowMissing() {
    QPalette wanted;
    if (m_bMissing) {
        const bool bDark = wanted.color(QPalette::Base).lightness() < kDark;
        wanted.setColor(QPalette::Base, bDark ? QColor(82, 34, 38) : QColor(255, 224, 222));
    }
    if (palette().color(QPalette::Base) != wanted.color(QPalette::Base)) {
        setPalette(m_bMissing ? wanted : QPalette());
    }
}

void FindField::changeEvent(QEvent* pEvent) {
    if (pEvent->type() == QEvent::PaletteChange) {
        ShowMissing();
    }
    QLineEdit::changeEvent(pEvent);
}

bool FindField::event(QEvent* pEvent) {
    if (pEvent->type() == QEvent::ShortcutOverride &&
        IsOfThePages(*static_cast<QKeyEvent*>(pEvent))) {
        pEvent->ignore();
        return true;
    }
    return QLineEdit::event(pEvent);
}

void FindField::keyPressEvent(QKeyEvent* pEvent) {
    switch (pEvent->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            emit StepWanted(pEvent->modifiers().testFlag(Qt::ShiftModifier));
            break;
        case Qt::Key_PageUp:
            emit ScreensWanted(-1);
            break;
        case Qt::Key_PageDown:
            emit ScreensWanted(1);
            break;
        case Qt::Key_Escape:
            emit Left();
            break;
        default:
            QLineEdit::keyPressEvent(pEvent);
    }
}

void FindField::paintEvent(QPaintEvent* pEvent) {
    QLineEdit::paintEvent(pEvent);
    QPainter painter(this);
    DrawFocusRing(painter, *this);
}

}
