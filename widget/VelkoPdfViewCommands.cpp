// The reader's commands and keys.
#include <QKeyEvent>
#include <algorithm>
#include <array>
#include <cmath>

#include "platform/qt/QtElementWindow.h"
#include "settings/AppConfig.h"
#include "widget/VelkoPdfView.h"

namespace velko::vkit {

using Windows::Foundation::Point;

namespace {

constexpr double kLineScroll = 60.0;  // Qt's units
constexpr double kScreenScroll = 0.9; // of the screen's height: a line or two stay in sight
constexpr std::array kZoomSteps{0.25, 0.33, 0.5,  0.67, 0.75, 0.8, 0.9, 1.0, 1.1,
                                1.25, 1.5,  1.75, 2.0,  2.5,  3.0, 4.0, 5.0, 6.0};
constexpr double kSameZoom = 0.005;
constexpr double kSamePlace = 1.0; // device pixels

}

bool VelkoPdfView::ShowsSinglePage() {
    return HasDocument() && m_pControl->GetPageLayoutMode() == std::int32_t(Layout::SinglePage);
}

// --- pages -----------------------------------------------------------------

void VelkoPdfView::GotoPage(int nPage) {
    Command([&] {
        m_pControl->GotoPage(std::clamp(nPage, 0, std::max(0, m_pControl->GetPageCount() - 1)));
    });
}

void VelkoPdfView::GotoNextPage() {
    GotoPage(m_pControl->GetCurrentPageIndex() + 1);
}

void VelkoPdfView::GotoPrevPage() {
    GotoPage(m_pControl->GetCurrentPageIndex() - 1);
}

void VelkoPdfView::JumpToPage(int nPage) {
    Command([&] { m_history.Leave(*m_pControl); });
    GotoPage(nPage);
}

void VelkoPdfView::GotoFirstPage() {
    JumpToPage(0);
}

void VelkoPdfView::GotoLastPage() {
    JumpToPage(m_pControl->GetPageCount() - 1);
}

// The zoom of the place is brought back, which ends a fit that led to another.
void VelkoPdfView::Travel(const std::function<void()>& fnGo) {
    Command([&] {
        Hold();
        fnGo();
        NoteFitLeft();
    });
}

void VelkoPdfView::GoBack() {
    if (CanGoBack()) {
        Travel([this] { m_history.GoBack(*m_pControl); });
    }
}

void VelkoPdfView::GoForward() {
    if (CanGoForward()) {
        Travel([this] { m_history.GoForward(*m_pControl); });
    }
}

// --- scrolling -------------------------------------------------------------

void VelkoPdfView::ScrollBy(double dbX, double dbY) {
    Command([&] { ScrollAndSettle(*m_pControl, dbY, dbX); });
}

// Where one page is shown at a time, and its edge on that side is in sight.
bool VelkoPdfView::IsAtEdge(int nDirection, bool bAcross) {
    if (!ShowsSinglePage()) {
        return false;
    }
    const auto place = m_pControl->GetPageScreenRect(m_pControl->GetCurrentPageIndex());
    if (!place) {
        return false;
    }
    const double dbNear = bAcross ? place->dbOffsetX : place->dbOffsetY;
    const double dbFar = dbNear + (bAcross ? place->nWidth : place->nHeight);
    return nDirection > 0 ? dbFar <= ScreenLength(bAcross) + kSamePlace : dbNear >= -kSamePlace;
}

double VelkoPdfView::ScreenLength(bool bAcross) {
    const auto size = m_pControl->GetCanvasSize();
    return bAcross ? size.Width * m_pControl->CompositionScaleX()
                   : size.Height * m_pControl->CompositionScaleY();
}

// Upward to the end of the page before.
void VelkoPdfView::TurnPage(int nDirection, bool bAcross) {
    const int nNext = m_pControl->GetCurrentPageIndex() + nDirection;
    if (nNext < 0 || nNext >= m_pControl->GetPageCount()) {
        return;
    }
    GotoPage(nNext);
    const auto place = m_pControl->GetPageScreenRect(nNext);
    if (nDirection < 0 && !bAcross && place && place->nHeight > ScreenLength(false)) {
        ScrollBy(0.0, place->dbOffsetY + place->nHeight - ScreenLength(false));
    }
}

// A step past the page's edge turns it.
bool VelkoPdfView::TurnsPage(int nDirection, bool bAcross) {
    if (!IsAtEdge(nDirection, bAcross)) {
        return false;
    }
    TurnPage(nDirection, bAcross);
    return true;
}

void VelkoPdfView::ScrollByScreen(int nScreens) {
    if (!TurnsPage(nScreens > 0 ? 1 : -1, false)) {
        ScrollBy(0.0, nScreens * kScreenScroll * height() * devicePixelRatioF());
    }
}

// --- zoom ------------------------------------------------------------------

// In a small window a whole page may need less than the control's limit, and
// then the reader may come back there too.
double VelkoPdfView::LeastZoom() const {
    return std::min<double>(m_pControl->GetMinScale(), FitZoom(Fit::Page));
}

double VelkoPdfView::MostZoom() const {
    return m_pControl->GetMaxScale();
}

double VelkoPdfView::Limited(double dbZoom) const {
    const double dbLeast = LeastZoom();
    return std::clamp(dbZoom, dbLeast, std::max(dbLeast, MostZoom()));
}

void VelkoPdfView::ApplyZoom(double dbZoom) {
    const auto size = m_pControl->GetCanvasSize();
    const Point ptMiddle{size.Width * m_pControl->CompositionScaleX() / 2.0F,
                         size.Height * m_pControl->CompositionScaleY() / 2.0F};
    m_pControl->ZoomAtPoint(ptMiddle, Limited(dbZoom), false, true);
}

void VelkoPdfView::ZoomTo(double dbZoom) {
    Command([&] {
        m_eFit = Fit::None;
        ApplyZoom(dbZoom);
    });
}

// The zoom stays open until the wheel rests, so that nothing is rendered for the
// scales in between.
void VelkoPdfView::ZoomByWheel(QPointF ptWindow, double dbFactor) {
    Command([&] {
        const double dbNow = m_pControl->GetScale();
        const QPointF pt = ptWindow * devicePixelRatioF();
        m_ptWheel = {static_cast<float>(pt.x()), static_cast<float>(pt.y())};
        m_fWheelZoom =
            static_cast<float>(dbFactor < 1.0 ? std::min(dbNow, Limited(dbNow * dbFactor))
                                              : Limited(dbNow * dbFactor));
        m_pWindow->StopInertia();
        m_pControl->ZoomAtPoint(m_ptWheel, m_fWheelZoom, false, false);
    });
}

void VelkoPdfView::SettleWheel() {
    Command([&] {
        if (m_pControl->GetScale() == m_fWheelZoom) { // else something else has zoomed meanwhile
            m_pControl->ZoomAtPoint(m_ptWheel, m_fWheelZoom, false, true);
        }
    });
}

void VelkoPdfView::ZoomIn() {
    const double dbZoom = m_pControl->GetScale();
    const auto it = std::find_if(kZoomSteps.begin(), kZoomSteps.end(),
                                 [dbZoom](double dbStep) { return dbStep > dbZoom + kSameZoom; });
    ZoomTo(it == kZoomSteps.end() ? kZoomSteps.back() : *it);
}

void VelkoPdfView::ZoomOut() {
    const double dbZoom = m_pControl->GetScale();
    const auto it = std::find_if(kZoomSteps.rbegin(), kZoomSteps.rend(),
                                 [dbZoom](double dbStep) { return dbStep < dbZoom - kSameZoom; });
    ZoomTo(it == kZoomSteps.rend() ? kZoomSteps.front() : *it);
}

// The control fits a turned page by one of its sides alone; a whole page has to
// fit by both.
double VelkoPdfView::FitZoom(Fit eFit) const {
    const double dbWidth = m_pControl->GetFitScale(std::int32_t(Fit::Width));
    const double dbHeight = m_pControl->GetFitScale(std::int32_t(Fit::Height));
    const double dbFit = eFit == Fit::Width    ? dbWidth
                         : eFit == Fit::Height ? dbHeight
                                               : std::min(dbWidth, dbHeight);
    return std::min<double>(dbFit, m_pControl->GetMaxScale());
}

double VelkoPdfView::ZoomFor(const ViewKeeper& keeper) const {
    return m_eFit == Fit::None ? keeper.Zoom() : FitZoom(m_eFit);
}

void VelkoPdfView::ApplyFit() {
    const int nPage = m_pControl->GetCurrentPageIndex();
    ApplyZoom(FitZoom(m_eFit));
    if (m_eFit != Fit::Width) {
        m_pControl->GotoPage(nPage);
    }
    m_fFitScale = m_pControl->GetScale();
}

void VelkoPdfView::SetFit(Fit eFit) {
    Command([&] {
        m_eFit = eFit;
        if (eFit != Fit::None) {
            ApplyFit();
        }
    });
}

// --- rotation, layout, colours ---------------------------------------------

void VelkoPdfView::RotateBy(int nQuarterTurns) {
    constexpr int kTurns = 4;
    Command([&] {
        const auto keeper = ViewKeeper::Remember(*m_pControl, ViewKeeper::Anchor::Middle);
        Hold();
        const int nTurn = (m_pControl->GetRotate() + nQuarterTurns) % kTurns;
        m_pControl->RotateViewer((nTurn + kTurns) % kTurns);
        if (keeper && keeper->Page() == m_pControl->GetCurrentPageIndex()) {
            keeper->RestoreTurned(*m_pControl, ZoomFor(*keeper));
        } else if (keeper) { // the page that is read is not the one at the top
            const float fMiddle = m_pControl->GetCanvasSize().Width / 2.0F;
            m_pControl->ZoomAtPoint({fMiddle * m_pControl->CompositionScaleX(), 0.0F},
                                    ZoomFor(*keeper), false, true);
        }
        m_fFitScale = m_pControl->GetScale();
    });
}

void VelkoPdfView::SetLayoutMode(Layout eLayout) {
    Command([&] {
        if (m_pControl->GetPageLayoutMode() == std::int32_t(eLayout)) {
            return;
        }
        const auto keeper = ViewKeeper::Remember(*m_pControl);
        const std::int32_t nRotate = m_pControl->GetRotate();
        Hold();
        m_pControl->SetPageLayoutMode(std::int32_t(eLayout));
        if (m_pControl->GetRotate() != nRotate) {
            m_pControl->RotateViewer(nRotate);
        }
        if (keeper) {
            keeper->RestoreTurned(*m_pControl, ZoomFor(*keeper));
        }
        m_fFitScale = m_pControl->GetScale();
    });
}

void VelkoPdfView::SetColors(const PageColors& colors) {
    if (!HasDocument()) {
        Guard([&] {
            AppConfig::SetTogether([&] {
                AppConfig::PageBackgroundColor(ToColor(colors.background));
                AppConfig::PageForegroundColor(ToColor(colors.foreground));
            });
        });
        ShowAround();
        QueueRefresh();
        return;
    }
    Command([&] {
        Hold();
        ShowAround(colors);
        m_pControl->SetPageColors(ToColor(colors.background), ToColor(colors.foreground));
    });
}

void VelkoPdfView::SetNightMode(bool bOn) {
    SetColors(bOn ? NightPageColors() : DayPageColors());
}

// --- keys ------------------------------------------------------------------

bool VelkoPdfView::HandleArrow(int nKey) {
    const double dbLine = kLineScroll * devicePixelRatioF();
    const bool bAcross = nKey == Qt::Key_Left || nKey == Qt::Key_Right;
    const int nDirection = nKey == Qt::Key_Right || nKey == Qt::Key_Down ? 1 : -1;
    if (!TurnsPage(nDirection, bAcross)) {
        ScrollBy(bAcross ? nDirection * dbLine : 0.0, bAcross ? 0.0 : nDirection * dbLine);
    }
    return true;
}

bool VelkoPdfView::HandleKey(const QKeyEvent& event) {
    switch (event.key()) {
        case Qt::Key_PageDown:
            ScrollByScreen(1);
            return true;
        case Qt::Key_PageUp:
            ScrollByScreen(-1);
            return true;
        case Qt::Key_Space:
            ScrollByScreen(event.modifiers().testFlag(Qt::ShiftModifier) ? -1 : 1);
            return true;
        case Qt::Key_Down:
        case Qt::Key_Up:
        case Qt::Key_Right:
        case Qt::Key_Left:
            return HandleArrow(event.key());
        case Qt::Key_Home:
            GotoFirstPage();
            return true;
        case Qt::Key_End:
            GotoLastPage();
            return true;
        case Qt::Key_Plus:
        case Qt::Key_Equal:
            ZoomIn();
            return true;
        case Qt::Key_Minus:
            ZoomOut();
            return true;
        default:
            return false;
    }
}

void VelkoPdfView::keyPressEvent(QKeyEvent* pEvent) {
    constexpr auto kNoCommand = Qt::AltModifier | Qt::MetaModifier;
    if ((pEvent->modifiers() & kNoCommand) != 0 || !HandleKey(*pEvent)) {
        QWidget::keyPressEvent(pEvent);
    }
}

}
