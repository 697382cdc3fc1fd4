#include "widget/FlingLimit.h"

#include <algorithm>
#include <cmath>

#include "control/PDFViewCtrl.h"
#include "platform/qt/QtElementWindow.h"
#include "viewers/core/Modes.h"

namespace velko::vkit {

namespace {

constexpr double kTrifle = 1e-3; // device pixels
constexpr double kFlick = 3.0;   // device pixels in a frame: slower ones decide nothing
constexpr double kFramesATurn = 10.0;

}

// Later than the control's own handler, which has moved the pages by then.
FlingLimit::FlingLimit(PDFViewCtrl& control, Platform::Qt::QtElementWindow& window)
    : m_control(control), m_window(window) {
    m_token = m_window.Panel()->ManipulationDelta.add(
        [this](const auto& args) { OnMoved(args.IsInertial); });
}

FlingLimit::~FlingLimit() {
    m_window.Panel()->ManipulationDelta.remove(m_token);
}

void FlingLimit::OnMoved(bool bInertial) {
    if (m_control.GetPageLayoutMode() != LayoutMode::kSinglePage) {
        return;
    }
    const auto pages = m_control.GetVisiblePages();
    if (!bInertial) {
        m_pages = pages;
        m_dbPush = 0.0;
        m_dbLeft = LeftEdge();
        return;
    }
    if (m_pages.size() == 1 && pages.size() > 1) {
        BeginTurn(pages);
    }
    if (pages == m_pages) {
        CarryOn();
    }
    if (pages != m_pages || HasTurned()) {
        m_window.StopInertia();
    }
}

// A page that is narrower than the screen has room to slide before its neighbour
// comes in. A wider one is moved within its edges.
void FlingLimit::BeginTurn(const std::vector<std::int32_t>& pages) {
    const auto place = m_control.GetPageScreenRect(m_pages.front());
    if (place && place->nWidth < ScreenWidth()) {
        m_pages = pages;
        m_dbLeft = LeftEdge();
    } else {
        PutBack(pages);
    }
}

// A flick is an answer of its own: whichever of the two pages it goes to comes to
// its place, though the movement alone would end before it.
void FlingLimit::CarryOn() {
    const auto way = WayLeft();
    if (!way) {
        return;
    }
    const double dbStep = LeftEdge() - m_dbLeft;
    if (m_dbPush == 0.0 && std::abs(dbStep) >= kFlick) {
        m_dbPush = std::copysign(ScreenWidth() / kFramesATurn, dbStep);
    }
    if (std::abs(dbStep) < std::abs(m_dbPush)) {
        const double dbLeft = m_dbPush < 0.0 ? way->dbToLater : way->dbToEarlier;
        const double dbMore = std::min(std::abs(m_dbPush - dbStep), std::max(0.0, dbLeft));
        m_control.MoveScreen(0.0, std::copysign(dbMore, -m_dbPush));
    }
    m_dbLeft = LeftEdge();
}

double FlingLimit::LeftEdge() const {
    const auto place =
        m_pages.empty() ? std::nullopt : m_control.GetPageScreenRect(m_pages.front());
    return place ? place->dbOffsetX : 0.0;
}

// Moves the page that the inertia brought in out of the screen, and a trifle
// further, with which it goes.
void FlingLimit::PutBack(const std::vector<std::int32_t>& pages) {
    const bool bForward = pages.front() == m_pages.front();
    if (const auto place = m_control.GetPageScreenRect(bForward ? pages.back() : pages.front())) {
        const double dbIn =
            bForward ? ScreenWidth() - place->dbOffsetX : place->dbOffsetX + place->nWidth;
        m_control.MoveScreen(0.0, bForward ? -dbIn : dbIn);
        m_control.MoveScreen(0.0, bForward ? -kTrifle : kTrifle);
    }
}

double FlingLimit::ScreenWidth() const {
    return m_control.GetCanvasSize().Width * m_control.CompositionScaleX();
}

// Of the two pages of a turn the later one comes in from the right, the earlier
// one from the left.
std::optional<FlingLimit::Way> FlingLimit::WayLeft() const {
    if (m_pages.size() < 2) {
        return std::nullopt;
    }
    const auto earlier = m_control.GetPageScreenRect(m_pages.front());
    const auto later = m_control.GetPageScreenRect(m_pages.back());
    if (!earlier || !later) {
        return std::nullopt;
    }
    const double dbScreen = ScreenWidth();
    const double dbLaterRest = std::max(0.0, (dbScreen - later->nWidth) * 0.5);
    const double dbSpare = dbScreen - earlier->nWidth;
    const double dbEarlierRest = dbSpare > 0.0 ? dbSpare * 0.5 : dbSpare;
    return Way{later->dbOffsetX - dbLaterRest, dbEarlierRest - earlier->dbOffsetX};
}

bool FlingLimit::HasTurned() const {
    const auto way = WayLeft();
    return way && (way->dbToLater <= 0.0 || way->dbToEarlier <= 0.0);
}

}
