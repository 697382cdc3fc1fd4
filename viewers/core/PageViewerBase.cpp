#include "viewers/core/PageViewerBase.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <utility>

#include "document/Utility.h"
#include "document/VLK_Document.h"
#include "platform/system/Debug.h"
#include "platform/system/Environment.h"
#include "platform/ui/CoreDispatcher.h"
#include "settings/AppConfig.h"

namespace velko::vkit {

using Windows::Foundation::PropertyValue;

namespace {

constexpr float kMinScaleDesktop = 0.5F;
constexpr float kMinScaleOther = 1.0F;
constexpr float kMaxScaleDesktop = 4.0F;
constexpr float kMaxScaleOther = 6.0F;
constexpr std::int32_t kQuarterTurns = 4;
constexpr std::int32_t kWholePage = 1; // the zoom mode that fits both sides

constexpr BlockColors kNightColors = {0xFF000000U, 0xFFFFFFFFU};

}

PageViewerBase::PageViewerBase(std::weak_ptr<IViewerOwner> wkOwner,
                               std::shared_ptr<VLK_Document> pDocument,
                               std::shared_ptr<PDFViewCanvas> pCanvas, const ViewerTraits& traits)
    : m_pDocument(std::move(pDocument)),
      m_pCanvas(std::move(pCanvas)),
      m_wkOwner(std::move(wkOwner)),
      m_traits(traits),
      m_pDispatcher(Platform::Environment()->MainDispatcher()),
      m_crPageBackground(AppConfig::PageBackgroundColor()),
      m_crPageForeground(AppConfig::PageForegroundColor()) {
    ShowPageColor();
}

void PageViewerBase::ThrowIfDisposed() const {
    if (m_bDisposed) {
        throw Platform::ObjectDisposedException();
    }
}

// --- life ---

void PageViewerBase::CloseViewer() {
    ThrowIfDisposed();
    ++m_nClosings;
    DropItems();
    m_pPageItems.reset();
    m_pScaleBitmapCache.Clear();
    EndSnapshot();
    m_ctsRender.Renew();
    m_ctsDestination.Renew();
}

void PageViewerBase::Dispose() {
    if (m_bDisposed) {
        return;
    }
    CloseViewer();
    PageCount(); // known from now on
    m_bDisposed = true;
    m_pDocument.reset();
    m_pCanvas.reset();
    m_wkOwner.reset();
}

void PageViewerBase::ClearPagesBitmap() {
    ThrowIfDisposed();
    DropItems();
}

void PageViewerBase::DropItems() {
    if (!HasItems()) {
        return;
    }
    for (const PageItem& pItem : *m_pPageItems) {
        pItem->ClearBlocks();
    }
    m_pPageItems->clear();
    ++m_nLayoutVersion;
}

// --- facts ---

std::shared_ptr<VLK_Document> PageViewerBase::LiveDocument() const {
    return m_pDocument && !m_pDocument->IsDisposed() ? m_pDocument : nullptr;
}

std::int32_t PageViewerBase::PageCount() const {
    if (const auto pDocument = LiveDocument()) {
        m_nPageCount = pDocument->PageCount();
    }
    return m_nPageCount;
}

VLK_PageSize PageViewerBase::PageSizeOf(std::int32_t nPageIndex) {
    const auto pDocument = LiveDocument();
    if (!pDocument) {
        throw Platform::ObjectDisposedException();
    }
    std::shared_ptr<VLK_PageSize> pSize;
    WhileAsking([&] {
        try {
            pSize = pDocument->GetPageSize(nPageIndex);
        } catch (const velko::common::EngineException&) {
            // One broken page must not keep the reader from the others.
            Platform::Debug::OutputDebugString("no size of page " + std::to_string(nPageIndex) +
                                               "\n");
        }
    });
    return pSize ? *pSize : VLK_PageSize();
}

void PageViewerBase::WhileAsking(const std::function<void()>& fnAsk) {
    const auto pSelf = shared_from_this();
    const std::uint64_t nClosings = m_nClosings;
    const bool bWasAsking = std::exchange(m_bAskingSize, true);
    try {
        fnAsk();
    } catch (...) {
        m_bAskingSize = bWasAsking;
        throw;
    }
    m_bAskingSize = bWasAsking;
    if (nClosings != m_nClosings) {
        throw Platform::ObjectDisposedException();
    }
}

float PageViewerBase::CanvasWidth() const {
    return m_pCanvas ? m_pCanvas->GetScaledWidth() : static_cast<float>(m_dbScreenWidth);
}

float PageViewerBase::CanvasHeight() const {
    return m_pCanvas ? m_pCanvas->GetScaledHeight() : static_cast<float>(m_dbCanvasHeight);
}

void PageViewerBase::RefreshScreenSize() {
    m_dbScreenWidth = CanvasWidth();
    m_dbCanvasHeight = CanvasHeight();
    m_dbScreenHeight = m_dbCanvasHeight;
}

PageViewerBase::Rect PageViewerBase::ScreenRect() const {
    return {0.0F, 0.0F, static_cast<float>(m_dbScreenWidth), static_cast<float>(m_dbCanvasHeight)};
}

// The old size is the layout's, which may have been narrowed.
bool PageViewerBase::KeepsOrientation() const {
    const double dbWidth = CanvasWidth();
    const double dbHeight = CanvasHeight();
    return (m_dbScreenHeight > m_dbScreenWidth && dbHeight > dbWidth) ||
           (m_dbScreenHeight < m_dbScreenWidth && dbHeight < dbWidth);
}

PageViewerBase::PageItem PageViewerBase::MakeItem(std::int32_t nPageIndex,
                                                  const PDFRenderTask& task) {
    return std::make_shared<ViewerPageItem>(std::weak_ptr<IPageItemHost>(shared_from_this()),
                                            nPageIndex, task.dbScale, task.nRotate);
}

PageViewerBase::PageItem PageViewerBase::FindItem(std::int32_t nPageIndex) const {
    if (m_pPageItems) {
        for (const PageItem& pItem : *m_pPageItems) {
            if (pItem->nPageIndex == nPageIndex) {
                return pItem;
            }
        }
    }
    return nullptr;
}

PageViewerBase::PageItem PageViewerBase::FindItemAt(Point ptDevice) const {
    if (m_pPageItems) {
        for (const PageItem& pItem : *m_pPageItems) {
            if (ToRect(pItem->screenRect).Contains(ptDevice)) {
                return pItem;
            }
        }
    }
    return nullptr;
}

std::vector<std::int32_t> PageViewerBase::GetVisiblePages() {
    ThrowIfDisposed();
    std::vector<std::int32_t> pages;
    if (m_pPageItems) {
        pages.reserve(m_pPageItems->size());
        for (const PageItem& pItem : *m_pPageItems) {
            pages.push_back(pItem->nPageIndex);
        }
    }
    return pages;
}

std::shared_ptr<PagePosition> PageViewerBase::GetPagePosition() {
    ThrowIfDisposed();
    if (!HasItems()) {
        return nullptr;
    }
    const ViewerPageItem& first = *m_pPageItems->front();
    auto pPosition = std::make_shared<PagePosition>();
    pPosition->dbOffsetX = first.screenRect.dbOffsetX;
    pPosition->dbOffsetY = first.screenRect.dbOffsetY;
    pPosition->nPageIndex = first.nPageIndex;
    return pPosition;
}

void PageViewerBase::SaveViewerState(PropertySet& values) {
    if (const auto pPosition = GetPagePosition()) {
        values.Insert("CurrentPageIndex", PropertyValue::Create(pPosition->nPageIndex));
        values.Insert("OffsetX", PropertyValue::Create(pPosition->dbOffsetX));
        values.Insert("OffsetY", PropertyValue::Create(pPosition->dbOffsetY));
    }
}

ViewerState PageViewerBase::Inspect() const {
    ViewerState state;
    state.nScaleCacheEntries = m_pScaleBitmapCache.Size();
    state.bShowScaleSnapshot = m_bShowScaleSnapshot;
    if (!m_pPageItems) {
        return state;
    }
    for (const PageItem& pItem : *m_pPageItems) {
        PageItemState& item = state.items.emplace_back();
        item.nPageIndex = pItem->nPageIndex;
        item.screenRect = pItem->screenRect;
        item.dbScale = pItem->dbScale;
        item.nRotate = pItem->m_nRotate;
        item.grid = pItem->grid;
        pItem->ForEachBlock([&](const ViewerPageItemBlock& block) {
            BlockState& out = item.blocks.emplace_back();
            out.nBlockId = block.m_nBlockId;
            out.screenRect = block.screenRect;
            out.bIsDisplay = block.m_bIsDisplay;
            out.bIsRendering = block.m_bIsRendering;
            out.bHasBitmap = block.HasBitmap();
            if (out.bHasBitmap) {
                out.nBitmapWidth = block.m_pBitmapSource->nWidth;
                out.nBitmapHeight = block.m_pBitmapSource->nHeight;
            }
        });
    }
    return state;
}

// --- scale and rotation ---

float PageViewerBase::GetMinScale() {
    ThrowIfDisposed();
    return Utility::IsDesktop() ? kMinScaleDesktop : kMinScaleOther;
}

float PageViewerBase::GetMaxScale() {
    ThrowIfDisposed();
    return Utility::IsDesktop() ? kMaxScaleDesktop : kMaxScaleOther;
}

float PageViewerBase::GetScale() {
    m_fScale = std::min(m_fScale, GetMaxScale());
    return m_fScale;
}

void PageViewerBase::SetScale(float fScale) {
    const float fMax = GetMaxScale();
    m_fScale = fScale <= fMax ? fScale : fMax; // the limit also for what is no number
    if (m_fScale != 0.0F) {
        m_fScale = std::max(m_fScale, kLeastScale);
    }
}

float PageViewerBase::AskFitScale() {
    double dbFit = m_fScale;
    if (const auto pOwner = Owner()) {
        WhileAsking([&] { dbFit = pOwner->GetFitScale(kWholePage); });
    }
    return static_cast<float>(dbFit);
}

std::int32_t PageViewerBase::GetRotate() {
    ThrowIfDisposed();
    return m_nRotate;
}

void PageViewerBase::SetRotate(std::int32_t nRotate) {
    ThrowIfDisposed();
    m_nRotate = std::abs(nRotate % kQuarterTurns);
}

// --- colours ---

BlockColors PageViewerBase::RenderColors() const {
    return m_bNightMode ? kNightColors
                        : BlockColors{m_crPageBackground.ToArgb(), m_crPageForeground.ToArgb()};
}

// A page that is not rendered yet shows in the colour that it will have.
void PageViewerBase::ShowPageColor() {
    if (m_pCanvas) {
        m_pCanvas->SetPageColor(RenderColors().nBackground);
    }
}

void PageViewerBase::SetNightMode(bool bNightMode) {
    ThrowIfDisposed();
    m_bNightMode = bNightMode;
    ShowPageColor();
}

PageViewerBase::Color PageViewerBase::GetPageBackgroundColor() {
    ThrowIfDisposed();
    return m_crPageBackground;
}

PageViewerBase::Color PageViewerBase::GetPageForegroundColor() {
    ThrowIfDisposed();
    return m_crPageForeground;
}

void PageViewerBase::SetPageBackgroundColor(Color color) {
    ThrowIfDisposed();
    if (m_crPageBackground == color) {
        return;
    }
    m_crPageBackground = color;
    ShowPageColor();
    AppConfig::PageBackgroundColor(color);
}

void PageViewerBase::SetPageForegroundColor(Color color) {
    ThrowIfDisposed();
    if (m_crPageForeground == color) {
        return;
    }
    m_crPageForeground = color;
    AppConfig::PageForegroundColor(color);
}

void PageViewerBase::SetPageColors(Color background, Color foreground) {
    SetPageBackgroundColor(background);
    SetPageForegroundColor(foreground);
    RedrawScreen();
}

// --- grids ---

Render_PageDavidBlock PageViewerBase::CalcPageDavidBlock(const ViewerPageItem& item) const {
    return CalcBlockGrid(item.screenRect, LayoutScreen());
}

// During a zoom the blocks keep the grid of the bitmaps that stand in for them.
Render_PageDavidBlock PageViewerBase::GetPageDavidBlock(const ViewerPageItem& item) const {
    const Render_PageDavidBlock grid = m_pScaleBitmapCache.FindGrid(item.nPageIndex);
    return grid.nRows > 0 && grid.nCols > 0 ? grid : CalcPageDavidBlock(item);
}

std::shared_ptr<D2DBitmapSource> PageViewerBase::FindScaleBitmap(std::int32_t nPageIndex,
                                                                 std::int32_t nBlockId) const {
    return m_pScaleBitmapCache.Find(nPageIndex, nBlockId);
}

}
