#include "widget/ViewZoom.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <memory>
#include <utility>

#include "control/PDFViewCtrl.h"
#include "document/engine/HostServices.h"
#include "document/engine/PDFDoc.h"
#include "platform/system/Environment.h"
#include "viewers/core/Modes.h"
#include "widget/PageSteps.h"
#include "widget/ViewKeeper.h"

namespace velko::vkit {

using Windows::Foundation::Point;

namespace {

constexpr double kPointsPerInch = 72.0;
constexpr std::array kSteps{0.1, 0.15, 0.25, 0.33, 0.5, 0.67, 0.75, 0.8, 0.9, 1.0,
                            1.1, 1.25, 1.5,  1.75, 2.0, 2.5,  3.0,  4.0, 5.0, 6.0};
constexpr double kLeast = 0.1;        // for an overview of many pages
constexpr double kVisibleStep = 1.08; // a lesser factor is hardly seen
constexpr double kSameZoom = 0.001;   // as a share
constexpr double kHair = 0.02;        // of the view, by which a top may have slipped out

}

bool ViewZoom::ZoomsText() const {
    return m_control.GetPageLayoutMode() == LayoutMode::kReflow;
}

bool ViewZoom::HasFit() const {
    return m_nFit != ZoomMode::kNone && !ZoomsText();
}

// --- fits ------------------------------------------------------------------

double ViewZoom::WidthOfAll(double dbWidth) const {
    const auto pExtents =
        std::dynamic_pointer_cast<velko::pdf::IPageExtents>(m_control.GetPDFDoc());
    const auto largest = pExtents ? pExtents->LargestPage() : velko::pdf::PageExtent();
    const bool bTurned = m_control.GetRotate() % 2 != 0;
    const double dbInches = (bTurned ? largest.fHeight : largest.fWidth) / kPointsPerInch;
    if (!(dbInches > 0.0)) {
        return dbWidth;
    }
    const double dbDpi = Windows::Graphics::Display::DisplayInformation::LogicalDpi();
    return std::min(dbWidth, m_control.GetCanvasSize().Width / (dbInches * dbDpi));
}

double ViewZoom::Fitted() const {
    const double dbWidth = m_control.GetFitScale(ZoomMode::kFitWidth);
    const double dbHeight = m_control.GetFitScale(ZoomMode::kFitHeight);
    double dbFit = std::min(dbWidth, dbHeight);
    if (m_nFit == ZoomMode::kFitWidth) {
        dbFit = m_steps.ShowsSinglePage() ? dbWidth : WidthOfAll(dbWidth);
    } else if (m_nFit == ZoomMode::kFitHeight) {
        dbFit = dbHeight;
    }
    return std::min(dbFit, Most());
}

double ViewZoom::FitOr(double dbZoom) const {
    return HasFit() ? Fitted() : dbZoom;
}

void ViewZoom::NoteFit() {
    m_nPage = m_control.GetCurrentPageIndex();
    m_fScale = m_control.GetScale();
    m_dbAim = FitOr(0.0);
}

bool ViewZoom::NoteFitLeft() {
    const bool bSingle = m_steps.ShowsSinglePage();
    if (!HasFit() || (bSingle && m_control.GetVisiblePages().size() > 1)) {
        return false; // a page that is being turned to has yet to come to its scale
    }
    const float fScale = m_control.GetScale();
    const std::int32_t nPage = m_control.GetCurrentPageIndex();
    const bool bTurned = bSingle && std::exchange(m_nPage, nPage) != nPage;
    if (bTurned) {
        m_fScale = fScale;
    } else if (fScale != m_fScale) {
        m_nFit = ZoomMode::kNone;
    }
    return bTurned;
}

// A single page once it rests; the widest page of a column may become known later
// than its width was asked for.
void ViewZoom::FollowFit(bool bTurned) {
    const bool bSingle = m_steps.ShowsSinglePage();
    if (!HasFit() || (!bSingle && m_nFit != ZoomMode::kFitWidth) ||
        (bSingle && m_control.GetVisiblePages().size() > 1)) {
        return;
    }
    const double dbAim = Fitted();
    const double dbNow = bTurned ? m_control.GetScale() : m_dbAim;
    if (std::abs(dbAim - dbNow) > kSameZoom * dbAim) {
        ZoomToFit();
    }
    m_dbAim = dbAim;
}

void ViewZoom::FollowPage() {
    const bool bFollows = HasFit() && m_nFit != ZoomMode::kFitWidth && !m_steps.ShowsSinglePage();
    if (bFollows && std::abs(Fitted() - m_dbAim) > kSameZoom * m_dbAim) {
        ZoomToFit();
    }
}

void ViewZoom::ZoomToFit() {
    const std::int32_t nPage = m_control.GetCurrentPageIndex();
    Zoom(Fitted()); // whatever it is
    if (m_nFit != ZoomMode::kFitWidth) {
        m_control.GotoPage(nPage);
    }
    NoteFit();
}

// --- zooms -----------------------------------------------------------------

double ViewZoom::Least() const {
    if (ZoomsText()) {
        return m_control.GetMinScale();
    }
    const double dbPage = std::min(m_control.GetFitScale(ZoomMode::kFitWidth),
                                   m_control.GetFitScale(ZoomMode::kFitHeight));
    return std::min({kLeast, static_cast<double>(m_control.GetMinScale()), dbPage});
}

double ViewZoom::Most() const {
    return m_control.GetMaxScale();
}

double ViewZoom::Limited(double dbZoom) const {
    const double dbLeast = Least();
    return std::clamp(dbZoom, dbLeast, std::max(dbLeast, Most()));
}

Point ViewZoom::Centre() const {
    const auto size = m_control.GetCanvasSize();
    const float fHeight = size.Height * m_control.CompositionScaleY();
    const auto place = m_control.GetPageScreenRect(m_control.GetCurrentPageIndex());
    const bool bTopInView =
        place && place->dbOffsetY > -kHair * fHeight && place->dbOffsetY < fHeight;
    return {size.Width * m_control.CompositionScaleX() / 2.0F, bTopInView ? 0.0F : fHeight / 2.0F};
}

void ViewZoom::ZoomTo(double dbZoom) {
    Zoom(Limited(dbZoom));
}

void ViewZoom::Zoom(double dbZoom) {
    if (ZoomsText()) {
        if (const auto keeper = ViewKeeper::Remember(m_control)) {
            keeper->RestoreTurned(m_control, dbZoom);
        } else {
            m_control.ZoomAtPoint({}, dbZoom, false, true);
        }
        return;
    }
    m_control.ZoomAtPoint(Centre(), dbZoom, false, true);
}

double ViewZoom::StepIn() const {
    const double dbNow = m_control.GetScale();
    const auto it = std::lower_bound(kSteps.begin(), kSteps.end(), dbNow * kVisibleStep);
    return Limited(it == kSteps.end() ? std::max(dbNow, kSteps.back()) : *it);
}

double ViewZoom::StepOut() const {
    const double dbNow = m_control.GetScale();
    const auto it = std::upper_bound(kSteps.begin(), kSteps.end(), dbNow / kVisibleStep);
    return Limited(it == kSteps.begin() ? std::min(dbNow, kSteps.front()) : *std::prev(it));
}

bool ViewZoom::IsAt(double dbZoom) const {
    return std::abs(m_control.GetScale() - dbZoom) <= kSameZoom * dbZoom;
}

}
