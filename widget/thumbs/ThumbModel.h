// The pages of a shown document for Qt's views: a row for each, with its label and its
// small picture.
//
// Lifetime: goes before the facts and the thumbs. Threads: UI thread only.
#pragma once

#include <QAbstractListModel>
#include <QSizeF>

#include "widget/facts/DocFacts.h"
#include "widget/thumbs/PageThumbs.h"

namespace velko::vkit {

class ThumbModel : public QAbstractListModel {
public:
    ThumbModel(VelkoPdfView& view, DocFacts& facts, PageThumbs& thumbs, QObject* pParent);

    // The display is the label, the decoration the picture (a `QImage`) as it is drawn,
    // without the rotation of the view.
    QVariant data(const QModelIndex& index, int nRole) const override;
    int rowCount(const QModelIndex& parent) const override;

    // In points, as the file has it; not empty.
    QSizeF PageSize(int nPage) const;

private:
    void FollowCount();
    void RowsChanged(int nFirst, int nLast);

    VelkoPdfView& m_view;
    DocFacts& m_facts;
    PageThumbs& m_thumbs;
    int m_nPages = 0;
};

}
