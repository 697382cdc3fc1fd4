// The reader's commands and keys.
#include <QKeyEvent>
#include <algorithm>
#include <array>
#include <cmath>

#include "platform/qt/QtElementWindow.h"
#include "settings/AppConfig.h"
#include "viewers/core/Modes.h"
#include "widget/VelkoPdfView.h"

namespace velko::vkit {

namespace {

constexpr double kLineScroll = 60.0; // Qt's units

}

// --- pages -----------------------------------------------------------------

void VelkoPdfView::GotoPage(int nPage) {
    Command([&] {
        m_pControl->GotoPage(std::clamp(nPage, 0, std::max(0, m_pControl->GetPageCount() - 1)));
        m_zoom.FollowPage();
    });
}

void VelkoPdfView::GotoNextPage() {
    GotoPage(m_pControl->GetCurrentPageIndex() + 1);
}

void VelkoPdfView::GotoPrevPage() {
    GotoPage(m_pControl->GetCurrentPageIndex() - 1);
}

void VelkoPdfView::JumpToPage(int nPage) {
    Command([this] { LeavePlace(); });
    GotoPage(nPage);
}

void VelkoPdfView::GotoFirstPage() {
    JumpToPage(0);
}

void VelkoPdfView::GotoLastPage() {
    JumpToPage(m_pControl->GetPageCount() - 1);
}

// With the fit as it stands now: a gesture may have ended it.
void VelkoPdfView::LeavePlace() {
    FollowFit();
    m_history.Leave(*m_pControl, m_zoom);
}

void VelkoPdfView::Travel(void (ViewHistory::*fnGo)(PDFViewCtrl&, ViewZoom&)) {
    Command([&] {
        Hold();
        FollowFit();
        (m_history.*fnGo)(*m_pControl, m_zoom);
    });
}

void VelkoPdfView::GoBack() {
    if (CanGoBack()) {
        Travel(&ViewHistory::GoBack);
    }
}

void VelkoPdfView::GoForward() {
    if (CanGoForward()) {
        Travel(&ViewHistory::GoForward);
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
            m_zoom.FollowPage();
        }
    });
}

// --- zoom ------------------------------------------------------------------

double VelkoPdfView::LeastZoom() const {
    return m_zoom.Least();
}

double VelkoPdfView::MostZoom() const {
    return m_zoom.Most();
}

void VelkoPdfView::ZoomTo(double dbZoom) {
    Command([&] {
        if (!m_reading.IsOn()) {
            m_zoom.SetFitMode(ZoomMode::kNone);
        }
        m_zoom.ZoomTo(dbZoom);
    });
}

// The zoom stays open until the wheel rests, so that nothing is rendered for the
// scales in between.
void VelkoPdfView::ZoomByWheel(QPointF ptWindow, double dbFactor) {
    Command([&] {
        const double dbNow = m_pControl->GetScale();
        if (m_reading.IsOn()) {
            m_zoom.ZoomTo(dbNow * dbFactor);
            return;
        }
        const QPointF pt = ptWindow * devicePixelRatioF();
        m_ptWheel = {static_cast<float>(pt.x()), static_cast<float>(pt.y())};
        m_fWheelZoom =
            static_cast<float>(dbFactor < 1.0 ? std::min(dbNow, m_zoom.Limited(dbNow * dbFactor))
                                              : m_zoom.Limited(dbNow * dbFactor));
        m_pWindow->StopInertia();
        m_pControl->ZoomAtPoint(m_ptWheel, m_fWheelZoom, false, false);
    });
}

void VelkoPdfView::SettleWheel() {
    Command([&] {
        if (m_pControl->GetScale() == m_fWheelZoom &&
            !m_reading.IsOn()) { // else something else has zoomed meanwhile
            m_pControl->ZoomAtPoint(m_ptWheel, m_fWheelZoom, false, true);
        }
    });
}

void VelkoPdfView::ZoomIn() {
    StepZoom(m_zoom.StepIn());
}

void VelkoPdfView::ZoomOut() {
    StepZoom(m_zoom.StepOut());
}

void VelkoPdfView::ZoomToActualSize() {
    constexpr double kFirst = 0.0;
    if (m_reading.IsOn()) {
        AppConfig::ReflowTextScale(kFirst);
        ZoomTo(m_reading.FirstScale(devicePixelRatioF()));
    } else {
        ZoomTo(1.0);
    }
}

// At the limit it does nothing, and leaves a fit in force.
void VelkoPdfView::StepZoom(double dbZoom) {
    if (HasDocument() && !m_zoom.IsAt(dbZoom)) {
        ZoomTo(dbZoom);
    }
}

void VelkoPdfView::SetFit(Fit eFit) {
    Command([&] {
        m_zoom.SetFitMode(std::int32_t(eFit));
        if (m_zoom.HasFit()) {
            m_zoom.ZoomToFit();
        }
    });
}

// --- rotation, layout, colours ---------------------------------------------

void VelkoPdfView::RotateBy(int nQuarterTurns) {
    constexpr int kTurns = 4;
    if (m_reading.IsOn()) {
        return;
    }
    Command([&] {
        const auto keeper = ViewKeeper::Remember(*m_pControl, ViewKeeper::Anchor::Middle);
        Hold();
        const int nTurn = (m_pControl->GetRotate() + nQuarterTurns) % kTurns;
        m_pControl->RotateViewer((nTurn + kTurns) % kTurns);
        if (keeper && keeper->Page() == m_pControl->GetCurrentPageIndex()) {
            keeper->RestoreTurned(*m_pControl, m_zoom.FitOr(keeper->Zoom()));
        } else if (keeper) { // the page that is read is not the one at the top
            const float fMiddle = m_pControl->GetCanvasSize().Width / 2.0F;
            m_pControl->ZoomAtPoint({fMiddle * m_pControl->CompositionScaleX(), 0.0F},
                                    m_zoom.FitOr(keeper->Zoom()), false, true);
        }
        m_zoom.NoteFit();
    });
}

void VelkoPdfView::SetLayoutMode(Layout eLayout) {
    Command([&] {
        if (m_pControl->GetPageLayoutMode() != std::int32_t(eLayout)) {
            ShowLayout(eLayout);
        }
    });
}

void VelkoPdfView::ShowLayout(Layout eLayout) {
    const auto keeper = m_reading.Place();
    m_reading.KeepPlace(keeper);
    if (!m_reading.IsOn()) {
        m_reading.KeepPages();
        m_eLastPages = static_cast<Layout>(m_pControl->GetPageLayoutMode());
    }
    const ReadingMode::Pages pages = m_reading.KeptPages();
    Hold();
    m_pControl->SetPageLayoutMode(std::int32_t(eLayout));
    if (!m_reading.IsOn() && m_pControl->GetRotate() != pages.nRotate) {
        m_pControl->RotateViewer(pages.nRotate);
    }
    const double dbPages = pages.dbZoom > 0.0 ? pages.dbZoom : m_pControl->GetScale();
    const double dbZoom = m_reading.IsOn()
                              ? m_zoom.Limited(m_reading.FirstScale(devicePixelRatioF()))
                              : m_zoom.FitOr(dbPages);
    if (keeper) {
        keeper->RestoreTurned(*m_pControl, dbZoom);
    } else {
        m_zoom.ZoomTo(dbZoom);
    }
    m_zoom.NoteFit();
}

void VelkoPdfView::SetReading(bool bOn) {
    if (bOn != m_reading.IsOn()) {
        SetLayoutMode(bOn ? Layout::Text : m_eLastPages);
    }
}

void VelkoPdfView::SetTextPictures(bool bShow) {
    Guard([&] {
        const auto keeper = m_reading.IsOn() ? m_reading.Place() : std::optional<ViewKeeper>();
        m_reading.KeepPlace(keeper);
        m_reading.ShowPictures(bShow);
        if (keeper) {
            Hold();
            keeper->RestoreTurned(*m_pControl, keeper->ZoomIn(*m_pControl));
        }
    });
    QueueRefresh();
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
