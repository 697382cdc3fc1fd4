#include "app/viewer/side/BookmarkPane.h"

#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QPainter>
#include <QStackedLayout>
#include <QStyledItemDelegate>
#include <algorithm>

#include "app/viewer/side/SideKeys.h"

namespace velko::viewer {

using vkit::BookmarkModel;

namespace {

constexpr int kRowRoom = 10; // above and below the letters together
constexpr int kGap = 8;      // around the page at the right

}

class BookmarkPane::Rows : public QStyledItemDelegate {
public:
    explicit Rows(BookmarkPane& pane) : QStyledItemDelegate(&pane), m_pane(pane) {}

    void paint(QPainter* pPainter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const QString strPage = PageOf(index);
        const int nPage = option.fontMetrics.horizontalAdvance(strPage) + 2 * kGap;
        QStyleOptionViewItem name = option;
        initStyleOption(&name, index);
        name.text = option.fontMetrics.elidedText(name.text, Qt::ElideRight,
                                                  option.rect.width() - nPage - kGap);
        option.widget->style()->drawControl(QStyle::CE_ItemViewItem, &name, pPainter,
                                            option.widget);
        const bool bChosen = option.state.testFlag(QStyle::State_Selected);
        pPainter->setPen(
            option.palette.color(bChosen ? QPalette::HighlightedText : QPalette::Text));
        pPainter->drawText(option.rect.adjusted(0, 0, -kGap, 0), Qt::AlignRight | Qt::AlignVCenter,
                           strPage);
    }
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        return {0, QStyledItemDelegate::sizeHint(option, index).height() + kRowRoom};
    }

private:
    QString PageOf(const QModelIndex& index) const {
        return m_pane.m_facts.LabelOf(index.data(BookmarkModel::PageRole).toInt());
    }

    BookmarkPane& m_pane;
};

BookmarkPane::BookmarkPane(vkit::ViewBookmarks& bookmarks, vkit::DocFacts& facts, QWidget* pParent)
    : QWidget(pParent),
      m_bookmarks(bookmarks),
      m_facts(facts),
      m_model(bookmarks, nullptr),
      m_pLayers(new QStackedLayout(this)),
      m_pList(new QListView(this)),
      m_pNone(new QLabel(this)) {
    m_pNone->setText(QStringLiteral("No bookmarks yet. Ctrl+B puts one at the place in sight."));
    m_pNone->setAlignment(Qt::AlignCenter);
    m_pNone->setWordWrap(true);
    m_pNone->setMargin(12);
    m_pNone->setFocusPolicy(Qt::TabFocus); // the keys come somewhere, and Escape leads back
    MakeList();
    m_pLayers->addWidget(m_pNone);
    m_pLayers->addWidget(m_pList);
    connect(&m_bookmarks, &vkit::ViewBookmarks::Changed, this, &BookmarkPane::ShowWhatThereIs);
    connect(&m_facts, &vkit::DocFacts::LabelsRead, m_pList->viewport(),
            qOverload<>(&QWidget::update));
    ShowWhatThereIs();
}

void BookmarkPane::MakeList() {
    m_pList->setModel(&m_model);
    m_pList->setItemDelegate(new Rows(*this));
    m_pList->setFrameShape(QFrame::NoFrame);
    m_pList->setUniformItemSizes(true);
    m_pList->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_pList->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_pList->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_pList->setAccessibleName(QStringLiteral("Bookmarks"));
    m_pList->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_pList, &QWidget::customContextMenuRequested, this, &BookmarkPane::OpenMenu);
    new SideKeys(*m_pList, [this](const QModelIndex& index) { m_bookmarks.Goto(index.row()); });
    m_pList->installEventFilter(this); // these keys first
}

void BookmarkPane::ShowWhatThereIs() {
    const bool bKeys = m_pNone->hasFocus() || m_pList->hasFocus();
    QWidget* const pShown = m_model.rowCount() > 0 ? static_cast<QWidget*>(m_pList) : m_pNone;
    m_pLayers->setCurrentWidget(pShown);
    setFocusProxy(pShown);
    if (bKeys) {
        pShown->setFocus();
    }
}

bool BookmarkPane::eventFilter(QObject* /*pWatched*/, QEvent* pEvent) {
    if (pEvent->type() != QEvent::ShortcutOverride && pEvent->type() != QEvent::KeyPress) {
        return false;
    }
    const int nKey = static_cast<QKeyEvent*>(pEvent)->key();
    if (nKey != Qt::Key_F2 && nKey != Qt::Key_Delete) {
        return false;
    }
    pEvent->accept();
    if (pEvent->type() == QEvent::KeyPress) {
        nKey == Qt::Key_F2 ? Rename() : Remove();
    }
    return true;
}

void BookmarkPane::OpenMenu(QPoint pt) {
    const QModelIndex index = m_pList->indexAt(pt);
    if (!index.isValid()) {
        return;
    }
    m_pList->setCurrentIndex(index);
    auto* const pMenu = new QMenu(this);
    pMenu->setAttribute(Qt::WA_DeleteOnClose);
    pMenu->addAction("&Go there", this,
                     [this] { m_bookmarks.Goto(m_pList->currentIndex().row()); });
    pMenu->addAction("&Rename\tF2", this, &BookmarkPane::Rename);
    pMenu->addAction("&Delete\tDel", this, &BookmarkPane::Remove);
    pMenu->popup(m_pList->viewport()->mapToGlobal(pt));
}

void BookmarkPane::Rename() {
    if (m_pList->currentIndex().isValid()) {
        m_pList->edit(m_pList->currentIndex());
    }
}

// The keys stay at the place in the list.
void BookmarkPane::Remove() {
    const int nRow = m_pList->currentIndex().row();
    m_bookmarks.Remove(nRow);
    m_pList->setCurrentIndex(m_model.index(std::min(nRow, m_model.rowCount() - 1)));
}

}
