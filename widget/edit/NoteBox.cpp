#include "widget/edit/NoteBox.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

namespace velko::vkit {

namespace {

constexpr QSize kSize{280, 170};
constexpr int kMargin = 8; // to the annotation and to the parent's edges

// Paper of a note, by day and by night: letters at 12 to 1 and more.
QPalette PaperPalette() {
    const QColor paper(255, 248, 214);
    const QColor ink(38, 32, 8);
    QPalette palette;
    for (const auto eRole : {QPalette::Window, QPalette::Base, QPalette::Button}) {
        palette.setColor(eRole, paper);
    }
    for (const auto eRole : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(eRole, ink);
    }
    palette.setColor(QPalette::PlaceholderText, QColor(95, 84, 40));
    palette.setColor(QPalette::Mid, QColor(150, 130, 60));
    return palette;
}

}

NoteBox::NoteBox(QWidget* pParent)
    : QFrame(pParent),
      m_pEdit(new QPlainTextEdit(this)),
      m_pDelete(new QPushButton("De&lete", this)),
      m_pDone(new QPushButton("D&one", this)) {
    setFrameShape(QFrame::Box);
    setAutoFillBackground(true);
    setPalette(PaperPalette());
    setCursor(Qt::ArrowCursor);
    m_pEdit->setTabChangesFocus(true);
    m_pEdit->setFrameShape(QFrame::NoFrame);
    m_pEdit->setPlaceholderText("Write here");
    auto* const pButtons = new QHBoxLayout;
    pButtons->addWidget(m_pDelete);
    pButtons->addStretch(1);
    pButtons->addWidget(m_pDone);
    auto* const pLayout = new QVBoxLayout(this);
    pLayout->setContentsMargins(4, 4, 4, 4);
    pLayout->addWidget(m_pEdit);
    pLayout->addLayout(pButtons);
    for (QWidget* const pPart : {static_cast<QWidget*>(m_pEdit), static_cast<QWidget*>(m_pDelete),
                                 static_cast<QWidget*>(m_pDone)}) {
        pPart->installEventFilter(this);
    }
    connect(m_pEdit, &QPlainTextEdit::textChanged, this, &NoteBox::TextChanged);
    connect(m_pDone, &QPushButton::clicked, this, &NoteBox::Finish);
    connect(m_pDelete, &QPushButton::clicked, this, [this] {
        Close();
        emit DeleteWanted();
    });
    hide();
}

void NoteBox::Open(const QString& strTitle, const QString& strText, bool bReadOnly) {
    setAccessibleName(strTitle);
    m_pEdit->setAccessibleName(strTitle);
    m_pEdit->setReadOnly(bReadOnly);
    m_pDelete->setVisible(!bReadOnly);
    m_pEdit->setPlainText(strText);
    m_strOpened = Text(); // line ends are its own
    m_pEdit->moveCursor(QTextCursor::End);
    show();
    raise();
    m_pEdit->setFocus();
}

void NoteBox::PlaceBeside(const QRect& rcAnnot) {
    const QRect room = parentWidget()->rect().adjusted(kMargin, kMargin, -kMargin, -kMargin);
    const QSize size = kSize.boundedTo(room.size());
    int x = rcAnnot.right() + kMargin;
    if (x + size.width() > room.right() && rcAnnot.left() - kMargin - size.width() >= room.left()) {
        x = rcAnnot.left() - kMargin - size.width();
    }
    x = std::clamp(x, room.left(), std::max(room.left(), room.right() - size.width() + 1));
    const int y = std::clamp(rcAnnot.top(), room.top(),
                             std::max(room.top(), room.bottom() - size.height() + 1));
    setGeometry(QRect({x, y}, size));
}

QString NoteBox::Text() const {
    return m_pEdit->toPlainText();
}

bool NoteBox::IsChanged() const {
    return IsOpen() && Text() != m_strOpened;
}

void NoteBox::Finish() {
    if (IsOpen()) {
        const QString strText = Text();
        Close();
        emit Finished(strText);
    }
}

void NoteBox::Close() {
    const bool bHadKeys = isAncestorOf(QApplication::focusWidget());
    hide();
    if (bHadKeys) {
        parentWidget()->setFocus();
    }
}

// A window of another program, or a menu, that has the keys for a while ends nothing.
void NoteBox::GiveUpIfLeft() {
    const QWidget* const pFocus = QApplication::focusWidget();
    if (IsOpen() && pFocus != nullptr && !isAncestorOf(pFocus) && pFocus->window() == window()) {
        Finish();
    }
}

bool NoteBox::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pEvent->type() == QEvent::FocusOut) {
        QMetaObject::invokeMethod(this, &NoteBox::GiveUpIfLeft, Qt::QueuedConnection);
    } else if (pEvent->type() == QEvent::KeyPress || pEvent->type() == QEvent::ShortcutOverride) {
        auto& key = *static_cast<QKeyEvent*>(pEvent);
        const bool bReturn = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
        if (key.key() == Qt::Key_Escape ||
            (bReturn && key.modifiers().testFlag(Qt::ControlModifier))) {
            if (pEvent->type() == QEvent::KeyPress) {
                Finish();
            }
            key.accept();
            return true;
        }
    }
    return QFrame::eventFilter(pWatched, pEvent);
}

// Keys that nobody in the box wants are not the pages'.
void NoteBox::keyPressEvent(QKeyEvent* pEvent) {
    pEvent->accept();
}

}
