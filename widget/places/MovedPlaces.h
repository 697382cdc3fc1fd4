// Finds a reader's place in a document whose file has got another name since: at once where
// it is the same file, soon where it is another one with the same bytes and the old one
// has gone.
//
// Threads: UI thread only; disk and engine are asked elsewhere. Errors: none is raised.
#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>

#include "component/DocIdentity.h"
#include "component/KeptView.h"
#include "platform/concurrency/Task.h"

namespace velko::vkit {

class MovedPlaces : public QObject {
public:
    // `fnFound` gets a place that was found later, while the document is shown.
    MovedPlaces(std::shared_ptr<PDFViewCtrl> pControl,
                std::function<void(const KeptView& kept)> fnFound);

    // For the document that comes up: what is known of it without a wait.
    void Begin();
    std::optional<KeptView> FindAtOnce();
    // It stands; with `bSeek` there is no place for it yet.
    void Follow(bool bSeek);
    void End();

    // By what it is to be found again, beside its place.
    const DocIdentity& Identity() const { return m_identity; }

private:
    static concurrency::task<void> Read(QPointer<MovedPlaces> pSelf);
    static void ForgetWhenGone(const std::string& strPath);

    const std::shared_ptr<PDFViewCtrl> m_pControl;
    const std::function<void(const KeptView&)> m_fnFound;
    DocIdentity m_identity;
    QTimer m_delay; // so that the pages come first
    bool m_bSeek = false;
    int m_nDocument = 0; // that counts
};

}
