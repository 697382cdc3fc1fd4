#include "widget/facts/ReadingPlace.h"

#include <algorithm>

#include "document/engine/PDFDoc.h"
#include "widget/VelkoPdfView.h"

namespace velko::vkit {

DocumentHeight ReadingPlaceOf(const VelkoPdfView& view) {
    constexpr float kDown = 0.12F; // of the view
    constexpr int kSide = 16'384;  // fine enough for any page
    PDFViewCtrl& control = *view.Control();
    const auto pDocument = control.GetPDFDoc();
    const int nPages = view.PageCount();
    if (!pDocument || nPages == 0) {
        return {};
    }
    const auto size = control.GetCanvasSize();
    const Windows::Foundation::Point pt{size.Width / 2.0F, size.Height * kDown};
    if (control.GetPageIndexAtPoint(pt) < 0) { // between two pages, or beside a narrow one
        return {view.CurrentPage(), 0.0F};
    }
    const auto pPoint = control.DevicePointToPagePoint(pt);
    const int nPage = std::clamp(pPoint->nPageIndex, 0, nPages - 1);
    const auto matrix = pDocument->GetPage(nPage)->GetDisplayMatrix(0, 0, kSide, kSide, 0);
    const float fY = matrix.TransformPoint({pPoint->pt.X, pPoint->pt.Y}).Y;
    return {nPage, std::clamp(fY / static_cast<float>(kSide), 0.0F, 1.0F)};
}

}
