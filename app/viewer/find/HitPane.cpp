#include "app/viewer/find/HitPane.h"

#include <QLabel>
#include <QListView>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTextLayout>
#include <algorithm>
#include <utility>

#include "app/viewer/side/Legible.h"
#include "app/viewer/side/SideKeys.h"

namespace velko::viewer {

using vkit::HitModel;
using vkit::ViewSearch;

namespace {

constexpr int kRowRoom = 10; // above and below the letters together
constexpr int kMargin = 8;

// The line from shortly before the hit on, with the hit's letters bold.
void Lay(QTextLayout& layout, const QModelIndex& index) {
    constexpr int kMostBefore = 14; // letters
    QString strText = index.data().toString();
    int nFirst = index.data(HitModel::FirstRole).toInt();
    int nCut = nFirst - kMostBefore;
    if (nCut > 0) {
        while (nCut < nFirst && strText[nCut].isSpace()) {
            ++nCut;
        }
        strText = QStringLiteral("…") + strText.mid(nCut);
        nFirst -= nCut - 1;
    }
    QTextLayout::FormatRange hit;
    hit.start = nFirst;
    hit.length = index.data(HitModel::LengthRole).toInt();
    hit.format.setFontWeight(QFont::Bold);
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    layout.setText(strText);
    layout.setTextOption(option);
    layout.setFormats({hit});
    layout.beginLayout();
    layout.createLine();
    layout.endLayout();
}

}

class HitPane::Rows : public QStyledItemDelegate {
public:
    explicit Rows(HitPane& pane) : QStyledItemDelegate(&pane), m_pane(pane) {}

    void paint(QPainter* pPainter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const bool bChosen =
            option.state.testFlag(QStyle::State_Selected) && m_pane.m_pList->hasFocus();
        if (bChosen) {
            pPainter->fillRect(option.rect, option.palette.highlight());
        } else if (IsCurrent(index)) {
            DrawReadingMark(*pPainter, option.rect, option.palette);
        }
        const QColor letters =
            option.palette.color(bChosen ? QPalette::HighlightedText : QPalette::Text);
        const QRect rc = option.rect.adjusted(kMargin, 0, -kMargin, 0);
        const QString strPage = index.data(HitModel::PageRole).toString();
        const int nPage = option.fontMetrics.horizontalAdvance(strPage);
        QColor faint = letters;
        faint.setAlphaF(0.7);
        pPainter->setPen(faint);
        pPainter->drawText(rc, Qt::AlignRight | Qt::AlignVCenter, strPage);
        PaintLine(*pPainter, rc.adjusted(0, 0, -nPage - kMargin, 0), option, index, letters);
    }
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
        return {1, option.fontMetrics.height() + kRowRoom};
    }

private:
    bool IsCurrent(const QModelIndex& index) const {
        const auto current = m_pane.m_search.Current();
        return current && m_pane.m_model.RowOf(*current) == index.row();
    }
    static void PaintLine(QPainter& painter, const QRect& rc, const QStyleOptionViewItem& option,
                          const QModelIndex& index, const QColor& letters) {
        QTextLayout layout;
        layout.setFont(option.font);
        Lay(layout, index);
        painter.save();
        painter.setClipRect(rc);
        painter.setPen(letters);
        layout.draw(&painter,
                    QPointF(rc.x(), rc.y() + (rc.height() - layout.boundingRect().height()) / 2.0));
        painter.restore();
    }

    HitPane& m_pane;
};

HitPane::HitPane(ViewSearch& search, vkit::PageTexts& texts, std::function<QString(int)> fnPageName,
                 QWidget* pParent)
    : QWidget(pParent),
      m_search(search),
      m_model(search, texts, std::move(fnPageName)),
      m_pList(new QListView(this)),
      m_pNothing(new QLabel(this)),
      m_pRest(new QLabel("There are more hits than are listed.", this)) {
    m_pList->setModel(&m_model);
    m_pList->setItemDelegate(new Rows(*this));
    m_pList->setUniformItemSizes(true);
    m_pList->setFrameStyle(QFrame::NoFrame);
    m_pList->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_pList->setAccessibleName("List of hits");
    m_pNothing->setWordWrap(true);
    m_pNothing->setMargin(12);
    m_pNothing->setAlignment(Qt::AlignTop | Qt::AlignHCenter);
    m_pRest->setWordWrap(true);
    m_pRest->setMargin(kMargin);
    setFocusProxy(m_pList);
    new SideKeys(*m_pList,
                 [this](const QModelIndex& index) { m_search.Show(m_model.PlaceOf(index.row())); });
    connect(&m_search, &ViewSearch::Changed, this, &HitPane::Follow);
    Follow();
}

void HitPane::resizeEvent(QResizeEvent* /*pEvent*/) {
    PlaceParts();
}

void HitPane::PlaceParts() {
    const int nRest = m_pRest->isHidden() ? 0 : m_pRest->heightForWidth(width());
    m_pList->setGeometry(0, 0, width(), height() - nRest);
    m_pRest->setGeometry(0, height() - nRest, width(), nRest);
    m_pNothing->setGeometry(rect());
}

void HitPane::Follow() {
    const bool bAsked = !m_search.Text().isEmpty();
    m_pNothing->setText(!bAsked                         ? "Press Ctrl+F to search the document."
                        : m_search.Hits().IsSearching() ? "Searching…"
                                                        : "Nothing is found.");
    m_pNothing->setVisible(m_model.rowCount() == 0);
    m_pList->setVisible(m_model.rowCount() > 0);
    m_pRest->setVisible(m_model.rowCount() > 0 && !m_model.IsWhole());
    PlaceParts();
    FollowCurrent();
    m_pList->viewport()->update();
}

// While the list has not the keys.
void HitPane::FollowCurrent() {
    const auto current = m_search.Current();
    const QModelIndex index = current ? m_model.index(m_model.RowOf(*current)) : QModelIndex();
    if (index.isValid() && !m_pList->hasFocus() && m_pList->currentIndex() != index) {
        m_pList->setCurrentIndex(index);
    }
}

}
