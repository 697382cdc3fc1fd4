// Zoom, rotation and layout mode.

#include <algorithm>
#include <cmath>
#include <memory>

#include "control/PDFViewCtrl.h"
#include "control/PDFViewerManager.h"
#include "control/VelkoViewControl.h"
#include "document/VLK_Document.h"
#include "document/engine/ErrorCode.h"
#include "platform/system/Environment.h"
#include "platform/ui/SwapChainPanel.h"
#include "surface/PDFViewCanvas.h"
#include "viewers/core/IPDFViewer.h"
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

PDFViewCtrl::Size PDFViewCtrl::CanvasSize() const {
    if (!m_pViewControl) {
        return {};
    }
    const auto& pPanel = m_pViewControl->CanvasPanel();
    const Size size{static_cast<float>(pPanel->ActualWidth()),
                    static_cast<float>(pPanel->ActualHeight())};
    if (size.Width < 0.0F || size.Height < 0.0F) {
        throw Platform::InvalidArgumentException("a canvas of negative size");
    }
    return size;
}

float PDFViewCtrl::ScaleX() const {
    return m_pViewControl ? m_pViewControl->CanvasPanel()->CompositionScaleX() : 1.0F;
}

float PDFViewCtrl::ScaleY() const {
    return m_pViewControl ? m_pViewControl->CanvasPanel()->CompositionScaleY() : 1.0F;
}

PDFViewCtrl::Size PDFViewCtrl::GetCanvasSize() {
    const auto pSelf = Enter();
    return CanvasSize();
}

float PDFViewCtrl::CompositionScaleX() {
    const auto pSelf = Enter();
    return ScaleX();
}

float PDFViewCtrl::CompositionScaleY() {
    const auto pSelf = Enter();
    return ScaleY();
}

std::int32_t PDFViewCtrl::GetZoomMode() {
    const auto pSelf = Enter();
    return m_nZoomMode;
}

void PDFViewCtrl::SetZoomMode(std::int32_t nMode) {
    const auto pSelf = Enter();
    const double dbFit = GetFitScale(nMode);
    const float fCurrent = GetScale();
    m_nZoomMode = nMode;
    if (fCurrent != static_cast<float>(dbFit)) {
        SetScale(static_cast<float>(dbFit));
        ManagerInitLayOut(CurrentPageOr0(), GetScale());
    }
}

std::int32_t PDFViewCtrl::GetPageLayoutMode() {
    const auto pSelf = Enter();
    return ManagerMode();
}

void PDFViewCtrl::SetDefaultLayoutMode(std::int32_t nMode) {
    const auto pSelf = Enter();
    m_nLayoutMode = nMode;
}

void PDFViewCtrl::SetPageLayoutMode(std::int32_t nMode) {
    const auto pSelf = Enter();
    const auto pManager = m_pPageViewMgr;
    const std::int32_t nPageIndex = CurrentPageOr0();
    const std::int32_t nOldMode = ManagerMode();
    if (nMode == nOldMode || nMode == LayoutMode::kNone || !pManager) {
        return;
    }
    const auto pDocument = OpenDocument();
    pManager->ChangeViewer(nMode, pDocument, Canvas());
    pManager->InitLayOut(nPageIndex, 1.0, 0.0, 0.0);
    if (pManager->LayoutMode() != nMode || OpenDocument() != pDocument) {
        return; // a page event brought another mode or document, which has told of itself
    }
    PageLayoutModeChangedEvent.raise(
        pSelf, std::make_shared<PageLayoutModeChangedEventArgs>(EngineDocument(), nOldMode, nMode));
}

double PDFViewCtrl::GetFitScale(std::int32_t nZoomMode) {
    const auto pSelf = Enter();
    const auto pDocument = OpenDocument();
    const auto pPage = pDocument ? ReadablePageSize(*pDocument, CurrentPageOr0()) : nullptr;
    if (!pPage) {
        return 1.0;
    }
    const Size size = CanvasSize();
    const double dbDpi = Windows::Graphics::Display::DisplayInformation::LogicalDpi();
    const double dbWidth = pPage->fWidth / kPointsPerInch * dbDpi;
    const double dbHeight = pPage->fHeight / kPointsPerInch * dbDpi;
    const auto pViewer = Viewer();
    const std::int32_t nRotate = pViewer ? pViewer->GetRotate() : 0;
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
    const auto pSelf = Enter();
    if (!OpenDocument()) {
        return 0.0F;
    }
    const auto pViewer = Viewer();
    return pViewer ? pViewer->GetScale() : 1.0F;
}

float PDFViewCtrl::GetMinScale() {
    const auto pSelf = Enter();
    if (!OpenDocument()) {
        return 0.0F;
    }
    const auto pViewer = Viewer();
    return pViewer ? pViewer->GetMinScale() : kNoViewerLimits.fLeast;
}

float PDFViewCtrl::GetMaxScale() {
    const auto pSelf = Enter();
    if (!OpenDocument()) {
        return 0.0F;
    }
    const auto pViewer = Viewer();
    return pViewer ? pViewer->GetMaxScale() : kNoViewerLimits.fMost;
}

float PDFViewCtrl::LimitScale(float fScale) {
    return std::min(std::max(fScale, GetMinScale()), GetMaxScale());
}

void PDFViewCtrl::CheckFinite(double dbFirst, double dbSecond) {
    if (!std::isfinite(dbFirst) || !std::isfinite(dbSecond)) {
        throw Platform::InvalidArgumentException("a move or scale that is no number");
    }
}

void PDFViewCtrl::SetScale(float fScale) {
    const auto pSelf = Enter();
    const auto pViewer = Viewer();
    if (!OpenDocument() || !pViewer) {
        return;
    }
    if (std::isnan(fScale)) {
        throw Platform::InvalidArgumentException("a scale that is no number");
    }
    const float fBefore = pViewer->GetScale();
    pViewer->SetScale(LimitScale(fScale));
    const float fAfter = pViewer->GetScale();
    if (fBefore != fAfter) {
        ManagerInitLayOut(pViewer->GetCurrentPageIndex(), fAfter);
    }
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
    const auto pSelf = Enter();
    CheckFinite(dbOffsetY, dbOffsetX);
    if (const auto pViewer = Viewer()) {
        pViewer->AlignPageAfterScroll(dbOffsetY, dbOffsetX);
    }
}

void PDFViewCtrl::RotateViewer(std::int32_t nRotate) {
    const auto pSelf = Enter();
    const auto pViewer = Viewer();
    if (OpenDocument() && pViewer) {
        pViewer->RotateViewer(nRotate);
    }
}

std::int32_t PDFViewCtrl::GetRotate() {
    const auto pSelf = Enter();
    const auto pViewer = Viewer();
    return OpenDocument() && pViewer ? pViewer->GetRotate() : 0;
}

}
