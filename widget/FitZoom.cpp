#include "widget/FitZoom.h"

#include <algorithm>
#include <memory>

#include "control/PDFViewCtrl.h"
#include "document/engine/HostServices.h"
#include "document/engine/PDFDoc.h"
#include "platform/system/Environment.h"
#include "viewers/core/Modes.h"

namespace velko::vkit {

namespace {

constexpr double kPointsPerInch = 72.0;

double WidthOfAll(PDFViewCtrl& control, double dbFallback) {
    const auto pExtents = std::dynamic_pointer_cast<velko::pdf::IPageExtents>(control.GetPDFDoc());
    const auto largest = pExtents ? pExtents->LargestPage() : velko::pdf::PageExtent();
    const bool bTurned = control.GetRotate() % 2 != 0;
    const double dbInches = (bTurned ? largest.fHeight : largest.fWidth) / kPointsPerInch;
    if (!(dbInches > 0.0)) {
        return dbFallback;
    }
    const double dbDpi = Windows::Graphics::Display::DisplayInformation::LogicalDpi();
    return std::min(dbFallback, control.GetCanvasSize().Width / (dbInches * dbDpi));
}

double ExactFit(PDFViewCtrl& control, std::int32_t nZoomMode) {
    const double dbWidth = control.GetFitScale(ZoomMode::kFitWidth);
    const double dbHeight = control.GetFitScale(ZoomMode::kFitHeight);
    switch (nZoomMode) {
        case ZoomMode::kFitWidth:
            return control.GetPageLayoutMode() == LayoutMode::kContinuous
                       ? WidthOfAll(control, dbWidth)
                       : dbWidth;
        case ZoomMode::kFitHeight:
            return dbHeight;
        default:
            return std::min(dbWidth, dbHeight);
    }
}

}

double FitZoom(PDFViewCtrl& control, std::int32_t nZoomMode) {
    return std::min<double>(ExactFit(control, nZoomMode), control.GetMaxScale());
}

}
