// Saves a file that is attached to a document, where the reader says: it is loaded on the
// task pool, written aside, and put in its place in one act. Nothing is opened or run.
//
// The document may be closed meanwhile, and the saver may go: what was begun is carried
// to its end. Threads: UI thread only. Errors: `Failed` tells in words for the reader.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <memory>

#include "document/engine/PDFDoc.h"
#include "platform/concurrency/Task.h"
#include "widget/FilePath.h"

namespace velko::vkit {

class AttachmentSaver : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    bool IsSaving() const { return m_bSaving; }

    // False while another one is saved. `nFile` in the document's list of them.
    bool Save(std::shared_ptr<velko::pdf::PDFDoc> pDocument, int nFile, const FilePath& path);

signals:
    void Changed(); // `IsSaving`
    void Saved(const QString& strFile);
    void Failed(const QString& strFile, const QString& strReason);

private:
    static concurrency::task<void> Run(QPointer<AttachmentSaver> pThis,
                                       std::shared_ptr<velko::pdf::PDFDoc> pDocument, int nFile,
                                       FilePath path);

    bool m_bSaving = false;
};

}
