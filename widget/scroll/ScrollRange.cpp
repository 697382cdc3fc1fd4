#include "widget/scroll/ScrollRange.h"

#include <algorithm>

#include "control/PDFViewCtrl.h"

namespace velko::vkit {

namespace {

// How much of a length lies before a place of the screen.
double ShareBefore(double dbPlace, double dbStart, double dbLength) {
    return dbLength > 0.0 ? std::clamp((dbPlace - dbStart) / dbLength, 0.0, 1.0) : 0.0;
}

}

std::optional<ScrollRange> RangeDown(PDFViewCtrl& control) {
    const double dbScreen = control.GetCanvasSize().Height * control.CompositionScaleY();
    std::optional<double> start;
    double dbEnd = 0.0;
    for (const std::int32_t nPage : control.GetVisiblePages()) {
        const auto place = control.GetPageScreenRect(nPage);
        if (!place || place->dbOffsetY >= dbScreen || place->dbOffsetY + place->nHeight <= 0.0) {
            continue;
        }
        if (!start) {
            start = nPage + ShareBefore(0.0, place->dbOffsetY, place->nHeight);
        }
        dbEnd = nPage + ShareBefore(dbScreen, place->dbOffsetY, place->nHeight);
    }
    const double dbTotal = control.GetPageCount();
    if (!start || dbEnd <= *start) {
        return std::nullopt;
    }
    return ScrollRange{*start, dbEnd - *start, dbTotal};
}

std::optional<ScrollRange> RangeAcross(PDFViewCtrl& control) {
    const double dbScreen = control.GetCanvasSize().Width * control.CompositionScaleX();
    const auto place = control.GetPageScreenRect(control.GetCurrentPageIndex());
    if (!place || place->nWidth <= 0) {
        return std::nullopt;
    }
    const double dbStart = ShareBefore(0.0, place->dbOffsetX, place->nWidth);
    const double dbEnd = ShareBefore(dbScreen, place->dbOffsetX, place->nWidth);
    return dbEnd > dbStart ? std::optional(ScrollRange{dbStart, dbEnd - dbStart, 1.0})
                           : std::nullopt;
}

HandlePlace PlaceHandle(const ScrollRange& range, double dbTrack, double dbLeast) {
    const double dbShare = range.dbTotal > 0.0 ? range.dbLength / range.dbTotal : 1.0;
    const double dbLength = std::min(dbTrack, std::max(dbLeast, dbShare * dbTrack));
    const double dbLast = range.LastStart();
    const double dbAlong = dbLast > 0.0 ? std::clamp(range.dbStart / dbLast, 0.0, 1.0) : 0.0;
    return {dbAlong * (dbTrack - dbLength), dbLength};
}

double StartFor(const ScrollRange& range, double dbTrack, double dbLeast, double dbHandle) {
    const double dbWay = dbTrack - PlaceHandle(range, dbTrack, dbLeast).dbLength;
    return dbWay > 0.0 ? std::clamp(dbHandle / dbWay, 0.0, 1.0) * range.LastStart() : 0.0;
}

}
