#include "widget/places/BookmarkModel.h"

namespace velko::vkit {

BookmarkModel::BookmarkModel(ViewBookmarks& bookmarks, QObject* pParent)
    : QAbstractListModel(pParent), m_bookmarks(bookmarks), m_list(bookmarks.List()) {
    connect(&bookmarks, &ViewBookmarks::Changed, this, &BookmarkModel::Follow);
}

// A name that is changed leaves the rows as they are, and with them what is chosen.
void BookmarkModel::Follow() {
    const std::vector<Bookmark>& now = m_bookmarks.List();
    if (now.size() == m_list.size()) {
        m_list = now;
        emit dataChanged(index(0), index(static_cast<int>(m_list.size()) - 1));
        return;
    }
    beginResetModel();
    m_list = now;
    endResetModel();
}

int BookmarkModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_list.size());
}

QVariant BookmarkModel::data(const QModelIndex& index, int nRole) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const Bookmark& bookmark = m_list[static_cast<std::size_t>(index.row())];
    switch (nRole) {
        case Qt::DisplayRole:
        case Qt::EditRole:
        case Qt::ToolTipRole:
            return QString::fromStdString(bookmark.strName);
        case PageRole:
            return bookmark.nPage;
        default:
            return {};
    }
}

bool BookmarkModel::setData(const QModelIndex& index, const QVariant& value, int nRole) {
    if (nRole != Qt::EditRole || !index.isValid()) {
        return false;
    }
    m_bookmarks.Rename(index.row(), value.toString());
    return true;
}

Qt::ItemFlags BookmarkModel::flags(const QModelIndex& index) const {
    return QAbstractListModel::flags(index) | Qt::ItemIsEditable;
}

}
