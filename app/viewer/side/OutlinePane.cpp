#include "app/viewer/side/OutlinePane.h"

#include <QLabel>
#include <QPainter>
#include <QStackedLayout>
#include <QStyledItemDelegate>
#include <QTreeView>
#include <cmath>

#include "app/viewer/side/Legible.h"
#include "app/viewer/side/SideKeys.h"
#include "widget/VelkoPdfView.h"
#include "widget/facts/ReadingPlace.h"

namespace velko::viewer {

using vkit::DocFacts;
using vkit::DocumentHeight;
using vkit::Outline;
using vkit::VelkoPdfView;

namespace {

constexpr int kFollowMs = 60; // the pages may move many times in a second
constexpr int kIndent = 14;
constexpr int kRowRoom = 8; // above and below the letters together

bool AreSame(const DocumentHeight& one, const DocumentHeight& other) {
    constexpr float kNear = 0.002F;
    return one.nPage == other.nPage && std::abs(one.fShare - other.fShare) < kNear;
}

}

class OutlinePane::Rows : public QStyledItemDelegate {
public:
    explicit Rows(OutlinePane& pane) : QStyledItemDelegate(&pane), m_pane(pane) {}

    void paint(QPainter* pPainter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        if (m_pane.m_marked == index) {
            DrawReadingMark(*pPainter, option.rect, option.palette);
        }
        QStyledItemDelegate::paint(pPainter, option, index);
    }
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        return QStyledItemDelegate::sizeHint(option, index) + QSize(0, kRowRoom);
    }

protected:
    void initStyleOption(QStyleOptionViewItem* pOption, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(pOption, index);
        if (!m_pane.m_pTree->hasFocus()) { // the mark alone is of use then
            pOption->state.setFlag(QStyle::State_Selected, false);
        }
        const QVariant color = index.data(Qt::ForegroundRole);
        if (color.isValid()) {
            pOption->palette.setColor(
                QPalette::Text,
                LegibleOn(m_pane.palette().color(QPalette::Base), color.value<QColor>(),
                          m_pane.palette().color(QPalette::Text)));
        }
    }

private:
    OutlinePane& m_pane;
};

OutlinePane::OutlinePane(VelkoPdfView& view, DocFacts& facts, QWidget* pParent)
    : QWidget(pParent),
      m_view(view),
      m_facts(facts),
      m_pLayers(new QStackedLayout(this)),
      m_pTree(new QTreeView(this)),
      m_pNone(new QLabel(this)) {
    MakeTree();
    m_pNone->setAlignment(Qt::AlignCenter);
    m_pNone->setWordWrap(true);
    m_pNone->setMargin(12);
    m_pNone->setFocusPolicy(Qt::TabFocus); // the keys come somewhere, and Escape leads back
    m_pLayers->addWidget(m_pNone);
    m_pLayers->addWidget(m_pTree);
    m_follow.setSingleShot(true);
    m_follow.setInterval(kFollowMs);
    m_follow.callOnTimeout(this, &OutlinePane::FollowReading);
    connect(&m_facts, &DocFacts::OutlineRead, this, &OutlinePane::Fill);
    connect(&m_facts, &DocFacts::Forgotten, this, &OutlinePane::Clear);
    connect(
        &m_view, &VelkoPdfView::Painted, this,
        [this] {
            if (isVisible() && !m_follow.isActive()) {
                m_follow.start();
            }
        },
        Qt::QueuedConnection);
    Clear();
}

void OutlinePane::MakeTree() {
    m_pTree->setModel(&m_model);
    m_pTree->setItemDelegate(new Rows(*this));
    m_pTree->setHeaderHidden(true);
    m_pTree->setUniformRowHeights(true);
    m_pTree->setIndentation(kIndent);
    m_pTree->setFrameShape(QFrame::NoFrame);
    m_pTree->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_pTree->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_pTree->setExpandsOnDoubleClick(false); // two clicks go there twice
    m_pTree->setAccessibleName(QStringLiteral("Outline"));
    new SideKeys(*m_pTree, [this](const QModelIndex& index) { Take(index); });
    connect(m_pTree, &QTreeView::collapsed, this, &OutlinePane::FollowReading);
    connect(m_pTree, &QTreeView::expanded, this, &OutlinePane::FollowReading);
}

void OutlinePane::showEvent(QShowEvent* /*pEvent*/) {
    Fill();
    m_follow.start();
}

// --- what is shown ---------------------------------------------------------

void OutlinePane::Clear() {
    m_bFilled = false;
    m_taken.reset();
    m_marked = QModelIndex();
    m_model.Show(std::make_shared<const Outline>());
    m_pNone->clear();
    m_pLayers->setCurrentWidget(m_pNone);
    setFocusProxy(m_pNone);
    if (isVisible()) {
        Fill();
    }
}

void OutlinePane::Fill() {
    const auto pOutline = isVisible() && !m_bFilled ? m_facts.FindOutline() : nullptr;
    if (!pOutline) {
        return;
    }
    m_bFilled = true;
    if (pOutline->IsEmpty()) {
        m_pNone->setText(QStringLiteral("This document has no outline."));
        return;
    }
    const bool bKeys = m_pNone->hasFocus();
    m_model.Show(pOutline);
    OpenAsToldBy(*pOutline);
    m_pLayers->setCurrentWidget(m_pTree);
    setFocusProxy(m_pTree);
    if (bKeys) {
        m_pTree->setFocus();
    }
    FollowReading();
}

// The layout of the tree waits meanwhile, so that many of them take no time.
void OutlinePane::OpenAsToldBy(const Outline& outline) {
    const QSignalBlocker blocker(m_pTree);
    for (int nEntry = 0; nEntry < outline.Count(); ++nEntry) {
        if (outline[nEntry].bOpen && outline.CountUnder(nEntry) > 0) {
            m_pTree->setExpanded(m_model.IndexOf(nEntry), true);
        }
    }
    if (outline.CountUnder(Outline::kRoot) == 1) { // a title over all of it
        m_pTree->setExpanded(m_model.IndexOf(0), true);
    }
}

// --- going there -----------------------------------------------------------

void OutlinePane::Take(const QModelIndex& index) {
    const int nEntry = m_model.EntryOf(index);
    const velko::pdf::LinkGoal goal = m_model.Shown()[nEntry];
    const bool bIsHere = m_model.Shown().HeightOf(nEntry).nPage >= 0;
    const QPointer<OutlinePane> pThis(this);
    m_view.FollowGoal(goal); // a handler of which may close the document
    if (pThis && bIsHere && m_bFilled) {
        m_taken = Taken{nEntry, vkit::ReadingPlaceOf(m_view)};
        FollowReading();
    }
}

// --- what is read ----------------------------------------------------------

int OutlinePane::EntryBeingRead() {
    const DocumentHeight here = vkit::ReadingPlaceOf(m_view);
    if (m_taken && !AreSame(m_taken->height, here)) {
        m_taken.reset();
    }
    return m_taken ? m_taken->nEntry : m_model.Shown().ReadAt(here);
}

QModelIndex OutlinePane::ShownRowOf(int nEntry) const {
    QModelIndex row = m_model.IndexOf(nEntry);
    for (QModelIndex above = row.parent(); above.isValid(); above = above.parent()) {
        if (!m_pTree->isExpanded(above)) {
            row = above;
        }
    }
    return row;
}

bool OutlinePane::IsInUse() const {
    return m_pTree->hasFocus() || m_pTree->underMouse();
}

void OutlinePane::FollowReading() {
    if (!m_bFilled || !isVisible() || m_model.Shown().IsEmpty()) {
        return;
    }
    const QModelIndex row = ShownRowOf(EntryBeingRead());
    if (m_marked != row) {
        m_marked = row;
        m_pTree->viewport()->update();
        if (row.isValid() && !IsInUse()) {
            m_pTree->scrollTo(row, QAbstractItemView::EnsureVisible);
        }
    }
}

}
