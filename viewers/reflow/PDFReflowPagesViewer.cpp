#include "viewers/reflow/PDFReflowPagesViewer.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "document/VLK_Document.h"
#include "platform/system/Debug.h"
#include "settings/SavedView.h"
#include "viewers/core/LogText.h"
#include "viewers/reflow/ReflowViewerPageItem.h"

namespace velko::vkit {

using Platform::Debug::OutputDebugString;

namespace {

constexpr float kMinScale = 1.0F;
constexpr float kMaxScale = 4.0F;
constexpr float kFirstScale = 2.5F;

// A screen of a few pixels must not cut a long page into thousands of bands.
constexpr std::int32_t kLeastBand = 64;

}

PDFReflowPagesViewer::PDFReflowPagesViewer(std::weak_ptr<IViewerOwner> wkOwner,
                                           std::shared_ptr<VLK_Document> pDocument,
                                           std::shared_ptr<PDFViewCanvas> pCanvas)
    : ColumnViewer(std::move(wkOwner), std::move(pDocument), std::move(pCanvas), kTraits) {
    m_fScale = kFirstScale;
}

const ViewerTraits PDFReflowPagesViewer::kTraits = {
    .szClass = "PDFReflowPagesViewer",
    .szRenderOperation = "RenderScreenBitmapSync",
    .szNothingToRender = "RenderScreenBitmapSync error\n",
    .szNothingToDraw = "m_pPageBlock nSize=0 ...\n",
    .bClearsWithoutPages = true,
};

void PDFReflowPagesViewer::Style(const ReflowStyle& style) {
    m_bShowPicture = style.bShowPicture;
    m_bUsesPageColors = style.bUsesPageColors;
    m_dbWidestLine = style.dbWidestLine;
}

// --- facts ---

float PDFReflowPagesViewer::GetMinScale() {
    ThrowIfDisposed();
    return kMinScale;
}

float PDFReflowPagesViewer::GetMaxScale() {
    ThrowIfDisposed();
    return kMaxScale;
}

// The page after the first one is the next that has anything to show.
std::int32_t PDFReflowPagesViewer::GetCurrentPageIndex() {
    ThrowIfDisposed();
    if (!HasItems()) {
        return std::max(0, PageCount() - 1);
    }
    const std::int32_t nCurrent = ColumnViewer::GetCurrentPageIndex();
    const bool bIsFirst = nCurrent == m_pPageItems->front()->nPageIndex;
    return bIsFirst || m_pPageItems->size() == 1 ? nCurrent : (*m_pPageItems)[1]->nPageIndex;
}

void PDFReflowPagesViewer::SaveViewerState(PropertySet& values) {
    ColumnViewer::SaveViewerState(values);
    WriteSavedReflow(values, m_fScale, m_bShowPicture);
}

// --- scrolling ---

bool PDFReflowPagesViewer::CanScrollUp() {
    ThrowIfDisposed();
    if (!HasItems()) {
        return false;
    }
    const LaidOutPage& first = *m_pPageItems->front();
    return first.nPageIndex != 0 || first.screenRect.dbOffsetY != 0.0;
}

bool PDFReflowPagesViewer::CanScrollDown() {
    ThrowIfDisposed();
    return HasItems() && (BottomOf(*m_pPageItems->back()) > m_dbScreenHeight ||
                          TheColumn().GoesOnBelow(m_pPageItems->back()->nPageIndex));
}

void PDFReflowPagesViewer::PageUp() {
    MoveScreen(-CanvasHeight(), 0.0);
}

void PDFReflowPagesViewer::PageDown() {
    MoveScreen(CanvasHeight(), 0.0);
}

// --- items ---

PageViewerBase::PageItem PDFReflowPagesViewer::MakeItem(std::int32_t nPageIndex,
                                                        const PDFRenderTask& task) {
    const auto pSelf = std::static_pointer_cast<PDFReflowPagesViewer>(shared_from_this());
    return std::make_shared<ReflowViewerPageItem>(pSelf, pSelf, nPageIndex, task.dbScale,
                                                  task.nRotate);
}

std::int32_t PDFReflowPagesViewer::GetBlockCount(const LaidOutPage& item) const {
    const double dbHeight = item.screenRect.nHeight;
    if (dbHeight <= m_dbScreenHeight || m_dbScreenHeight < 1.0) {
        return 1;
    }
    const auto nBands = static_cast<std::int32_t>(dbHeight / m_dbScreenHeight) + 1;
    return std::min(nBands, std::max(1, item.screenRect.nHeight / kLeastBand));
}

Render_PageDavidBlock PDFReflowPagesViewer::CalcPageDavidBlock(const ViewerPageItem& item) const {
    return {GetBlockCount(item), 1};
}

// --- the column ---

double PDFReflowPagesViewer::FirstX(const PDFRenderTask& /*task*/) const {
    return Text().dbLeft;
}

double PDFReflowPagesViewer::PlacedX(const LaidOutPage& /*item*/, float /*fWidth*/,
                                     double dbOffsetX) const {
    return dbOffsetX;
}

double PDFReflowPagesViewer::StandingX(const LaidOutPage& /*item*/, double dbOffsetX) const {
    return dbOffsetX;
}

// Wider than the screen only with margins below zero: then between its own edges.
double PDFReflowPagesViewer::LimitSideways(const PageItems& items, double dbOffsetX) const {
    const Render_ScreenOffsetInfo& rc = items.front()->screenRect;
    const double dbOverhang = rc.nWidth - m_dbScreenWidth;
    if (dbOverhang <= 0.0) {
        return 0.0;
    }
    const double dbLimited = std::clamp(dbOffsetX, std::min(0.0, rc.dbOffsetX),
                                        std::max(0.0, rc.dbOffsetX + dbOverhang));
    if (dbLimited * dbOffsetX < 0.0) {
        OutputDebugString("HOffset Error\n");
    }
    return dbLimited;
}

void PDFReflowPagesViewer::OnFilled(const char* szEnd, double dbLeft) {
    OutputDebugString(szEnd + std::string("---dbTotalHeight: ") + NumberText(dbLeft) + "\n");
}

void PDFReflowPagesViewer::OnLaidOut() {
    for (const PageItem& pItem : *m_pPageItems) {
        OutputDebugString("index: " + std::to_string(pItem->nPageIndex) +
                          ", VOFFSET: " + NumberText(pItem->screenRect.dbOffsetY) + "\n");
    }
    MeasureAhead();
}

// --- operations ---

void PDFReflowPagesViewer::OnClosed() {
    ColumnViewer::OnClosed();
    m_ctsAhead.Renew();
    m_bMeasuringAhead = false;
    m_aheadStart.reset();
    m_measures = ReflowMeasures();
}

void PDFReflowPagesViewer::OnPageScaled(Point /*ptCentre*/, double dbScale, bool /*bIsInertial*/,
                                        bool /*isScrollComplete*/) {
    const auto fScale = static_cast<float>(dbScale);
    if (fScale > 0.0F && fScale != m_fScale) {
        SetScale(fScale);
    }
    RecomputeCurrentPage();
    DropItems();
    OnInvaildateLayout();
}

void PDFReflowPagesViewer::OnInvaildateLayout() {
    OutputDebugString("PDFReflowPagesViewer::PageSizeChanged....\n");
    m_measures.ForgetFailures();
    LayOutForSize();
}

// Where nothing from the page on has anything to show, the document's last screen
// is what there is.
void PDFReflowPagesViewer::OnInitLayOut(std::int32_t nPageIndex, double dbScale, double dbOffsetX,
                                        double dbOffsetY) {
    m_measures.ForgetFailures();
    ColumnViewer::OnInitLayOut(nPageIndex, dbScale, dbOffsetX, dbOffsetY);
    if (CanLayOut() && !HasItems() && IsPage(nPageIndex)) {
        ShowPage(nPageIndex, true);
    }
}

void PDFReflowPagesViewer::OnGotoPage(std::int32_t nPageIndex) {
    m_measures.ForgetFailures();
    ColumnViewer::OnGotoPage(nPageIndex);
}

// Set text has no places of the page to go to.
void PDFReflowPagesViewer::OnGotoDestination(std::int32_t nPageIndex, std::int32_t /*nZoomMode*/,
                                             const std::vector<float>& /*values*/) {
    OnGotoPage(nPageIndex);
}

// --- what this viewer does without ---

void PDFReflowPagesViewer::SetNightMode(bool /*bNightMode*/) {
    ThrowIfDisposed();
}

void PDFReflowPagesViewer::RedrawScreen() {
    if (m_bUsesPageColors) {
        ColumnViewer::RedrawScreen();
    } else {
        UpdateViewer();
    }
}

void PDFReflowPagesViewer::UpdatePageAfterAnnotEdit(std::int32_t /*nPageIndex*/) {
    ThrowIfDisposed();
}

void PDFReflowPagesViewer::ClearCanvas(const std::shared_ptr<WPRenderDC>& /*pDc*/) {
    ThrowIfDisposed();
}

void PDFReflowPagesViewer::ClearScreen() {
    ThrowIfDisposed();
}

void PDFReflowPagesViewer::CancelRender() {
    ThrowIfDisposed();
}

}
