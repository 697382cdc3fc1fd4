#include "widget/thumbs/PageThumbs.h"

#include <QPointer>
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "widget/VelkoPdfView.h"
#include "widget/edit/DocEdits.h"
#include "widget/edit/ViewEdits.h"

namespace velko::vkit {

namespace {

constexpr int kRestMs = 120; // without a frame

}

PageThumbs::PageThumbs(VelkoPdfView& view) : m_view(view) {
    m_rest.setSingleShot(true);
    m_rest.setInterval(kRestMs);
    m_rest.callOnTimeout(this, &PageThumbs::Next);
    connect(&view, &VelkoPdfView::Painted, this, &PageThumbs::OnPainted);
    connect(&view, &VelkoPdfView::ViewChanged, this, &PageThumbs::FollowDocument);
    connect(&view, &VelkoPdfView::StateChanged, this, &PageThumbs::FollowDocument);
    connect(&view.Edits().Edits(), &DocEdits::PageEdited, this, &PageThumbs::Renew);
    FollowDocument();
}

PageThumbs::~PageThumbs() {
    m_source.cancel();
}

// --- what is wanted --------------------------------------------------------

void PageThumbs::Want(std::vector<int> pages, QSize largest) {
    m_wanted = std::move(pages);
    m_largest = largest;
    if (m_drawing && std::find(m_wanted.begin(), m_wanted.end(), *m_drawing) == m_wanted.end()) {
        m_source.renew();
    }
    Next();
}

QImage PageThumbs::Find(int nPage) const {
    const auto it = m_thumbs.find(nPage);
    return it == m_thumbs.end() ? QImage() : it->second.image;
}

qsizetype PageThumbs::Bytes() const {
    qsizetype nBytes = 0;
    for (const auto& [nPage, thumb] : m_thumbs) {
        nBytes += thumb.image.sizeInBytes();
    }
    return nBytes;
}

PictureWish PageThumbs::WishNow() const {
    return {.largest = m_largest,
            .colors = m_view.Colors(),
            .eScanColors = m_view.ScanColors(),
            .bAlsoProtected = true};
}

bool PageThumbs::IsDrawn(int nPage, const PictureWish& wish) const {
    const auto it = m_thumbs.find(nPage);
    return it != m_thumbs.end() && !it->second.bStale && it->second.wish == wish;
}

void PageThumbs::Renew(int nPage) {
    m_bEditedMeanwhile = m_bEditedMeanwhile || m_drawing == nPage;
    if (const auto it = m_thumbs.find(nPage); it != m_thumbs.end()) {
        it->second.bStale = true;
        Next();
    }
}

void PageThumbs::FollowDocument() {
    const auto pDocument = m_view.PageCount() > 0 ? m_view.Control()->GetPDFDoc() : nullptr;
    if (pDocument != m_wkDocument.lock()) {
        m_wkDocument = pDocument;
        m_thumbs.clear();
        m_source.renew();
    }
    Next(); // in other colours, perhaps
}

// --- drawing ---------------------------------------------------------------

void PageThumbs::OnPainted() {
    m_rest.start();
    if (m_drawing && !m_view.IsSharp()) {
        m_source.renew();
    }
}

bool PageThumbs::MayDraw() const {
    return !m_drawing && !m_rest.isActive() && !m_wkDocument.expired() && m_view.HasInk() &&
           m_view.IsSharp();
}

void PageThumbs::Next() {
    if (m_wanted.empty() || m_largest.isEmpty() || !MayDraw()) {
        return;
    }
    const PictureWish wish = WishNow();
    const auto it = std::find_if(m_wanted.begin(), m_wanted.end(), [&](int nPage) {
        return nPage < m_view.PageCount() && !IsDrawn(nPage, wish);
    });
    if (it != m_wanted.end()) {
        Begin(*it, wish);
    }
}

void PageThumbs::Begin(int nPage, const PictureWish& wish) {
    m_drawing = nPage;
    m_bEditedMeanwhile = false;
    DrawPage(*m_view.Control(), nPage, wish, m_source.get_token())
        .then([pThis = QPointer<PageThumbs>(this), pDocument = m_wkDocument, nPage,
               wish](const concurrency::task<PagePicture>& drawing) {
            drawing.mark_observed(); // a page that cannot be drawn is told where it is shown
            if (!pThis) {
                return;
            }
            pThis->m_drawing.reset();
            if (!drawing.is_canceled() && pDocument.lock() == pThis->m_wkDocument.lock()) {
                pThis->Take(nPage, wish, drawing);
            }
            pThis->Next();
        });
}

void PageThumbs::Take(int nPage, const PictureWish& wish,
                      const concurrency::task<PagePicture>& drawing) {
    const QImage image = drawing.is_value() ? drawing.get().image : QImage();
    m_thumbs[nPage] = {image, wish, m_bEditedMeanwhile};
    KeepWithinBound();
    emit Drawn(nPage);
}

void PageThumbs::KeepWithinBound() {
    qsizetype nBytes = Bytes();
    const int nMiddle = m_wanted.empty() ? 0 : m_wanted.front();
    while (nBytes > kMostBytes && m_thumbs.size() > 1) {
        const auto first = m_thumbs.begin();
        const auto last = std::prev(m_thumbs.end());
        const bool bFirst = std::abs(first->first - nMiddle) > std::abs(last->first - nMiddle);
        const auto farthest = bFirst ? first : last;
        nBytes -= farthest->second.image.sizeInBytes();
        m_thumbs.erase(farthest);
    }
}

}
