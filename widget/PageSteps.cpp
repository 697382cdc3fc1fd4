#include "widget/PageSteps.h"

#include <cmath>

#include "control/PDFViewCtrl.h"
#include "viewers/core/Modes.h"
#include "widget/ViewKeeper.h"

namespace velko::vkit {

namespace {

constexpr double kScreenScroll = 0.9; // of the screen's height: a line or two stay in sight
constexpr double kLastScroll = 0.96;  // at most, when nothing of the page is left then
constexpr double kSamePlace = 1.0;    // device pixels

}

bool PageSteps::ShowsSinglePage() const {
    return m_control.GetPageLayoutMode() == LayoutMode::kSinglePage;
}

bool PageSteps::ShowsColumnOfPages() const {
    return m_control.GetPageLayoutMode() == LayoutMode::kContinuous;
}

double PageSteps::ScreenLength(bool bAcross) const {
    const auto size = m_control.GetCanvasSize();
    return bAcross ? size.Width * m_control.CompositionScaleX()
                   : size.Height * m_control.CompositionScaleY();
}

PageSteps::Place PageSteps::CurrentPlace() const {
    return m_control.GetPageScreenRect(m_control.GetCurrentPageIndex());
}

bool PageSteps::Fits(const Place& place, bool bAcross) const {
    return place &&
           (bAcross ? place->nWidth : place->nHeight) <= ScreenLength(bAcross) + kSamePlace;
}

bool PageSteps::IsAtEdge(int nDirection, bool bAcross) const {
    const Place place = ShowsSinglePage() ? CurrentPlace() : std::nullopt;
    if (!place) {
        return false;
    }
    return LeftToGo(*place, nDirection, bAcross) <= kSamePlace;
}

// How far the page reaches beyond the screen on that side.
double PageSteps::LeftToGo(const Render_PageScreenOffsetInfo& place, int nDirection,
                           bool bAcross) const {
    const double dbNear = bAcross ? place.dbOffsetX : place.dbOffsetY;
    const double dbFar = dbNear + (bAcross ? place.nWidth : place.nHeight);
    return nDirection > 0 ? dbFar - ScreenLength(bAcross) : -dbNear;
}

// Where a page stands alone, no step is spent on a rest of it that shows nothing new.
double PageSteps::ScreenStep(int nDirection) const {
    const double dbScreen = ScreenLength(false);
    const Place place = ShowsSinglePage() ? CurrentPlace() : std::nullopt;
    const double dbLeft = place ? LeftToGo(*place, nDirection, false) : 0.0;
    const bool bLast = dbLeft > 0.0 && dbLeft <= kLastScroll * dbScreen;
    return bLast ? dbLeft : kScreenScroll * dbScreen;
}

void PageSteps::Turn(int nDirection, bool bAcross) const {
    const std::int32_t nNext = m_control.GetCurrentPageIndex() + nDirection;
    if (nNext < 0 || nNext >= m_control.GetPageCount()) {
        return;
    }
    m_control.GotoPage(nNext);
    if (nDirection < 0 && !bAcross) {
        ShowEnd(nNext);
    }
}

// Of a page that begins at the screen's top and ends below it.
void PageSteps::ShowEnd(std::int32_t nPage) const {
    const Place place = m_control.GetPageScreenRect(nPage);
    if (place && !Fits(place, false)) {
        ScrollAndSettle(m_control, place->dbOffsetY + place->nHeight - ScreenLength(false), 0.0);
    }
}

// In a column: the page whose top is the nearest beyond the screen's top. May be
// none of the document's.
std::int32_t PageSteps::PageToward(int nDirection) const {
    const auto pages = m_control.GetVisiblePages();
    for (const std::int32_t nPage : pages) {
        const Place place = m_control.GetPageScreenRect(nPage);
        if (place && nDirection > 0 && place->dbOffsetY > kSamePlace) {
            return nPage;
        }
        if (place && nDirection < 0 && place->dbOffsetY < -kSamePlace) {
            return nPage; // only the first one can begin above
        }
    }
    if (pages.empty()) {
        return m_control.GetCurrentPageIndex() + nDirection;
    }
    return nDirection > 0 ? pages.back() + 1 : pages.front() - 1;
}

void PageSteps::StepPage(int nDirection) const {
    const std::int32_t nPage = PageToward(nDirection);
    if (nPage < 0 || nPage >= m_control.GetPageCount()) {
        ScrollAndSettle(m_control, nDirection * ScreenLength(false), 0.0); // to the very end
        return;
    }
    const Place before = CurrentPlace();
    m_control.GotoPage(nPage);
    const Place after = m_control.GetPageScreenRect(nPage);
    if (before && after && !Fits(after, true)) { // the reader stays in the column of text
        ScrollAndSettle(m_control, 0.0, after->dbOffsetX - before->dbOffsetX);
    }
    if (nDirection < 0) {
        ShowEnd(nPage);
    }
}

void PageSteps::StepScreen(int nDirection) const {
    if (IsAtEdge(nDirection, false)) {
        Turn(nDirection, false);
    } else if (ShowsColumnOfPages() && Fits(CurrentPlace(), false)) {
        StepPage(nDirection);
    } else {
        ScrollAndSettle(m_control, nDirection * ScreenStep(nDirection), 0.0);
    }
}

void PageSteps::StepLine(int nDirection, bool bAcross, double dbLine) const {
    if (IsAtEdge(nDirection, bAcross)) {
        Turn(nDirection, bAcross);
    } else if (bAcross && Fits(CurrentPlace(), true)) {
        StepPage(nDirection);
    } else {
        ScrollAndSettle(m_control, bAcross ? 0.0 : nDirection * dbLine,
                        bAcross ? nDirection * dbLine : 0.0);
    }
}

}
