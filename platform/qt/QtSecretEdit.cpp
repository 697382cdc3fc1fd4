#include "platform/qt/QtSecretEdit.h"

#include <QEvent>
#include <string_view>

namespace Platform::Qt {

namespace {

constexpr int kRoom = 512; // letters
constexpr int kHintAlpha = 150;

}

QtSecretEdit::QtSecretEdit(QWidget* pParent) : QLineEdit(pParent) {
    setEchoMode(QLineEdit::Password);
    setInputMethodHints(::Qt::ImhHiddenText | ::Qt::ImhSensitiveData | ::Qt::ImhNoPredictiveText |
                        ::Qt::ImhNoAutoUppercase);
    MakeRoom();
    UseHintColor();
    connect(this, &QLineEdit::textChanged, this, &QtSecretEdit::Tell);
}

QtSecretEdit::~QtSecretEdit() {
    m_bSetting = true;
    WipeText();
}

void QtSecretEdit::changeEvent(QEvent* pEvent) {
    QLineEdit::changeEvent(pEvent);
    if (pEvent->type() == QEvent::PaletteChange) {
        UseHintColor();
    }
}

// The colour that a dark desktop brings along is often that of a light one.
void QtSecretEdit::UseHintColor() {
    QColor color = palette().color(QPalette::Text);
    color.setAlpha(kHintAlpha);
    if (palette().color(QPalette::PlaceholderText) != color) {
        QPalette hint;
        hint.setColor(QPalette::PlaceholderText, color);
        setPalette(hint);
    }
}

// Without the line's end that a text from the clipboard may have.
void QtSecretEdit::Tell() {
    if (m_bSetting || !OnTyped) {
        return;
    }
    QByteArray bytes = text().toUtf8();
    const std::string_view all(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    OnTyped(SecretText(all.substr(0, all.find_last_not_of("\r\n") + 1)));
    Wipe(bytes.data(), static_cast<std::size_t>(bytes.size()));
}

void QtSecretEdit::SetSecret(const SecretText& secret) {
    m_bSetting = true;
    WipeText();
    MakeRoom();
    if (!secret.IsEmpty()) {
        QString strText = QString::fromStdString(secret.Text());
        insert(strText);
        Wipe(strText.data(), static_cast<std::size_t>(strText.size()) * sizeof(QChar));
    }
    m_bSetting = false;
}

// The line's own memory, which `text` shares, and then the single letters that it
// remembers for undoing.
void QtSecretEdit::WipeText() {
    QString strText = text();
    const qsizetype nLength = strText.size();
    if (strText.data_ptr().d_ptr() != nullptr) { // else it is part of the program
        Wipe(const_cast<QChar*>(strText.constData()),
             static_cast<std::size_t>(nLength) * sizeof(QChar));
    }
    setText({});
    insert(QString(nLength, u'\u2022'));
    setText({});
}

// A removal keeps the memory of what was removed.
void QtSecretEdit::MakeRoom() {
    setText(QString(kRoom, u'\u2022'));
    clear();
}

}
