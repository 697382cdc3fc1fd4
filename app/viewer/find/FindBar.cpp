#include "app/viewer/find/FindBar.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <algorithm>

#include "app/viewer/Announce.h"
#include "app/viewer/GlyphButton.h"
#include "app/viewer/MenuStyle.h"
#include "app/viewer/find/FindField.h"

namespace velko::viewer {

namespace {

// From what stays to what goes first.
enum Rank { kStays, kSteps, kList, kChoices };

constexpr int kLeastField = 130; // Qt's units
constexpr int kMostField = 340;

}

FindBar::FindBar(QAction* pNext, QAction* pPrevious, QWidget* pParent)
    : QWidget(pParent),
      m_pLayout(new QHBoxLayout(this)),
      m_pField(new FindField(this)),
      m_pCount(new QLabel(this)) {
    m_pLayout->setContentsMargins(10, 4, 6, 5);
    m_pLayout->setSpacing(4);
    m_pField->setMinimumWidth(kLeastField);
    m_pField->setMaximumWidth(kMostField);
    Add(m_pField, kStays, 1);
    m_pCount->setTextFormat(Qt::PlainText);
    m_pCount->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    MakeAlert(*m_pCount);
    Add(new GlyphButton(Glyph::Up, pPrevious, this), kSteps);
    Add(new GlyphButton(Glyph::Down, pNext, this), kSteps);
    m_pLayout->addWidget(m_pCount, 1);
    MakeChoices();
    auto* const pClose = new GlyphButton(Glyph::Close, nullptr, this);
    pClose->setAccessibleName("Close the search");
    pClose->setToolTip("Close (Esc)");
    Add(pClose, kStays);
    connect(pClose, &QToolButton::clicked, this, &FindBar::CloseWanted);
    connect(m_pField, &QLineEdit::textChanged, this, &FindBar::Changed);
    connect(m_pField, &FindField::StepWanted, this, &FindBar::StepWanted);
    connect(m_pField, &FindField::ScreensWanted, this, &FindBar::ScreensWanted);
    connect(m_pField, &FindField::Left, this, &FindBar::CloseWanted);
}

void FindBar::Add(QWidget* pWidget, int nRank, int nStretch) {
    m_pLayout->addWidget(pWidget, nStretch);
    m_parts.push_back({pWidget, nRank});
}

QAction* FindBar::AddChoice(const QString& strText) {
    auto* const pAction = new QAction(strText, this);
    pAction->setCheckable(true);
    connect(pAction, &QAction::toggled, this, &FindBar::Changed);
    return pAction;
}

void FindBar::MakeChoices() {
    m_pCase = AddChoice("Match &case");
    m_pWords = AddChoice("&Whole words");
    m_pAccents = AddChoice("Exact &accents");
    m_pList = new QAction("&List of hits", this);
    m_pList->setCheckable(true);
    connect(m_pList, &QAction::triggered, this, &FindBar::ListWanted);
    Add(new GlyphButton(Glyph::MatchCase, m_pCase, this), kChoices);
    Add(new GlyphButton(Glyph::WholeWords, m_pWords, this), kChoices);
    Add(new GlyphButton(Glyph::List, m_pList, this), kList);
    auto* const pMore = new GlyphButton(Glyph::More, nullptr, this);
    pMore->setAccessibleName("How to search");
    pMore->setToolTip("How to search");
    Add(pMore, kStays);
    connect(pMore, &QToolButton::clicked, this, [this, pMore] {
        auto* const pMenu = new QMenu(this);
        pMenu->setAttribute(Qt::WA_DeleteOnClose);
        pMenu->addActions({m_pCase, m_pWords, m_pAccents});
        pMenu->addSeparator();
        pMenu->addAction(m_pList);
        StyleMenu(*pMenu);
        const int nLeft = pMore->width() - pMenu->sizeHint().width();
        pMenu->popup(pMore->mapToGlobal(QPoint(nLeft, pMore->height() + 2)));
    });
}

QString FindBar::Text() const {
    return m_pField->text();
}

void FindBar::SetText(const QString& strText) {
    m_pField->setText(strText);
}

vkit::SearchOptions FindBar::Options() const {
    return {m_pCase->isChecked(), m_pWords->isChecked(), m_pAccents->isChecked()};
}

void FindBar::TakeKeys() {
    m_pField->setFocus(Qt::ShortcutFocusReason);
    m_pField->selectAll();
}

void FindBar::Tell(const QString& strText, bool bMissing, const QString& strSpoken) {
    m_pCount->setText(strText);
    m_pCount->setToolTip(strText);
    m_pField->SetMissing(bMissing);
    if (!strSpoken.isEmpty()) {
        Announce(*m_pCount, strSpoken);
    }
}

QString FindBar::Told() const {
    return m_pCount->text();
}

void FindBar::SetListShown(bool bShown) {
    m_pList->setChecked(bShown);
}

// --- room ------------------------------------------------------------------

int FindBar::WidthUpTo(int nRank) const {
    constexpr int kCountWidth = 110;
    int nWidth = kCountWidth + kLeastField;
    for (const Part& part : m_parts) {
        if (part.nRank <= nRank && part.pWidget != m_pField) {
            nWidth += part.pWidget->sizeHint().width() + m_pLayout->spacing();
        }
    }
    return nWidth;
}

void FindBar::ShowWhatFits() {
    int nRank = kChoices;
    while (nRank > kStays && WidthUpTo(nRank) > width()) {
        --nRank;
    }
    for (const Part& part : m_parts) {
        part.pWidget->setVisible(part.nRank <= nRank);
    }
}

void FindBar::resizeEvent(QResizeEvent* /*pEvent*/) {
    ShowWhatFits();
}

void FindBar::paintEvent(QPaintEvent* /*pEvent*/) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(0, height() - 1, width(), height() - 1);
}

// From whatever of the bar has the keys.
void FindBar::keyPressEvent(QKeyEvent* pEvent) {
    if (pEvent->key() == Qt::Key_Escape) {
        emit CloseWanted();
    } else {
        QWidget::keyPressEvent(pEvent);
    }
}

}
