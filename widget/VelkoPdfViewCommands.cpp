// The reader's commands and keys.
#include <QKeyEvent>
#include <algorithm>
#include <array>
#include <cmath>

#include "platform/qt/QtElementWindow.h"
#include "settings/AppConfig.h"
#include "viewers/core/Modes.h"
#include "widget/FitZoom.h"
#include "widget/VelkoPdfView.h"

namespace velko::vkit {

using Windows::Foundation::Point;

namespace {

constexpr double kLineScroll = 60.0; // Qt's units
constexpr std::array kZoomSteps{0.25, 0.33, 0.5,  0.67, 0.75, 0.8, 0.9, 1.0, 1.1,
                                1.25, 1.5,  1.75, 2.0,  2.5,  3.0, 4.0, 5.0, 6.0};
constexpr double kVisibleStep = 1.08; // a lesser factor is hardly seen

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

void VelkoPdfView::ScrollByScreen(int nScreens) {
    Command([&] {
        for (int n = 0; n < std::abs(nScreens); ++n) {
            m_steps.StepScreen(nScreens > 0 ? 1 : -1);
        }
    });
}

// --- zoom ------------------------------------------------------------------

// In a small window a whole page may need less than the control's limit, and
// then the reader may come back there too.
double VelkoPdfView::LeastZoom() const {
    return std::min<double>(m_pControl->GetMinScale(), FitZoom(*m_pControl, ZoomMode::kFitPage));
}

double VelkoPdfView::MostZoom() const {
    return m_pControl->GetMaxScale();
}

double VelkoPdfView::Limited(double dbZoom) const {
    const double dbLeast = LeastZoom();
    return std::clamp(dbZoom, dbLeast, std::max(dbLeast, MostZoom()));
}

// While the page's top is in view the line at the window's top stays, so that a
// title is not thrown out of sight; else the middle.
Point VelkoPdfView::ZoomCentre() const {
    const auto size = m_pControl->GetCanvasSize();
    const float fHeight = size.Height * m_pControl->CompositionScaleY();
    const auto place = m_pControl->GetPageScreenRect(m_pControl->GetCurrentPageIndex());
    const bool bTopInView = place && place->dbOffsetY > -1.0 && place->dbOffsetY < fHeight;
    return {size.Width * m_pControl->CompositionScaleX() / 2.0F,
            bTopInView ? 0.0F : fHeight / 2.0F};
}

void VelkoPdfView::ApplyZoom(double dbZoom) {
    m_pControl->ZoomAtPoint(ZoomCentre(), Limited(dbZoom), false, true);
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
    const double dbLeast = m_pControl->GetScale() * kVisibleStep;
    const auto it = std::lower_bound(kZoomSteps.begin(), kZoomSteps.end(), dbLeast);
    ZoomTo(it == kZoomSteps.end() ? kZoomSteps.back() : *it);
}

void VelkoPdfView::ZoomOut() {
    const double dbMost = m_pControl->GetScale() / kVisibleStep;
    const auto it = std::upper_bound(kZoomSteps.begin(), kZoomSteps.end(), dbMost);
    ZoomTo(it == kZoomSteps.begin() ? kZoomSteps.front() : *std::prev(it));
}

double VelkoPdfView::FittedZoom() const {
    return FitZoom(*m_pControl, std::int32_t(m_eFit));
}

double VelkoPdfView::ZoomFor(const ViewKeeper& keeper) const {
    return m_eFit == Fit::None ? keeper.Zoom() : FittedZoom();
}

void VelkoPdfView::ApplyFit() {
    const int nPage = m_pControl->GetCurrentPageIndex();
    ApplyZoom(FittedZoom());
    if (m_eFit != Fit::Width) {
        m_pControl->GotoPage(nPage);
    }
    NoteFit();
}

// What the fit has led to: another scale means that somebody has left it, another
// aim that it has to follow.
void VelkoPdfView::NoteFit() {
    m_fFitScale = m_pControl->GetScale();
    m_dbFitAim = m_eFit == Fit::None ? 0.0 : FittedZoom();
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
        NoteFit();
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
        NoteFit();
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

void VelkoPdfView::SetScanColors(velko::common::ScanColors eColors) {
    m_eScanColors = eColors;
    Guard([&] { AppConfig::PageScanColors(static_cast<std::int32_t>(eColors)); });
    Command([this] {
        Hold();
        m_pControl->RedrawScreen();
    });
    QueueRefresh();
}

void VelkoPdfView::SetNightMode(bool bOn) {
    SetColors(bOn ? NightPageColors() : DayPageColors());
}

// --- keys ------------------------------------------------------------------

bool VelkoPdfView::HandleLineKey(int nKey) {
    switch (nKey) {
        case Qt::Key_Down:
        case Qt::Key_J:
            StepLine(1, false);
            return true;
        case Qt::Key_Up:
        case Qt::Key_K:
            StepLine(-1, false);
            return true;
        case Qt::Key_Right:
            StepLine(1, true);
            return true;
        case Qt::Key_Left:
            StepLine(-1, true);
            return true;
        default:
            return false;
    }
}

void VelkoPdfView::StepLine(int nDirection, bool bAcross) {
    Command([&] { m_steps.StepLine(nDirection, bAcross, kLineScroll * devicePixelRatioF()); });
}

bool VelkoPdfView::HandlePageKey(int nKey, bool bBack) {
    switch (nKey) {
        case Qt::Key_PageDown:
            ScrollByScreen(1);
            return true;
        case Qt::Key_PageUp:
        case Qt::Key_Backspace:
            ScrollByScreen(-1);
            return true;
        case Qt::Key_Space:
        case Qt::Key_Return:
        case Qt::Key_Enter:
            ScrollByScreen(bBack ? -1 : 1);
            return true;
        case Qt::Key_N:
            GotoNextPage();
            return true;
        case Qt::Key_P:
            GotoPrevPage();
            return true;
        case Qt::Key_Home:
            GotoFirstPage();
            return true;
        case Qt::Key_End:
            GotoLastPage();
            return true;
        default:
            return false;
    }
}

bool VelkoPdfView::HandleZoomKey(int nKey) {
    switch (nKey) {
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

bool VelkoPdfView::HandleKey(const QKeyEvent& event) {
    const bool bShift = event.modifiers().testFlag(Qt::ShiftModifier);
    return HandleLineKey(event.key()) || HandlePageKey(event.key(), bShift) ||
           HandleZoomKey(event.key());
}

void VelkoPdfView::keyPressEvent(QKeyEvent* pEvent) {
    constexpr auto kNoCommand = Qt::AltModifier | Qt::MetaModifier;
    if ((pEvent->modifiers() & kNoCommand) != 0 || !HandleKey(*pEvent)) {
        QWidget::keyPressEvent(pEvent);
    }
}

}
