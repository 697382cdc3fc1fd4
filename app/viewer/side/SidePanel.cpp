#include "app/viewer/side/SidePanel.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QStackedLayout>
#include <algorithm>
#include <utility>

#include "app/viewer/GlyphButton.h"
#include "app/viewer/side/SideHandle.h"

namespace velko::viewer {

namespace {

constexpr int kHeadHeight = 38;
constexpr int kTabWidth = 32;

GlyphButton* MakeButton(Glyph eGlyph, const QString& strName, QWidget* pParent) {
    auto* const pButton = new GlyphButton(eGlyph, nullptr, pParent);
    pButton->SetWidth(kTabWidth);
    pButton->setToolTip(strName);
    pButton->setAccessibleName(strName);
    return pButton;
}

}

SidePanel::SidePanel(QWidget* pParent) : QWidget(pParent) {
    setAccessibleName(QStringLiteral("Side panel"));
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void SidePanel::MakeHead() {
    auto* const pColumn = new QVBoxLayout(this);
    pColumn->setContentsMargins(0, 0, SideHandle::kWidth, 0);
    pColumn->setSpacing(0);
    m_pHead = new QHBoxLayout;
    m_pHead->setContentsMargins(4, 4, 2, 4);
    m_pHead->setSpacing(1);
    m_pName = new QLabel(this);
    m_pName->setAlignment(Qt::AlignCenter);
    m_pName->setMinimumWidth(0);
    m_pName->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_pHead->addWidget(m_pName, 1);
    GlyphButton* const pClose = MakeButton(Glyph::Close, QStringLiteral("Close the panel"), this);
    connect(pClose, &QToolButton::clicked, this, &SidePanel::CloseWanted);
    m_pHead->addWidget(pClose);
    pColumn->addLayout(m_pHead);
    m_pPanes = new QStackedLayout;
    pColumn->addLayout(m_pPanes, 1);
    auto* const pHandle = new SideHandle(this);
    connect(pHandle, &SideHandle::WidthWanted, this, &SidePanel::WidthWanted);
    m_pHandle = pHandle;
    m_pHandle->setGeometry(width() - SideHandle::kWidth, 0, SideHandle::kWidth, height());
    m_pHandle->show();
}

SidePanel::Part* SidePanel::PartOf(SideTab eTab) {
    const auto it = std::find_if(m_parts.begin(), m_parts.end(),
                                 [eTab](const Part& part) { return part.tab.eTab == eTab; });
    return it == m_parts.end() ? nullptr : &*it;
}

void SidePanel::AddTab(Tab tab) {
    if (m_pHead == nullptr) {
        MakeHead();
    }
    const SideTab eTab = tab.eTab;
    GlyphButton* const pButton = MakeButton(tab.eGlyph, tab.strName, this);
    pButton->setCheckable(true);
    pButton->setAutoExclusive(true);
    connect(pButton, &QToolButton::clicked, this, [this, eTab] {
        ShowTab(eTab);
        emit TabChosen(eTab);
    });
    const auto after = std::find_if(m_parts.begin(), m_parts.end(),
                                    [eTab](const Part& part) { return part.tab.eTab > eTab; });
    m_pHead->insertWidget(static_cast<int>(after - m_parts.begin()), pButton);
    m_parts.insert(after, Part{std::move(tab), pButton});
}

void SidePanel::SetThere(SideTab eTab, bool bThere) {
    if (Part* const pPart = PartOf(eTab)) {
        pPart->bThere = bThere;
        pPart->pButton->setVisible(bThere);
        ShowName();
        if ((bThere ? m_wanted : m_current) == eTab) {
            ShowTab(m_wanted.value_or(eTab));
        }
    }
}

void SidePanel::ShowTab(SideTab eTab) {
    m_wanted = eTab;
    Part* pPart = PartOf(eTab);
    if (pPart == nullptr || !pPart->bThere) {
        const auto there = std::find_if(m_parts.begin(), m_parts.end(),
                                        [](const Part& part) { return part.bThere; });
        pPart = there == m_parts.end() ? nullptr : &*there;
    }
    if (pPart == nullptr) {
        return;
    }
    if (pPart->pPane == nullptr) {
        pPart->pPane = pPart->tab.fnMake(this);
        m_pPanes->addWidget(pPart->pPane);
    }
    m_current = pPart->tab.eTab;
    pPart->pButton->setChecked(true);
    ShowName();
    m_pPanes->setCurrentWidget(pPart->pPane);
}

// Of the tab that is shown, where the tabs leave room for all of it.
void SidePanel::ShowName() {
    const Part* const pPart = m_current ? PartOf(*m_current) : nullptr;
    const QString strName = pPart != nullptr ? pPart->tab.strName : QString();
    layout()->activate();
    const bool bFits = m_pName->fontMetrics().horizontalAdvance(strName) <= m_pName->width();
    m_pName->setText(bFits ? strName : QString());
}

QWidget* SidePanel::PaneOf(SideTab eTab) const {
    Part* const pPart = const_cast<SidePanel*>(this)->PartOf(eTab);
    return pPart != nullptr ? pPart->pPane : nullptr;
}

void SidePanel::TakeKeys() {
    if (QWidget* const pPane = m_current ? PaneOf(*m_current) : nullptr) {
        pPane->setFocus(Qt::ShortcutFocusReason);
    }
}

void SidePanel::keyPressEvent(QKeyEvent* pEvent) {
    if (pEvent->key() == Qt::Key_Escape) {
        emit PagesWanted();
    } else {
        QWidget::keyPressEvent(pEvent);
    }
}

void SidePanel::paintEvent(QPaintEvent* /*pEvent*/) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    if (m_pHead != nullptr) {
        painter.setPen(palette().color(QPalette::Mid));
        painter.drawLine(0, kHeadHeight - 1, width(), kHeadHeight - 1);
    }
}

void SidePanel::resizeEvent(QResizeEvent* /*pEvent*/) {
    if (m_pHandle != nullptr) {
        m_pHandle->setGeometry(width() - SideHandle::kWidth, 0, SideHandle::kWidth, height());
        m_pHandle->raise();
        ShowName();
    }
}

}
