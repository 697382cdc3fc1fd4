#include "viewers/core/ViewerCore.h"

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
#include "settings/SavedView.h"
#include "viewers/core/Modes.h"

namespace velko::vkit {

namespace {

constexpr float kMinScaleDesktop = 0.5F;
constexpr float kMinScaleOther = 1.0F;
constexpr float kMaxScaleDesktop = 4.0F;
constexpr float kMaxScaleOther = 6.0F;
constexpr std::int32_t kQuarterTurns = 4;

constexpr BlockColors kWhiteOnBlack = {0xFF000000U, 0xFFFFFFFFU};

}

ViewerCore::ViewerCore(std::weak_ptr<IViewerOwner> wkOwner, std::shared_ptr<VLK_Document> pDocument,
                       std::shared_ptr<PDFViewCanvas> pCanvas)
    : m_pDocument(std::move(pDocument)),
      m_pCanvas(std::move(pCanvas)),
      m_wkOwner(std::move(wkOwner)),
      m_pDispatcher(Platform::Environment()->MainDispatcher()),
      m_crPageBackground(AppConfig::PageBackgroundColor()),
      m_crPageForeground(AppConfig::PageForegroundColor()) {
    ShowPageColor();
}

// --- life ---

void ViewerCore::ThrowIfDisposed() const {
    if (m_bDisposed) {
        throw Platform::ObjectDisposedException();
    }
}

void ViewerCore::CloseViewer() {
    ThrowIfDisposed();
    ++m_nClosings;
    m_putOff.clear();
    OnClosed();
}

void ViewerCore::Dispose() {
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

// --- the document ---

std::shared_ptr<VLK_Document> ViewerCore::OpenDocument() const {
    return m_pDocument && !m_pDocument->IsDisposed() ? m_pDocument : nullptr;
}

std::int32_t ViewerCore::PageCount() const {
    if (const auto pDocument = OpenDocument()) {
        m_nPageCount = pDocument->PageCount();
    }
    return m_nPageCount;
}

VLK_PageSize ViewerCore::AskPageSize(std::int32_t nPageIndex) {
    const auto pDocument = OpenDocument();
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

// --- the screen ---

float ViewerCore::CanvasWidth() const {
    return m_pCanvas ? m_pCanvas->GetScaledWidth() : static_cast<float>(m_dbScreenWidth);
}

float ViewerCore::CanvasHeight() const {
    return m_pCanvas ? m_pCanvas->GetScaledHeight() : static_cast<float>(m_dbCanvasHeight);
}

void ViewerCore::RefreshScreenSize() {
    m_dbScreenWidth = CanvasWidth();
    m_dbCanvasHeight = CanvasHeight();
    m_dbScreenHeight = m_dbCanvasHeight;
}

ViewerCore::Rect ViewerCore::CanvasRect() const {
    return {0.0F, 0.0F, static_cast<float>(m_dbScreenWidth), static_cast<float>(m_dbCanvasHeight)};
}

// The old size is the layout's, which may have been narrowed.
bool ViewerCore::KeepsOrientation() const {
    const double dbWidth = CanvasWidth();
    const double dbHeight = CanvasHeight();
    return (m_dbScreenHeight > m_dbScreenWidth && dbHeight > dbWidth) ||
           (m_dbScreenHeight < m_dbScreenWidth && dbHeight < dbWidth);
}

// --- what is laid out ---

std::vector<std::int32_t> ViewerCore::GetVisiblePages() {
    ThrowIfDisposed();
    std::vector<std::int32_t> pages;
    pages.reserve(LaidOutCount());
    for (std::size_t n = 0; n < LaidOutCount(); ++n) {
        pages.push_back(LaidOut(n).nPageIndex);
    }
    return pages;
}

std::shared_ptr<PagePosition> ViewerCore::GetPagePosition() {
    ThrowIfDisposed();
    if (LaidOutCount() == 0) {
        return nullptr;
    }
    const LaidOutPage& first = LaidOut(0);
    auto pPosition = std::make_shared<PagePosition>();
    pPosition->dbOffsetX = first.screenRect.dbOffsetX;
    pPosition->dbOffsetY = first.screenRect.dbOffsetY;
    pPosition->nPageIndex = first.nPageIndex;
    return pPosition;
}

void ViewerCore::SaveViewerState(PropertySet& values) {
    if (const auto pPosition = GetPagePosition()) {
        WriteSavedPlace(values, pPosition->nPageIndex, pPosition->dbOffsetX, pPosition->dbOffsetY);
    }
}

// --- scale and rotation ---

float ViewerCore::GetMinScale() {
    ThrowIfDisposed();
    return Utility::IsDesktop() ? kMinScaleDesktop : kMinScaleOther;
}

float ViewerCore::GetMaxScale() {
    ThrowIfDisposed();
    return Utility::IsDesktop() ? kMaxScaleDesktop : kMaxScaleOther;
}

float ViewerCore::GetScale() {
    m_fScale = std::min(m_fScale, GetMaxScale());
    return m_fScale;
}

void ViewerCore::SetScale(float fScale) {
    const float fMax = GetMaxScale();
    m_fScale = fScale <= fMax ? fScale : fMax; // the limit also for what is no number
    if (m_fScale != 0.0F) {
        m_fScale = std::max(m_fScale, kLeastScale);
    }
}

double ViewerCore::LeastScale() {
    return std::max(kLeastScale, std::min(GetMinScale(), GetScale()));
}

float ViewerCore::AskFitScale() {
    double dbFit = m_fScale;
    if (const auto pOwner = Owner()) {
        WhileAsking([&] { dbFit = pOwner->GetFitScale(ZoomMode::kFitPage); });
    }
    return static_cast<float>(dbFit);
}

std::int32_t ViewerCore::GetRotate() {
    ThrowIfDisposed();
    return m_nRotate;
}

void ViewerCore::SetRotate(std::int32_t nRotate) {
    ThrowIfDisposed();
    m_nRotate = std::abs(nRotate % kQuarterTurns);
}

// --- colours ---

BlockColors ViewerCore::PageColors() const {
    return m_bNightMode ? kWhiteOnBlack
                        : BlockColors{m_crPageBackground.ToArgb(), m_crPageForeground.ToArgb()};
}

// A page that is not rendered yet shows in the colour that it will have.
void ViewerCore::ShowPageColor() {
    if (m_pCanvas) {
        m_pCanvas->SetPageColor(PageColors().nBackground);
    }
}

void ViewerCore::SetNightMode(bool bNightMode) {
    ThrowIfDisposed();
    m_bNightMode = bNightMode;
    ShowPageColor();
}

ViewerCore::Color ViewerCore::GetPageBackgroundColor() {
    ThrowIfDisposed();
    return m_crPageBackground;
}

ViewerCore::Color ViewerCore::GetPageForegroundColor() {
    ThrowIfDisposed();
    return m_crPageForeground;
}

void ViewerCore::SetPageBackgroundColor(Color color) {
    ThrowIfDisposed();
    if (m_crPageBackground == color) {
        return;
    }
    m_crPageBackground = color;
    ShowPageColor();
    AppConfig::PageBackgroundColor(color);
}

void ViewerCore::SetPageForegroundColor(Color color) {
    ThrowIfDisposed();
    if (m_crPageForeground == color) {
        return;
    }
    m_crPageForeground = color;
    AppConfig::PageForegroundColor(color);
}

void ViewerCore::SetPageColors(Color background, Color foreground) {
    ThrowIfDisposed();
    AppConfig::SetTogether([&] { // the setters below find them set
        AppConfig::PageBackgroundColor(background);
        AppConfig::PageForegroundColor(foreground);
    });
    SetPageBackgroundColor(background);
    SetPageForegroundColor(foreground);
    RedrawScreen();
}

}
