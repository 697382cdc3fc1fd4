#include "app/viewer/NoticeBar.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <utility>

#include "app/viewer/GlyphButton.h"

namespace velko::viewer {

namespace {
constexpr int kAnswerWidth = 180;
}

NoticeBar::NoticeBar(QWidget* pParent)
    : QFrame(pParent),
      m_pText(new QLabel(this)),
      m_pAnswer(new QLineEdit(this)),
      m_pYes(new QPushButton(this)) {
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    setFrameStyle(QFrame::StyledPanel);
    m_pText->setForegroundRole(QPalette::ToolTipText);
    m_pText->setTextFormat(Qt::PlainText);
    m_pText->setWordWrap(true);
    m_pText->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_pAnswer->setEchoMode(QLineEdit::Password);
    m_pAnswer->setAccessibleName("Password");
    m_pAnswer->setMaximumWidth(kAnswerWidth);
    auto* pClose = new GlyphButton(Glyph::Close, nullptr, this);
    pClose->setAccessibleName("Close");
    pClose->setToolTip("Close (Esc)");
    auto* pLayout = new QHBoxLayout(this);
    pLayout->setContentsMargins(12, 4, 6, 4);
    pLayout->addWidget(m_pText, 1);
    pLayout->addWidget(m_pAnswer);
    pLayout->addWidget(m_pYes);
    pLayout->addWidget(pClose);
    connect(m_pYes, &QPushButton::clicked, this, &NoticeBar::Agree);
    connect(m_pAnswer, &QLineEdit::returnPressed, this, &NoticeBar::Agree);
    connect(pClose, &QToolButton::clicked, this, &NoticeBar::Dismiss);
    hide();
}

void NoticeBar::Show(const QString& strText, const QString& strYes) {
    m_fnYes = nullptr;
    m_fnCancel = nullptr;
    m_pText->setText(strText);
    m_pYes->setText(strYes);
    m_pYes->setVisible(!strYes.isEmpty());
    m_pAnswer->hide();
    emit Changed();
    show();
    raise();
}

int NoticeBar::RoomFor(int nWidth) const {
    return layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(nWidth)
                                         : sizeHint().height();
}

void NoticeBar::Tell(const QString& strText) {
    Show(strText, {});
}

void NoticeBar::Ask(const QString& strText, const QString& strYes, std::function<void()> fnYes) {
    Show(strText, strYes);
    m_fnYes = [this, fnYes = std::move(fnYes)] {
        Dismiss();
        fnYes();
    };
    m_pYes->setFocus();
}

void NoticeBar::AskPassword(const QString& strText, std::function<void(const QString&)> fnAnswer,
                            std::function<void()> fnCancel) {
    Show(strText, "Open");
    m_fnYes = [this, fnAnswer = std::move(fnAnswer)] { fnAnswer(m_pAnswer->text()); };
    m_fnCancel = std::move(fnCancel);
    m_pAnswer->clear();
    m_pAnswer->show();
    m_pAnswer->setFocus();
    emit Changed();
}

void NoticeBar::Agree() {
    if (const auto fnYes = m_fnYes) { // it may put the next question
        fnYes();
    }
}

void NoticeBar::Withdraw() {
    m_fnYes = nullptr;
    m_fnCancel = nullptr;
    m_pAnswer->clear();
    hide();
}

void NoticeBar::Dismiss() {
    const auto fnCancel = std::exchange(m_fnCancel, nullptr);
    Withdraw();
    if (fnCancel) {
        fnCancel();
    }
    emit Closed();
}

QString NoticeBar::Text() const {
    return isHidden() ? QString() : m_pText->text();
}

void NoticeBar::keyPressEvent(QKeyEvent* pEvent) {
    if (pEvent->key() == Qt::Key_Escape) {
        Dismiss();
    } else {
        QFrame::keyPressEvent(pEvent);
    }
}

}
