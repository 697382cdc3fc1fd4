#include "widget/thumbs/ThumbModel.h"

#include "widget/VelkoPdfView.h"

namespace velko::vkit {

ThumbModel::ThumbModel(VelkoPdfView& view, DocFacts& facts, PageThumbs& thumbs, QObject* pParent)
    : QAbstractListModel(pParent), m_view(view), m_facts(facts), m_thumbs(thumbs) {
    connect(&m_facts, &DocFacts::Forgotten, this, &ThumbModel::FollowCount);
    connect(&m_facts, &DocFacts::LabelsRead, this, [this] { RowsChanged(0, m_nPages - 1); });
    connect(&m_view, &VelkoPdfView::PageCountChanged, this, &ThumbModel::FollowCount);
    connect(&m_thumbs, &PageThumbs::Drawn, this, [this](int nPage) { RowsChanged(nPage, nPage); });
    FollowCount();
}

void ThumbModel::FollowCount() {
    beginResetModel();
    m_nPages = m_view.PageCount();
    endResetModel();
}

void ThumbModel::RowsChanged(int nFirst, int nLast) {
    if (nFirst <= nLast && nLast < m_nPages) {
        emit dataChanged(index(nFirst), index(nLast));
    }
}

int ThumbModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_nPages;
}

QVariant ThumbModel::data(const QModelIndex& index, int nRole) const {
    if (!index.isValid()) {
        return {};
    }
    const QString strLabel = m_facts.LabelOf(index.row());
    switch (nRole) {
        case Qt::DisplayRole:
            return strLabel;
        case Qt::AccessibleTextRole:
            return QStringLiteral("Page %1, %2 of %3")
                .arg(strLabel)
                .arg(index.row() + 1)
                .arg(m_nPages);
        case Qt::DecorationRole:
            return m_thumbs.Find(index.row());
        default:
            return {};
    }
}

QSizeF ThumbModel::PageSize(int nPage) const {
    constexpr QSizeF kLetter(612.0, 792.0);
    const auto pDocument = m_facts.Document();
    if (!pDocument || nPage < 0 || nPage >= pDocument->GetPageCount()) {
        return kLetter;
    }
    const auto pPage = pDocument->GetPage(nPage);
    return {pPage->GetWidth(), pPage->GetHeight()};
}

}
