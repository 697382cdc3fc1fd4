#include "app/viewer/StartPane.h"

#include <QLabel>
#include <QVBoxLayout>

#include "app/viewer/Announce.h"
#include "app/viewer/FocusRing.h"
#include "app/viewer/RecentList.h"

namespace velko::viewer {

namespace {

constexpr int kMargin = 24;
constexpr int kWidestList = 560;
constexpr int kLowPane = 420; // where less than a few high rows are in sight

}

StartPane::StartPane(QWidget* pParent) : QScrollArea(pParent) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    auto* const pInner = new QWidget(this);
    m_pText = new QLabel(pInner);
    MakeAlert(*m_pText);
    m_pText->setAlignment(Qt::AlignHCenter);
    m_pText->setWordWrap(true);
    m_pText->setTextFormat(Qt::RichText);
    m_pText->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_pText->setFocusPolicy(Qt::NoFocus);
    m_pOpen = new TextButton("Open a document…", pInner);
    m_pRecent = new RecentList(pInner);
    m_pRecent->setMaximumWidth(kWidestList);
    auto* const pList = new QHBoxLayout;
    pList->addStretch(1);
    pList->addWidget(m_pRecent, 100);
    pList->addStretch(1);
    auto* const pLayout = new QVBoxLayout(pInner);
    pLayout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    pLayout->setSpacing(kMargin / 2);
    pLayout->addStretch(1);
    pLayout->addWidget(m_pText);
    pLayout->addWidget(m_pOpen, 0, Qt::AlignHCenter);
    pLayout->addLayout(pList);
    pLayout->addStretch(1);
    setWidget(pInner);
    connect(m_pOpen, &QPushButton::clicked, this, &StartPane::OpenWanted);
    // Queued, as the rows have their places only then.
    connect(m_pRecent, &RecentList::KeysMoved, this, &StartPane::ShowKeys, Qt::QueuedConnection);
    connect(m_pRecent, &RecentList::Wanted, this, &StartPane::FileWanted);
}

void StartPane::Show(const QString& strTitle, const QString& strText) {
    m_pText->setText(QStringLiteral("<h3>%1</h3><p>%2</p>")
                         .arg(strTitle.toHtmlEscaped(),
                              strText.toHtmlEscaped().replace('\n', QStringLiteral("<br>"))));
    FillList();
    Announce(*m_pText, QStringLiteral("%1. %2").arg(strTitle, strText));
    show();
    raise();
}

void StartPane::FillList() {
    m_pRecent->Fill();
}

void StartPane::resizeEvent(QResizeEvent* pEvent) {
    m_pRecent->SetLow(height() < kLowPane);
    QScrollArea::resizeEvent(pEvent);
}

void StartPane::ShowKeys() {
    QWidget* const pKeys = m_pRecent->window()->focusWidget();
    if (pKeys != nullptr && m_pRecent->isAncestorOf(pKeys)) {
        ensureWidgetVisible(pKeys, 0, kMargin / 2);
    }
}

void StartPane::TakeKeys() {
    if (isHidden()) {
        return;
    }
    if (!m_pRecent->TakeKeys()) {
        m_pOpen->setFocus(Qt::TabFocusReason);
    }
}

QString StartPane::Text() const {
    return isHidden() ? QString() : m_pText->text();
}

}
