// Zoom, rotation and layout mode.

#include <algorithm>
#include <cmath>
#include <memory>

#include "control/PDFViewCtrl_p.h"
#include "control/VelkoViewControl.h"
#include "document/engine/ErrorCode.h"
#include "platform/system/Environment.h"
#include "platform/ui/SwapChainPanel.h"
#include "viewers/core/Modes.h"

namespace velko::vkit {

namespace {

constexpr double kPointsPerInch = 72.0;

// Empty for a page that the engine cannot measure: it must not keep the reader
// from the others.
std::shared_ptr<VLK_PageSize> ReadablePageSize(VLK_Document& document, std::int32_t nPageIndex) {
    try {
        return document.GetPageSize(nPageIndex);
    } catch (const velko::common::EngineException&) {
        return nullptr;
    }
}

}

std::shared_ptr<Windows::UI::Xaml::Controls::SwapChainPanel> PDFViewCtrl::CanvasPanel() const {
    return m_pViewControl ? m_pViewControl->CanvasPanel() : nullptr;
}

std::shared_ptr<PDFViewCanvas> PDFViewCtrl::Canvas() const {
    return m_pViewControl ? m_pViewControl->ViewCtrl() : nullptr;
}

PDFViewCtrl::Size PDFViewCtrl::GetCanvasSize() {
    const auto pSelf = Enter();
    const auto pPanel = CanvasPanel();
    if (!pPanel) {
        return {};
    }
    const Size size{static_cast<float>(pPanel->ActualWidth()),
                    static_cast<float>(pPanel->ActualHeight())};
    if (size.Width < 0.0F || size.Height < 0.0F) {
        throw Platform::InvalidArgumentException("a canvas of negative size");
    }
    return size;
}

float PDFViewCtrl::CompositionScaleX() {
    const auto pSelf = Enter();
    const auto pPanel = CanvasPanel();
    return pPanel ? pPanel->CompositionScaleX() : 1.0F;
}

float PDFViewCtrl::CompositionScaleY() {
    const auto pSelf = Enter();
    const auto pPanel = CanvasPanel();
    return pPanel ? pPanel->CompositionScaleY() : 1.0F;
}

std::int32_t PDFViewCtrl::GetZoomMode() {
    return Enter()->m_nZoomMode;
}

void PDFViewCtrl::SetZoomMode(std::int32_t nMode) {
    const auto pSelf = Enter();
    const double dbFit = GetFitScale(nMode);
    const float fCurrent = GetScale();
    m_nZoomMode = nMode;
    if (fCurrent != static_cast<float>(dbFit)) {
        SetScale(static_cast<float>(dbFit));
        LayOutAt(GetScale());
    }
}

void PDFViewCtrl::LayOutAt(double dbScale) {
    WithManager([&](PDFViewerManager& manager) {
        manager.InitLayOut(GetCurrentPageIndex(), dbScale, 0.0, 0.0);
    });
}

std::int32_t PDFViewCtrl::GetPageLayoutMode() {
    const auto pSelf = Enter();
    return m_pPageViewMgr ? m_pPageViewMgr->LayoutMode() : LayoutMode::kNone;
}

void PDFViewCtrl::SetDefaultLayoutMode(std::int32_t nMode) {
    const auto pSelf = Enter();
    m_nLayoutMode = nMode;
}

void PDFViewCtrl::SetPageLayoutMode(std::int32_t nMode) {
    const auto pSelf = Enter();
    const auto pManager = m_pPageViewMgr;
    const std::int32_t nOldMode = GetPageLayoutMode();
    if (nMode == nOldMode || nMode == LayoutMode::kNone || !pManager) {
        return;
    }
    const std::int32_t nPageIndex = GetCurrentPageIndex();
    const auto pDocument = OpenDocument();
    if (!pManager->ChangeViewer(nMode, pDocument, Canvas())) {
        return;
    }
    pManager->InitLayOut(nPageIndex, 1.0, 0.0, 0.0);
    if (m_bDisposed || pManager->LayoutMode() != nMode || OpenDocument() != pDocument) {
        return; // a page event brought another mode or document, which has told of itself
    }
    PageLayoutModeChangedEvent.raise(
        pSelf, std::make_shared<PageLayoutModeChangedEventArgs>(GetPDFDoc(), nOldMode, nMode));
}

double PDFViewCtrl::GetFitScale(std::int32_t nZoomMode) {
    const auto pSelf = Enter();
    const auto pDocument = OpenDocument();
    const auto pPage = pDocument ? ReadablePageSize(*pDocument, GetCurrentPageIndex()) : nullptr;
    if (!pPage) {
        return 1.0;
    }
    const Size size = GetCanvasSize();
    const double dbDpi = Windows::Graphics::Display::DisplayInformation::LogicalDpi();
    const double dbWidth = pPage->fWidth / kPointsPerInch * dbDpi;
    const double dbHeight = pPage->fHeight / kPointsPerInch * dbDpi;
    const std::int32_t nRotate = GetRotate();
    const bool bTurned = nRotate == 1 || nRotate == 3;
    switch (nZoomMode) {
        case ZoomMode::kFitPage: // a turned page is fitted by its width alone
            return bTurned ? size.Height / dbWidth
                           : std::min(size.Height / dbHeight, size.Width / dbWidth);
        case ZoomMode::kFitWidth:
            return size.Width / (bTurned ? dbHeight : dbWidth);
        case ZoomMode::kFitHeight:
            return size.Height / (bTurned ? dbWidth : dbHeight);
        default:
            return 1.0;
    }
}

float PDFViewCtrl::GetScale() {
    return WithDocument(0.0F,
                        [this](VLK_Document&) { return WithViewer(1.0F, &IPDFViewer::GetScale); });
}

float PDFViewCtrl::GetMinScale() {
    return WithDocument(0.0F, [this](VLK_Document&) {
        return WithViewer(kNoViewerLimits.fLeast, &IPDFViewer::GetMinScale);
    });
}

float PDFViewCtrl::GetMaxScale() {
    return WithDocument(0.0F, [this](VLK_Document&) {
        return WithViewer(kNoViewerLimits.fMost, &IPDFViewer::GetMaxScale);
    });
}

void PDFViewCtrl::CheckFinite(double dbFirst, double dbSecond) {
    if (!std::isfinite(dbFirst) || !std::isfinite(dbSecond)) {
        throw Platform::InvalidArgumentException("a move or scale that is no number");
    }
}

void PDFViewCtrl::SetScale(float fScale) {
    WithShown([&](IPDFViewer& viewer) {
        if (std::isnan(fScale)) {
            throw Platform::InvalidArgumentException("a scale that is no number");
        }
        const float fBefore = viewer.GetScale();
        viewer.SetScale(std::min(std::max(fScale, viewer.GetMinScale()), viewer.GetMaxScale()));
        if (const float fAfter = viewer.GetScale(); fAfter != fBefore) {
            LayOutAt(fAfter);
        }
    });
}

void PDFViewCtrl::ZoomAtPoint(Point ptCentre, double dbScale, bool bIsInertial,
                              bool isScrollComplete) {
    const auto pSelf = Enter();
    CheckFinite(ptCentre.X, ptCentre.Y);
    CheckFinite(dbScale, 0.0);
    const auto pManager = m_pPageViewMgr;
    if (!OpenDocument() || !pManager) {
        return;
    }
    pManager->PageScaled(ptCentre, dbScale, bIsInertial, isScrollComplete);
    if (const auto pViewer = pManager->GetViewer()) {
        pViewer->RedrawScreen();
    }
}

void PDFViewCtrl::AlignPageAfterScroll(double dbOffsetY, double dbOffsetX) {
    WithViewer([&](IPDFViewer& viewer) {
        CheckFinite(dbOffsetY, dbOffsetX);
        viewer.AlignPageAfterScroll(dbOffsetY, dbOffsetX);
    });
}

void PDFViewCtrl::RotateViewer(std::int32_t nQuarterTurns) {
    WithDocument([&](VLK_Document&) {
        WithManager([&](PDFViewerManager& manager) { manager.RotateViewer(nQuarterTurns); });
    });
}

std::int32_t PDFViewCtrl::GetRotate() {
    return WithDocument(0, [this](VLK_Document&) { return WithViewer(0, &IPDFViewer::GetRotate); });
}

}
