#include "widget/PageNotices.h"

#include <utility>

#include "control/PDFViewCtrl.h"
#include "surface/PDFViewCanvas.h"

namespace velko::vkit {

using velko::common::ErrorCode;

namespace {

const PageSign::Look kWarning{QColor(255, 244, 206), QColor(60, 45, 0), true};

}

QString ReasonOf(const PageFailure& failure) {
    switch (failure.eCode) {
        case ErrorCode::e_ErrFile:
            return QStringLiteral(
                "This page could not be read: see whether the disk of the file "
                "is still connected, and come back to the page.");
        case ErrorCode::e_ErrConflict:
            return QStringLiteral(
                "The file was changed since it was opened: open it again to "
                "read on.");
        case ErrorCode::e_ErrOutOfMemory:
            return QStringLiteral(
                "There is not enough memory for this page: close other programs "
                "and come back to it.");
        case ErrorCode::e_ErrNotFound:
            return QStringLiteral(
                "The file is damaged and this page is missing: ask for it anew "
                "where it came from.");
        case ErrorCode::e_ErrDataNotReady:
            return QStringLiteral(
                "This page took too long, so that a part of it may be missing: "
                "come back to it to try again.");
        default:
            return QStringLiteral(
                "This page could not be drawn, or not all of it: ask for the "
                "document anew where it came from.");
    }
}

PageNotices::PageNotices(PDFViewCtrl& control, std::function<double()> fnPixelRatio)
    : PageOverlay(control, std::move(fnPixelRatio), Over::PagesAndText) {
    m_changeToken = Control().PageFailureEvent.add(
        [this](const auto&, const auto&) { Control().UpdateViewer(); });
}

PageNotices::~PageNotices() {
    Control().PageFailureEvent.remove(m_changeToken);
}

void PageNotices::Draw(const RenderCanvasEventArgs& args) {
    const auto failure = Control().PageFailureOf(args.nPageIndex);
    const auto place = failure ? Control().GetPageScreenRect(args.nPageIndex) : std::nullopt;
    if (!place || (m_fnHides && m_fnHides(*failure))) {
        return;
    }
    m_sign.Show(ReasonOf(*failure), kWarning, PixelRatio());
    m_sign.Draw(*args.Canvas->GetDeviceContext(), *place);
}

}
