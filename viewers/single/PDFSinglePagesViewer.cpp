#include "viewers/single/PDFSinglePagesViewer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "document/Utility.h"

namespace velko::vkit {

namespace {

// Between the two pages of a turn, in drawing only; device pixels.
constexpr double kDrawnGap = 15.0;

constexpr float kOutlineWidth = 1.0F;

// In the middle if it is smaller than the screen, else nowhere off it.
double StandingAt(double dbOffset, std::int32_t nSide, double dbScreen) {
    return nSide < dbScreen ? (dbScreen - nSide) * 0.5
                            : std::clamp(dbOffset, dbScreen - nSide, 0.0);
}

}

const ViewerTraits PDFSinglePagesViewer::kTraits = {
    .szClass = "PDFSinglePagesViewer",
    .szRenderOperation = "LoadPageBitmapFromCache",
    .szNothingToRender = nullptr,
    .szNothingToDraw = "\n",
    .bClearsWithoutPages = false,
};

PDFSinglePagesViewer::PDFSinglePagesViewer(std::weak_ptr<IViewerOwner> wkOwner,
                                           std::shared_ptr<VLK_Document> pDocument,
                                           std::shared_ptr<PDFViewCanvas> pCanvas)
    : PageViewerBase(std::move(wkOwner), std::move(pDocument), std::move(pCanvas), kTraits) {
    m_pPageItems = std::make_unique<PageItems>();
}

// --- where pages stand ---

// Left of the screen for a page wider than it. Comparisons with it are exact:
// the layout sets a page to this very expression.
double PDFSinglePagesViewer::CentreX(const SingleViewerPageItem& item) const {
    return (m_dbScreenWidth - item.screenRect.nWidth) * 0.5;
}

bool PDFSinglePagesViewer::IsNarrow(const SingleViewerPageItem& item) const {
    return item.screenRect.nWidth < m_dbScreenWidth;
}

// A wide page comes to its edge; also one that has gone altogether.
double PDFSinglePagesViewer::RecentredX(const SingleViewerPageItem& item) const {
    const double dbX = item.screenRect.dbOffsetX;
    const double dbRight = dbX + item.screenRect.nWidth;
    if (dbX <= 0.0 && dbRight >= m_dbScreenWidth) {
        return dbX;
    }
    if (IsNarrow(item)) {
        return CentreX(item);
    }
    return dbX > 0.0 ? 0.0 : m_dbScreenWidth - item.screenRect.nWidth;
}

std::int32_t PDFSinglePagesViewer::GetCurrentPageIndex() {
    ThrowIfDisposed();
    if (!HasItems()) {
        return 0;
    }
    for (const PageItem& pItem : *m_pPageItems) {
        const double dbX = pItem->screenRect.dbOffsetX;
        const double dbCentre = CentreX(*pItem);
        if (dbX == dbCentre || (std::abs(dbX) < dbCentre && pItem->Scale() == 1.0)) {
            return pItem->nPageIndex;
        }
    }
    return m_pPageItems->back()->nPageIndex;
}

std::shared_ptr<PagePosition> PDFSinglePagesViewer::GetPagePosition() {
    ThrowIfDisposed();
    if (!HasItems() || m_pPageItems->size() < 2) {
        return PageViewerBase::GetPagePosition();
    }
    const auto it =
        std::find_if(m_pPageItems->begin(), m_pPageItems->end(),
                     [](const PageItem& pItem) { return pItem->screenRect.dbOffsetX < 0.0; });
    const auto nGoing = it - m_pPageItems->begin();
    if (IsDrawing()) { // a frame shows both to its end
        const SingleViewerPageItem& first = *(*m_pPageItems)[nGoing == 0 ? 1 : 0];
        return std::make_shared<PagePosition>(
            PagePosition{first.screenRect.dbOffsetX, first.screenRect.dbOffsetY, first.nPageIndex});
    }
    if (it != m_pPageItems->end()) {
        RemoveItem(static_cast<std::size_t>(nGoing));
    }
    return PageViewerBase::GetPagePosition();
}

// --- the list ---

PDFRenderTask PDFSinglePagesViewer::MakeTask(double dbOffsetY, double dbOffsetX) {
    return {dbOffsetY, dbOffsetX, GetScale(), m_nRotate};
}

// Centred where it is smaller than the screen and no offset is asked for.
PageViewerBase::PageItem PDFSinglePagesViewer::InitPageItem(const PDFRenderTask& task,
                                                            std::int32_t nPageIndex) {
    const PageItem pItem = MakeItem(nPageIndex, task);
    pItem->SetSize(pItem->GetPageDisplaySize());
    pItem->MoveTo(task.dbOffsetX, task.dbOffsetY);
    Render_ScreenOffsetInfo& rc = pItem->screenRect;
    if (rc.nHeight < m_dbScreenHeight && task.dbOffsetY == 0.0) {
        rc.dbOffsetY = (m_dbScreenHeight - rc.nHeight) * 0.5;
    }
    if (IsNarrow(*pItem) && task.dbOffsetX == 0.0) {
        rc.dbOffsetX = CentreX(*pItem);
    }
    return pItem;
}

void PDFSinglePagesViewer::Regrid(SingleViewerPageItem& item) const {
    item.DividToBlock(GetPageDavidBlock(item));
}

void PDFSinglePagesViewer::ReplaceItems(const PageItem& pItem) {
    DropItems();
    if (!m_pPageItems) {
        m_pPageItems = std::make_unique<PageItems>();
    }
    m_pPageItems->push_back(pItem);
    ++m_nLayoutVersion;
}

void PDFSinglePagesViewer::AdoptItems(PageItems& newList) {
    m_pPageItems->swap(newList);
    ++m_nLayoutVersion;
}

void PDFSinglePagesViewer::RemoveItem(std::size_t nPosition) {
    KeepStandIns(*(*m_pPageItems)[nPosition]); // it may come back before the frame
    (*m_pPageItems)[nPosition]->ClearBlocks();
    m_pPageItems->erase(m_pPageItems->begin() + static_cast<std::ptrdiff_t>(nPosition));
    ++m_nLayoutVersion;
}

// --- pages brought up by a command ---

// A stored scale of 0 asks for the fit, which is the stored one from then on.
void PDFSinglePagesViewer::PlacePageAt(std::int32_t nPageIndex, double dbOffsetY,
                                       double dbOffsetX) {
    RefreshScreenSize();
    const PageItem pItem = InitPageItem(MakeTask(dbOffsetY, dbOffsetX), nPageIndex);
    if (m_fScale == 0.0F) {
        SetScale(static_cast<float>(pItem->Scale()));
    }
    Render_ScreenOffsetInfo& rc = pItem->screenRect;
    rc.dbOffsetY = StandingAt(rc.dbOffsetY, rc.nHeight, m_dbScreenHeight);
    rc.dbOffsetX = StandingAt(rc.dbOffsetX, rc.nWidth, m_dbScreenWidth);
    Regrid(*pItem);
    ReplaceItems(pItem);
    LoadPageBitmapFromCache(false);
    PaintCanvas();
}

// The fit is that of the page which the last change of size found, whichever
// page is asked for.
float PDFSinglePagesViewer::DefaultScale() {
    const VLK_PageSize size = PageSizeOf(m_nLayoutPageIndex);
    return static_cast<float>(CalcWidthRatio(size, m_nRotate, LayoutScreen()));
}

void PDFSinglePagesViewer::OnInitLayOut(std::int32_t nPageIndex, double dbScale, double dbOffsetX,
                                        double dbOffsetY) {
    if (!CanLayOut() || !IsPage(nPageIndex)) {
        return;
    }
    RefreshScreenSize();
    const float fDefault = DefaultScale();
    if (!Utility::IsDesktop()) {
        SetScale(dbScale == 0.0 ? fDefault : static_cast<float>(dbScale));
    } else {
        if (dbScale == 0.0) {
            AskFitScale(); // hosts have always been asked twice then
        }
        SetScale(AskFitScale());
    }
    PlacePageAt(nPageIndex, dbOffsetY, dbOffsetX);
}

void PDFSinglePagesViewer::OnInvaildateLayout() {
    if (!m_pPageItems || !CanLayOut()) {
        return;
    }
    const std::int32_t nCurrent = GetCurrentPageIndex();
    const bool bKeepsOrientation = KeepsOrientation();
    double dbTop = 0.0;
    double dbLeft = 0.0;
    if (HasItems() && bKeepsOrientation) {
        const SingleViewerPageItem& first = *m_pPageItems->front();
        m_nLayoutPageIndex = first.nPageIndex;
        dbTop = first.screenRect.dbOffsetY;
        dbLeft = first.screenRect.dbOffsetX;
    }
    DropItems();
    EmptyScaleCache();
    if (bKeepsOrientation) {
        OnInitLayOut(m_nLayoutPageIndex, GetScale(), dbLeft, dbTop);
    } else if (IsPage(nCurrent)) {
        RefreshScreenSize();
        SetScale(Utility::IsDesktop() ? 0.0F : std::max(1.0F, DefaultScale()));
        PlacePageAt(nCurrent, 0.0, 0.0);
    }
}

// The page is in the list before it is laid out, so that it is known also when
// that fails.
void PDFSinglePagesViewer::OnRotateViewer(std::int32_t nRotate) {
    if (!m_pPageItems) {
        return;
    }
    SetRotate(nRotate);
    const std::int32_t nCurrent = GetCurrentPageIndex();
    if (!CanLayOut() || !IsPage(nCurrent)) {
        return;
    }
    EmptyScaleCache();
    ReplaceItems(MakeItem(nCurrent, {0.0, 0.0, 0.0, m_nRotate}));
    PlacePageAt(nCurrent, 0.0, 0.0);
}

void PDFSinglePagesViewer::OnGotoPage(std::int32_t nPageIndex) {
    if (!CanLayOut() || !IsPage(nPageIndex)) {
        return;
    }
    if (!Utility::IsDesktop()) {
        SetScale(1.0F);
    }
    ShowPage(nPageIndex, false);
}

void PDFSinglePagesViewer::ResetToPage(std::int32_t nPageIndex) {
    SetScale(1.0F);
    ShowPage(nPageIndex, true);
}

// A page that is shown first already stays as it is, unless `bAlsoShown`: what
// is made for it here is then of no use, and the frame is the same.
void PDFSinglePagesViewer::ShowPage(std::int32_t nPageIndex, bool bAlsoShown) {
    RefreshScreenSize();
    const PageItem pItem = InitPageItem(MakeTask(0.0, 0.0), nPageIndex);
    if (bAlsoShown || !HasItems() || m_pPageItems->front()->nPageIndex != nPageIndex) {
        ReplaceItems(pItem);
    }
    Regrid(*pItem);
    LoadPageBitmapFromCache(false);
    PaintCanvas();
}

// --- drawing ---

BlockColors PDFSinglePagesViewer::RenderColors() const {
    return m_bUseDefaultPageColor ? BlockColors() : PageColors();
}

// The second page of a turn stands off the first, but for what lies exactly at
// the screen's left edge.
double PDFSinglePagesViewer::DrawnX(std::size_t nPosition, double dbX) const {
    return nPosition == 0 || dbX == 0.0 ? dbX : dbX + kDrawnGap;
}

// An outline leaves the snapshot visible.
void PDFSinglePagesViewer::DrawBlank(Windows::Graphics::ID2D1DeviceContext& context,
                                     const Windows::Graphics::D2D_RECT_F& rc) const {
    const auto& pBrush = m_pCanvas->PageBrush();
    if (IsSnapshotShown()) {
        context.DrawRectangle(rc, pBrush, kOutlineWidth);
    } else {
        context.FillRectangle(rc, pBrush);
    }
}

}
