#include "widget/facts/OutlineModel.h"

#include <QColor>
#include <QFont>
#include <utility>

namespace velko::vkit {

namespace {

// A title may be anything; a row shows one line of it.
QString TitleOf(const Outline::Entry& entry) {
    constexpr int kLongest = 1000;
    const QString strTitle = QString::fromStdString(entry.strTitle).left(kLongest).simplified();
    return strTitle.isEmpty() ? QStringLiteral("(no title)") : strTitle;
}

QVariant FontOf(const Outline::Entry& entry) {
    if (!entry.bBold && !entry.bItalic) {
        return {};
    }
    QFont font;
    font.setBold(entry.bBold);
    font.setItalic(entry.bItalic);
    return font;
}

}

void OutlineModel::Show(std::shared_ptr<const Outline> pOutline) {
    beginResetModel();
    m_pOutline = std::move(pOutline);
    endResetModel();
}

int OutlineModel::EntryOf(const QModelIndex& index) const {
    return index.isValid() ? static_cast<int>(index.internalId()) : Outline::kRoot;
}

QModelIndex OutlineModel::IndexOf(int nEntry) const {
    return nEntry < 0 ? QModelIndex()
                      : createIndex(m_pOutline->RowOf(nEntry), 0, static_cast<quintptr>(nEntry));
}

QVariant OutlineModel::data(const QModelIndex& index, int nRole) const {
    if (!index.isValid()) {
        return {};
    }
    const Outline::Entry& entry = Shown()[EntryOf(index)];
    switch (nRole) {
        case Qt::DisplayRole:
        case Qt::ToolTipRole:
            return TitleOf(entry);
        case Qt::FontRole:
            return FontOf(entry);
        case Qt::ForegroundRole:
            return entry.nColor ? QVariant(QColor(QRgb(*entry.nColor))) : QVariant();
        default:
            return {};
    }
}

QModelIndex OutlineModel::index(int nRow, int nColumn, const QModelIndex& parent) const {
    const bool bIsThere = nColumn == 0 && nRow >= 0 && nRow < rowCount(parent);
    return bIsThere ? IndexOf(m_pOutline->ChildOf(EntryOf(parent), nRow)) : QModelIndex();
}

QModelIndex OutlineModel::parent(const QModelIndex& index) const {
    return index.isValid() ? IndexOf(m_pOutline->ParentOf(EntryOf(index))) : QModelIndex();
}

int OutlineModel::rowCount(const QModelIndex& parent) const {
    return m_pOutline->CountUnder(EntryOf(parent));
}

int OutlineModel::columnCount(const QModelIndex& /*parent*/) const {
    return 1;
}

}
