// Makes the pictures of first pages: one of each document that a view shows, unless
// there is one of the file as it is. It does so once the first page stands sharp on the
// screen and the view rests, and gives way to every frame that is still to be rendered.
//
// A document that is encrypted or asks for a password gets none, and loses the one that
// there was. Threads: UI thread only. Errors: none; there is no picture then.
#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <optional>

#include "app/viewer/RecentPictures.h"
#include "platform/concurrency/Cancellation.h"
#include "widget/VelkoPdfView.h"

namespace velko::viewer {

class PictureMaker : public QObject {
public:
    explicit PictureMaker(vkit::VelkoPdfView& view); // goes with the view
    ~PictureMaker() override;

private:
    using Self = QPointer<PictureMaker>;
    using Token = concurrency::cancellation_token;

    void OnState(vkit::VelkoPdfView::State eState);
    void OnPainted();
    void OnRest();
    bool ShowsFirstPage() const;

    static concurrency::task<void> NoteStamp(Self pThis, Token token);
    static concurrency::task<void> Make(Self pThis, Token token);
    static concurrency::task<void> MakeIfNew(Self pThis, Token token);

    vkit::VelkoPdfView& m_view;
    QTimer m_rest;
    concurrency::cancellation_token_source m_source; // of what is done for this document
    std::optional<RecentPictures::Stamp> m_stamp;    // from when the reader first saw a page
    bool m_bWanted = false;                          // a document is shown, and not done yet
    bool m_bAsked = false;                           // for the stamp
    bool m_bMaking = false;
};

}
