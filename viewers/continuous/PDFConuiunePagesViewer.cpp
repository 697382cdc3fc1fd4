#include "viewers/continuous/PDFConuiunePagesViewer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "document/Utility.h"
#include "document/VLK_Document.h"
#include "platform/system/Debug.h"

namespace velko::vkit {

namespace {

constexpr float kOutlineWidth = 1.0F;

}

PDFConuiunePagesViewer::PDFConuiunePagesViewer(std::weak_ptr<IViewerOwner> wkOwner,
                                               std::shared_ptr<VLK_Document> pDocument,
                                               std::shared_ptr<PDFViewCanvas> pCanvas)
    : ColumnViewer(std::move(wkOwner), std::move(pDocument), std::move(pCanvas), kTraits) {}

const ViewerTraits PDFConuiunePagesViewer::kTraits = {
    .szClass = "PDFConuiunePagesViewer",
    .szRenderOperation = "RenderScreenBitmapSync",
    .szNothingToRender = "RenderScreenBitmapSync error\n",
    .szNothingToDraw = nullptr,
    .bClearsWithoutPages = true,
};

// A page that is not rendered yet has its paper's colour, unless the snapshot
// shows something better.
void PDFConuiunePagesViewer::DrawBlank(Windows::Graphics::ID2D1DeviceContext& context,
                                       const Windows::Graphics::D2D_RECT_F& rc) const {
    if (!IsSnapshotShown()) {
        const auto& pBrush = m_pCanvas->PageBrush();
        context.FillRectangle(rc, pBrush);
        context.DrawRectangle(rc, pBrush, kOutlineWidth);
    }
}

// --- sideways ---

// As far as the page goes that has most left. A page that is off its edges, as
// after a change of the screen's size, comes back to them with any move.
double PDFConuiunePagesViewer::LimitSideways(const PageItems& items, double dbOffsetX) const {
    double dbMostLeft = 0.0;
    double dbMostRight = 0.0;
    double dbBack = 0.0; // for a page whose right edge has come into the screen
    for (const PageItem& pItem : items) {
        const Render_ScreenOffsetInfo& rc = pItem->screenRect;
        if (rc.nWidth >= m_dbScreenWidth) {
            const double dbOverhang = rc.dbOffsetX + rc.nWidth - m_dbScreenWidth;
            dbMostLeft = std::max(dbMostLeft, dbOverhang);
            dbBack = std::min(dbBack, dbOverhang);
            dbMostRight = std::min(dbMostRight, rc.dbOffsetX);
        }
    }
    if (dbOffsetX > 0.0 && dbMostLeft == 0.0 && dbBack < 0.0) {
        Platform::Debug::OutputDebugString("HOffset Error\n"); // told, and the way back taken
        return dbBack;
    }
    return std::clamp(dbOffsetX, dbMostRight, dbMostLeft);
}

// Within its own edges for a page as wide as the screen or wider; in the middle
// for another one, to a pixel, since its exact width decides that at first.
double PDFConuiunePagesViewer::StandingX(const LaidOutPage& item, double dbOffsetX) const {
    const double dbRoom = m_dbScreenWidth - item.screenRect.nWidth;
    if (dbRoom <= 0.0) {
        return std::clamp(dbOffsetX, dbRoom, 0.0);
    }
    const double dbNow = item.screenRect.dbOffsetX;
    return std::abs(dbNow - dbRoom * 0.5) < 1.0 ? dbNow : dbRoom * 0.5;
}

double PDFConuiunePagesViewer::PlacedX(const LaidOutPage& item, float fWidth,
                                       double dbOffsetX) const {
    if (fWidth < m_dbScreenWidth) {
        return (m_dbScreenWidth - fWidth) * 0.5;
    }
    return std::clamp(dbOffsetX, std::min(0.0, m_dbScreenWidth - item.screenRect.nWidth), 0.0);
}

// --- the size of the canvas ---

void PDFConuiunePagesViewer::ChooseFirstScale(std::int32_t nPageIndex, double dbScale) {
    const VLK_PageSize size = PageSizeOf(nPageIndex);
    if (Utility::IsDesktop()) {
        SetScale(AskFitScale());
    } else if (Utility::IsMobile()) {
        const double dbDefault = std::max(1.0, CalcWidthRatio(size, m_nRotate, LayoutScreen()));
        SetScale(static_cast<float>(dbScale != 0.0 ? dbScale : dbDefault));
    }
}

void PDFConuiunePagesViewer::OnInvaildateLayout() {
    LayOutForSize();
    Platform::Debug::OutputDebugString("InvaildateLayout - UpdateViewer\n");
}

}
