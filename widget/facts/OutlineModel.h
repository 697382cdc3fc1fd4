// An outline for Qt's views: a tree of one column.
//
// Threads: UI thread only.
#pragma once

#include <QAbstractItemModel>
#include <memory>

#include "widget/facts/Outline.h"

namespace velko::vkit {

class OutlineModel : public QAbstractItemModel {
public:
    using QAbstractItemModel::QAbstractItemModel;

    void Show(std::shared_ptr<const Outline> pOutline); // not empty
    const Outline& Shown() const { return *m_pOutline; }

    int EntryOf(const QModelIndex& index) const;
    QModelIndex IndexOf(int nEntry) const; // -1: none

    // Besides the title: its letters, bold and slanted, and their colour as the
    // document has it, whatever the ground.
    QVariant data(const QModelIndex& index, int nRole) const override;
    QModelIndex index(int nRow, int nColumn, const QModelIndex& parent) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent) const override;
    int columnCount(const QModelIndex& parent) const override;

private:
    std::shared_ptr<const Outline> m_pOutline = std::make_shared<const Outline>();
};

}
