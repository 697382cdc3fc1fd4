// Saves the shown document, one save at a time, after the edits that were asked for
// before.
//
// What is changed while it runs is not in it, but waits for its end: the document is
// modified afterwards. A save that fails leaves file and document as they were.
//
// Lifetime: goes before the edits. Threads: UI thread only.
#pragma once

#include <QObject>
#include <QPointer>
#include <memory>
#include <optional>

#include "control/PDFViewCtrl.h"
#include "platform/concurrency/Task.h"
#include "widget/FilePath.h"
#include "widget/edit/SaveFailure.h"
#include "widget/edit/ViewEdits.h"

namespace velko::vkit {

class DocSaver : public QObject {
    Q_OBJECT

public:
    DocSaver(std::shared_ptr<PDFViewCtrl> pControl, ViewEdits& edits);
    ~DocSaver() override;

    // Into the document's file. A file that may not be written to is refused
    // (`SaveTrouble::ReadOnly`), as is one that another program has changed
    // (`SaveTrouble::Changed`).
    void Save();
    // As `Save`, over what another program has made of the file.
    void SaveOverChanges();
    // Into another file, which is the document's from then on.
    void SaveAs(const FilePath& path);

    bool IsSaving() const { return m_bSaving; }
    // The document's file has other names too, which keep what it holds now.
    bool HasOtherNames() const;

signals:
    void Started();
    void Progress(double dbShare); // 0 to 1
    void Saved();
    void Failed(const velko::vkit::SaveFailure& failure);
    void Ended(); // after one of both, or when its document has gone meanwhile

private:
    enum class Kind { InPlace, OverChanges, AsOther };
    struct Request {
        Kind eKind = Kind::InPlace;
        FilePath path; // of AsOther
    };

    void Ask(Request request);
    void Begin();
    static concurrency::task<void> Run(QPointer<DocSaver> pSelf, Request request);
    concurrency::task<bool> Write(Request request);
    void OnEnded(EditHistory::Point nPoint, const std::exception_ptr& pError);

    const std::shared_ptr<PDFViewCtrl> m_pControl;
    ViewEdits& m_edits;
    ControlEvent<SaveProgressEventArgs>::Token m_progressToken;
    std::optional<Request> m_waiting; // for edits that are under way
    bool m_bSaving = false;
};

}
