// Small pictures of the pages of a shown document, drawn when they are wanted.
//
//   thumbs.Want({7, 6, 8, 5}, {120, 160}); // what is seen, nearest to its middle first
//   connect(&thumbs, &PageThumbs::Drawn, this, [this](int nPage) { ... Find(nPage) ... });
//
// One is drawn at a time, and none while the pages of the view move or are not sharp:
// what is being drawn then, or is not wanted any more, is cancelled. They are in the
// reader's colours; a page that is edited is drawn anew. The rotation of the view is not
// in them. Together they take no more than a bound, the farthest from what is wanted go.
// Threads: UI thread only. Errors: a page that cannot be drawn has no picture.
#pragma once

#include <QImage>
#include <QObject>
#include <QTimer>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "document/engine/PDFDoc.h"
#include "platform/concurrency/Cancellation.h"
#include "widget/PagePicture.h"

namespace velko::vkit {

class VelkoPdfView;

class PageThumbs : public QObject {
    Q_OBJECT

public:
    static constexpr qsizetype kMostBytes = qsizetype{24} << 20;

    explicit PageThumbs(VelkoPdfView& view); // goes before the view
    ~PageThumbs() override;

    // Pages in the order in which they are wanted, none to rest; pixels.
    void Want(std::vector<int> pages, QSize largest);

    // Null until it is drawn; one that is drawn anew stands until then.
    QImage Find(int nPage) const;

    qsizetype Bytes() const; // of all of them

signals:
    void Drawn(int nPage);

private:
    struct Thumb {
        QImage image; // null: it cannot be drawn
        PictureWish wish;
        bool bStale = false; // the page was edited
    };

    PictureWish WishNow() const;
    bool IsDrawn(int nPage, const PictureWish& wish) const;
    bool MayDraw() const;
    void OnPainted();
    void FollowDocument();
    void Renew(int nPage);
    void Next();
    void Begin(int nPage, const PictureWish& wish);
    void Take(int nPage, const PictureWish& wish, const concurrency::task<PagePicture>& drawing);
    void KeepWithinBound();

    VelkoPdfView& m_view;
    std::weak_ptr<velko::pdf::PDFDoc> m_wkDocument;
    std::map<int, Thumb> m_thumbs;
    std::vector<int> m_wanted;
    QSize m_largest;
    QTimer m_rest;                   // runs while the pages may be moving
    std::optional<int> m_drawing;    // a page
    bool m_bEditedMeanwhile = false; // that one
    concurrency::cancellation_token_source m_source;
};

}
