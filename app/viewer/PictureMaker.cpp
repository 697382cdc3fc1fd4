#include "app/viewer/PictureMaker.h"

#include <algorithm>
#include <utility>

#include "control/PDFViewCtrl.h"
#include "widget/PagePicture.h"

namespace velko::viewer {

using concurrency::task;
using vkit::FilePath;
using vkit::VelkoPdfView;

namespace {

constexpr int kRestMs = 700; // without a frame

}

PictureMaker::PictureMaker(VelkoPdfView& view) : QObject(&view), m_view(view) {
    m_rest.setSingleShot(true);
    m_rest.setInterval(kRestMs);
    m_rest.callOnTimeout(this, &PictureMaker::OnRest);
    connect(&view, &VelkoPdfView::StateChanged, this, &PictureMaker::OnState);
    connect(&view, &VelkoPdfView::Reloaded, this, [this] { OnState(VelkoPdfView::State::Shown); });
    connect(&view, &VelkoPdfView::Painted, this, &PictureMaker::OnPainted);
}

PictureMaker::~PictureMaker() {
    m_source.cancel();
}

void PictureMaker::OnState(VelkoPdfView::State eState) {
    m_source.renew();
    m_rest.stop();
    m_stamp.reset();
    m_bAsked = false;
    m_bWanted = eState == VelkoPdfView::State::Shown;
    if (eState == VelkoPdfView::State::PasswordNeeded) {
        RecentPictures::Forget({m_view.File()});
    }
}

void PictureMaker::OnPainted() {
    if (!m_bWanted || !m_view.HasInk()) {
        return;
    }
    if (!std::exchange(m_bAsked, true)) {
        NoteStamp(this, m_source.get_token());
    }
    if (!m_bMaking) {
        m_rest.start();
    } else if (!m_view.IsSharp()) {
        m_source.renew();
    }
}

bool PictureMaker::ShowsFirstPage() const {
    const auto pages = m_view.Control()->GetVisiblePages();
    return !m_view.IsReading() && std::find(pages.begin(), pages.end(), 0) != pages.end();
}

void PictureMaker::OnRest() {
    if (m_bWanted && !m_bMaking && m_stamp && ShowsFirstPage() && m_view.IsSharp()) {
        Make(this, m_source.get_token());
    }
}

task<void> PictureMaker::NoteStamp(Self pThis, Token token) {
    const auto asking = RecentPictures::StampOf(pThis->m_view.File());
    co_await asking.settled();
    asking.mark_observed(); // a file that has gone since gets no picture
    if (pThis && !token.is_canceled() && asking.is_value()) {
        pThis->m_stamp = asking.get();
        pThis->m_rest.start();
    }
}

task<void> PictureMaker::Make(Self pThis, Token token) {
    pThis->m_bMaking = true;
    const auto making = MakeIfNew(pThis, token);
    co_await making.settled();
    making.mark_observed(); // a page that cannot be drawn is told where it is shown
    if (!pThis) {
        co_return;
    }
    pThis->m_bMaking = false;
    if (token.is_canceled()) {
        pThis->m_rest.start();
    } else {
        pThis->m_bWanted = false;
    }
}

task<void> PictureMaker::MakeIfNew(Self pThis, Token token) {
    const FilePath path = pThis->m_view.File();
    const RecentPictures::Stamp stamp = *pThis->m_stamp;
    const int nForgotten = RecentPictures::ForgottenTimes();
    const auto looking = RecentPictures::Has(path, stamp);
    const bool bHas = co_await looking;
    token.throw_if_canceled();
    if (bHas || !pThis) {
        co_return;
    }
    const auto drawing =
        vkit::DrawPage(*pThis->m_view.Control(), 0, {.largest = RecentPictures::kPixels}, token);
    const vkit::PagePicture picture = co_await drawing;
    token.throw_if_canceled();
    if (picture.bProtected) {
        RecentPictures::Forget({path});
    } else if (!picture.image.isNull() && nForgotten == RecentPictures::ForgottenTimes()) {
        RecentPictures::Keep(path, stamp, picture.image);
    }
}

}
