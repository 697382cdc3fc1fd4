#include "app/viewer/NoticeBar.h"

#include <QAction>
#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <utility>

#include "app/viewer/Announce.h"
#include "app/viewer/FocusRing.h"
#include "app/viewer/GlyphButton.h"

namespace velko::viewer {

namespace {
constexpr int kWatchMs = 2'000;
constexpr int kOwnMoveMs = 700; // within which the notice's coming has moved the pages
}

NoticeBar::NoticeBar(QWidget* pParent)
    : QFrame(pParent), m_pText(new QLabel(this)), m_pYes(new TextButton(this)) {
    MakeAlert(*this);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    setFrameStyle(QFrame::StyledPanel);
    m_pText->setForegroundRole(QPalette::ToolTipText);
    m_pText->setTextFormat(Qt::PlainText);
    m_pText->setWordWrap(true);
    m_pText->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* pClose = new GlyphButton(Glyph::Close, nullptr, this);
    pClose->setAccessibleName("Close");
    pClose->setToolTip("Close (Esc)");
    auto* pLayout = new QHBoxLayout(this);
    pLayout->setContentsMargins(12, 4, 6, 4);
    pLayout->addWidget(m_pText, 1);
    pLayout->addWidget(m_pYes);
    pLayout->addStretch(0);
    pLayout->addWidget(pClose);
    connect(m_pYes, &QPushButton::clicked, this, &NoticeBar::Agree);
    connect(pClose, &QToolButton::clicked, this, &NoticeBar::Dismiss);
    m_watch.setInterval(kWatchMs);
    connect(&m_watch, &QTimer::timeout, this, &NoticeBar::CheckStanding);
    hide();
}

void NoticeBar::Show(Kind eKind, const QString& strText, const QString& strYes) {
    m_eKind = eKind;
    m_since.start();
    m_fnYes = nullptr;
    m_pText->setText(strText);
    m_pYes->setText(strYes);
    m_pYes->setVisible(!strYes.isEmpty());
    Announce(*this, strText);
    show();
    raise();
    emit Changed();
}

int NoticeBar::RoomFor(int nWidth) const {
    return layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(nWidth)
                                         : sizeHint().height();
}

void NoticeBar::Tell(const QString& strText) {
    Show(Kind::Told, strText, {});
}

void NoticeBar::TellWhile(const QString& strText, std::function<bool()> fnHolds, Offer offer) {
    m_strStanding = strText;
    m_standingOffer = std::move(offer);
    m_fnHolds = std::move(fnHolds);
    m_watch.start();
    if (isHidden() || m_eKind == Kind::Standing) {
        ShowStanding();
    }
}

void NoticeBar::ShowStanding() {
    Show(Kind::Standing, m_strStanding, m_standingOffer.strYes);
    m_fnYes = m_standingOffer.fnYes;
}

void NoticeBar::CheckStanding() {
    if (m_fnHolds && m_fnHolds()) {
        return;
    }
    m_fnHolds = nullptr;
    m_watch.stop();
    if (m_eKind == Kind::Standing) {
        Withdraw();
    }
}

void NoticeBar::Ask(const QString& strText, const QString& strYes, std::function<void()> fnYes) {
    Show(Kind::Told, strText, strYes);
    m_fnYes = [this, fnYes = std::move(fnYes)] {
        Dismiss();
        fnYes();
    };
    m_pYes->setFocus();
}

void NoticeBar::Agree() {
    if (const auto fnYes = m_fnYes) { // it may put the next question
        fnYes();
    }
}

// What stands comes up again behind it.
void NoticeBar::Withdraw() {
    m_fnYes = nullptr;
    if (isHidden()) {
        return;
    }
    if (m_fnHolds && m_eKind != Kind::Standing) {
        ShowStanding();
        return;
    }
    const bool bHadKeys = isAncestorOf(QApplication::focusWidget());
    hide();
    emit Changed();
    if (bHadKeys) {
        emit KeysFree();
    }
}

void NoticeBar::Dismiss() {
    if (m_eKind == Kind::Standing) {
        m_fnHolds = nullptr;
    }
    Withdraw();
}

void NoticeBar::OnDone() {
    if (IsPassing()) {
        Withdraw();
    }
}

void NoticeBar::OnPageChanged() {
    if (IsPassing() && m_since.hasExpired(kOwnMoveMs)) {
        Withdraw();
    }
}

void NoticeBar::OnDocument() {
    if (m_eKind != Kind::Standing) {
        Withdraw();
    }
}

QString NoticeBar::Text() const {
    return isHidden() ? QString() : m_pText->text();
}

void NoticeBar::keyPressEvent(QKeyEvent* pEvent) {
    if (pEvent->key() == Qt::Key_Escape) {
        Dismiss();
    } else if (pEvent->key() == Qt::Key_Return || pEvent->key() == Qt::Key_Enter) {
        Agree();
    } else {
        QFrame::keyPressEvent(pEvent);
    }
}

}
