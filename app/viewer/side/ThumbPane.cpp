#include "app/viewer/side/ThumbPane.h"

#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "app/viewer/side/SideKeys.h"
#include "widget/VelkoPdfView.h"

namespace velko::viewer {

using vkit::DocFacts;
using vkit::VelkoPdfView;

namespace {

constexpr int kCellWidth = 112; // at least
constexpr int kBeside = 12;     // a picture, at each side
constexpr int kAbove = 10;
constexpr int kLabelHeight = 24;
constexpr double kFlattest = 0.45; // of the room, height to width
constexpr double kTallest = 1.42;
constexpr double kFrame = 3.0; // around the page that is shown
constexpr double kQuarter = 90.0;

// Where the picture stands: whole pixels of the screen, so that it is drawn as it is.
QRectF OnPixels(QPointF ptMiddle, QSizeF size, double dbRatio) {
    const auto fnRound = [dbRatio](double db) { return std::round(db * dbRatio) / dbRatio; };
    return {fnRound(ptMiddle.x() - size.width() / 2.0), fnRound(ptMiddle.y() - size.height() / 2.0),
            fnRound(size.width()), fnRound(size.height())};
}

}

class ThumbPane::Cells : public QStyledItemDelegate {
public:
    explicit Cells(ThumbPane& pane) : QStyledItemDelegate(&pane), m_pane(pane) {}

    void paint(QPainter* pPainter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const QRect rcRoom(option.rect.center().x() - m_pane.Room().width() / 2,
                           option.rect.y() + kAbove, m_pane.Room().width(), m_pane.Room().height());
        const QSizeF size = m_pane.SizeOf(index.row()).scaled(rcRoom.size(), Qt::KeepAspectRatio);
        const QRectF rcPage = OnPixels(QRectF(rcRoom).center(), size, m_pane.devicePixelRatioF());
        pPainter->save();
        DrawGround(*pPainter, option, rcPage, index.row());
        DrawPage(*pPainter, rcPage, index.data(Qt::DecorationRole).value<QImage>());
        DrawLabel(*pPainter, option, rcRoom.bottom() + 1, index);
        pPainter->restore();
    }
    QSize sizeHint(const QStyleOptionViewItem& /*option*/,
                   const QModelIndex& /*index*/) const override {
        return m_pane.gridSize();
    }

private:
    void DrawGround(QPainter& painter, const QStyleOptionViewItem& option, const QRectF& rcPage,
                    int nPage) const {
        const QPalette& palette = m_pane.palette();
        const bool bChosen = m_pane.hasFocus() && option.state.testFlag(QStyle::State_Selected);
        if (bChosen) {
            constexpr int kAlpha = 70;
            QColor tint = palette.color(QPalette::Highlight);
            tint.setAlpha(kAlpha);
            painter.fillRect(option.rect, tint);
        }
        const bool bShown = nPage == m_pane.m_view.CurrentPage();
        const double dbAround = bShown ? kFrame : 1.0 / m_pane.devicePixelRatioF();
        painter.fillRect(
            rcPage.adjusted(-dbAround, -dbAround, dbAround, dbAround),
            palette.color(QPalette::Active, bShown ? QPalette::Highlight : QPalette::Mid));
    }

    // Blank paper until there is a picture.
    void DrawPage(QPainter& painter, const QRectF& rcPage, const QImage& image) const {
        painter.fillRect(rcPage, m_pane.m_view.Colors().background);
        if (image.isNull()) {
            return;
        }
        const QSizeF size = m_pane.IsTurned() ? rcPage.size().transposed() : rcPage.size();
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.save();
        painter.translate(rcPage.center());
        painter.rotate(kQuarter * m_pane.m_nRotation);
        painter.drawImage(QRectF(QPointF(-size.width() / 2.0, -size.height() / 2.0), size), image);
        painter.restore();
    }

    void DrawLabel(QPainter& painter, const QStyleOptionViewItem& option, int nTop,
                   const QModelIndex& index) const {
        const bool bShown = index.row() == m_pane.m_view.CurrentPage();
        QFont font = option.font;
        font.setBold(bShown);
        painter.setFont(font);
        painter.setPen(m_pane.palette().color(QPalette::Text));
        const QRect rc(option.rect.x(), nTop, option.rect.width(), kLabelHeight);
        painter.drawText(rc, Qt::AlignCenter,
                         QFontMetrics(font).elidedText(index.data().toString(), Qt::ElideMiddle,
                                                       rc.width() - kBeside));
    }

    ThumbPane& m_pane;
};

ThumbPane::ThumbPane(VelkoPdfView& view, DocFacts& facts, QWidget* pParent)
    : QListView(pParent), m_view(view), m_thumbs(view), m_model(view, facts, m_thumbs, this) {
    setModel(&m_model);
    setItemDelegate(new Cells(*this));
    setFrameShape(QFrame::NoFrame);
    setFlow(QListView::LeftToRight);
    setWrapping(true);
    setUniformItemSizes(true);
    setResizeMode(QListView::Adjust);
    setSelectionRectVisible(false);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // the columns are as wide as they are
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAccessibleName(QStringLiteral("Pages"));
    new SideKeys(*this, [this](const QModelIndex& index) { m_view.JumpToPage(index.row()); });
    connect(&m_view, &VelkoPdfView::PageChanged, this, &ThumbPane::FollowPage);
    connect(&m_view, &VelkoPdfView::ViewChanged, this, &ThumbPane::FollowView);
    connect(&m_model, &QAbstractItemModel::modelReset, this, &ThumbPane::Arrange);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &ThumbPane::Ask);
    connect(verticalScrollBar(), &QScrollBar::rangeChanged, this, &ThumbPane::Ask);
}

// --- the view --------------------------------------------------------------

void ThumbPane::FollowPage() {
    if (isVisible() && !hasFocus() && !underMouse()) {
        scrollTo(m_model.index(m_view.CurrentPage()), QAbstractItemView::EnsureVisible);
    }
    viewport()->update();
}

void ThumbPane::FollowView() {
    if (m_nRotation != m_view.Rotation()) {
        m_nRotation = m_view.Rotation();
        Arrange();
    }
    viewport()->update(); // the paper's colour
}

void ThumbPane::showEvent(QShowEvent* pEvent) {
    QListView::showEvent(pEvent);
    FollowView();
    Arrange();
    setCurrentIndex(m_model.index(m_view.CurrentPage()));
    scrollTo(currentIndex(), QAbstractItemView::PositionAtCenter);
    Ask();
}

void ThumbPane::hideEvent(QHideEvent* pEvent) {
    QListView::hideEvent(pEvent);
    m_thumbs.Want({}, {});
}

void ThumbPane::resizeEvent(QResizeEvent* pEvent) {
    Arrange();
    QListView::resizeEvent(pEvent);
    Ask();
}

// --- places ----------------------------------------------------------------

bool ThumbPane::IsTurned() const {
    return m_nRotation % 2 != 0;
}

QSizeF ThumbPane::SizeOf(int nPage) const {
    const QSizeF size = m_model.PageSize(nPage);
    return IsTurned() ? size.transposed() : size;
}

QSize ThumbPane::Room() const {
    return gridSize() - QSize(2 * kBeside, kAbove + kLabelHeight);
}

// All cells are as high as the first page needs, as most documents have pages of one size.
void ThumbPane::Arrange() {
    const int nWidth = std::max(viewport()->width() - 1, kCellWidth);
    m_nColumns = std::max(1, nWidth / kCellWidth);
    const int nCell = nWidth / m_nColumns;
    const QSizeF page = SizeOf(0);
    const double dbShape = std::clamp(page.height() / page.width(), kFlattest, kTallest);
    const int nRoom = static_cast<int>((nCell - 2 * kBeside) * dbShape);
    setGridSize({nCell, nRoom + kAbove + kLabelHeight});
}

std::vector<int> ThumbPane::PagesInSight() const {
    const int nTop = verticalScrollBar()->value();
    const int nRow = std::max(gridSize().height(), 1);
    const int nFirst = std::max(nTop / nRow - 1, 0) * m_nColumns; // one more at each end
    const int nEnd = ((nTop + viewport()->height()) / nRow + 2) * m_nColumns;
    const int nMiddle = (nTop + viewport()->height() / 2) / nRow * m_nColumns + m_nColumns / 2;
    std::vector<int> pages;
    for (int nPage = nFirst; nPage < std::min(nEnd, m_model.rowCount({})); ++nPage) {
        pages.push_back(nPage);
    }
    std::stable_sort(pages.begin(), pages.end(), [nMiddle](int nOne, int nOther) {
        return std::abs(nOne - nMiddle) < std::abs(nOther - nMiddle);
    });
    return pages;
}

void ThumbPane::Ask() {
    if (isVisible()) {
        const QSize room = Room() * devicePixelRatioF();
        m_thumbs.Want(PagesInSight(), IsTurned() ? room.transposed() : room);
    }
}

}
