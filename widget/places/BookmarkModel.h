// The bookmarks of a view for Qt's views: a list whose names can be edited.
//
// Threads: UI thread only.
#pragma once

#include <QAbstractListModel>

#include "widget/places/ViewBookmarks.h"

namespace velko::vkit {

class BookmarkModel : public QAbstractListModel {
public:
    enum Role { PageRole = Qt::UserRole }; // from 0

    BookmarkModel(ViewBookmarks& bookmarks, QObject* pParent);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int nRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int nRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    void Follow();

    ViewBookmarks& m_bookmarks;
    std::vector<Bookmark> m_list; // as it is shown
};

}
