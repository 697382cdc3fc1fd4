// The files that are attached to a document, for Qt's views: a row for each.
//
// Threads: UI thread only.
#pragma once

#include <QAbstractListModel>
#include <QString>
#include <memory>

#include "widget/facts/DocFacts.h"

namespace velko::vkit {

// A name that is safe to show and to save by, of one that a document gives: without
// folders, without letters that nobody sees or that turn others around, not hidden, of a
// length that file systems take; never empty.
QString SafeFileName(const QString& strName);

class AttachmentModel : public QAbstractListModel {
public:
    using QAbstractListModel::QAbstractListModel;

    void Show(std::shared_ptr<const DocFacts::Files> pFiles); // not empty
    QString NameOf(int nFile) const;                          // safe

    // The display is the name, and below it what else is told of the file.
    QVariant data(const QModelIndex& index, int nRole) const override;
    int rowCount(const QModelIndex& parent) const override;

private:
    QString DetailsOf(int nFile) const;

    std::shared_ptr<const DocFacts::Files> m_pFiles = std::make_shared<const DocFacts::Files>();
};

}
