// Conversions between the screen and the pages that are laid out.
#include <utility>

#include "document/VLK_Document.h"
#include "viewers/core/ViewerCore.h"

namespace velko::vkit {

namespace {

constexpr float kIconSide = 24.0F; // device pixels at scale 1.0

// Calls one of the document's four conversions with an item's place.
template <class F, class T>
auto Convert(VLK_Document& document, F pConversion, const LaidOutPage& item, const T& value) {
    const Render_ScreenOffsetInfo& rc = item.screenRect;
    return (document.*pConversion)(item.nPageIndex, rc.dbOffsetX, rc.dbOffsetY, rc.nWidth,
                                   rc.nHeight, item.m_nRotate, value);
}

std::shared_ptr<Render_PageScreenOffsetInfo> CopyPlace(const LaidOutPage* pItem) {
    auto pPlace = std::make_shared<Render_PageScreenOffsetInfo>();
    if (pItem) {
        pPlace->nWidth = pItem->screenRect.nWidth;
        pPlace->nHeight = pItem->screenRect.nHeight;
        pPlace->dbOffsetY = pItem->screenRect.dbOffsetY;
        pPlace->dbOffsetX = pItem->screenRect.dbOffsetX;
    }
    return pPlace;
}

}

const LaidOutPage* ViewerCore::FindLaidOut(std::int32_t nPageIndex) const {
    for (std::size_t n = 0; n < LaidOutCount(); ++n) {
        if (LaidOut(n).nPageIndex == nPageIndex) {
            return &LaidOut(n);
        }
    }
    return nullptr;
}

ViewerCore::Point ViewerCore::ToDevice(Point pt) const {
    const auto& pPanel = m_pCanvas->Panel();
    return {pt.X * pPanel->CompositionScaleX(), pt.Y * pPanel->CompositionScaleY()};
}

ViewerCore::Point ViewerCore::ToLogical(Point pt) const {
    const auto& pPanel = m_pCanvas->Panel();
    return {pt.X / pPanel->CompositionScaleX(), pt.Y / pPanel->CompositionScaleY()};
}

ViewerCore::Point ViewerCore::PageToDevice(const LaidOutPage& item, Point pt) const {
    return Convert(*m_pDocument, &VLK_Document::PagePointToDevicePoint, item, pt);
}

ViewerCore::Point ViewerCore::DeviceToPage(const LaidOutPage& item, Point pt) const {
    return Convert(*m_pDocument, &VLK_Document::DevicePointToPagePoint, item, pt);
}

ViewerCore::Rect ViewerCore::PageToDevice(const LaidOutPage& item, const Rect& rc) const {
    return Convert(*m_pDocument, &VLK_Document::PageRectToDeviceRect, item, rc);
}

// With overlapping pages the last one wins.
std::shared_ptr<PDFPagePoint> ViewerCore::DevicePointToPagePoint(Point pt) {
    ThrowIfDisposed();
    auto pResult = std::make_shared<PDFPagePoint>();
    pResult->nPageIndex = GetCurrentPageIndex();
    pResult->pt = m_pCanvas ? ToDevice(pt) : pt;
    if (!OpenDocument()) {
        return pResult;
    }
    const Point ptDevice = pResult->pt;
    for (std::size_t n = 0; n < LaidOutCount(); ++n) {
        const LaidOutPage& item = LaidOut(n);
        if (ToRect(item.screenRect).Contains(ptDevice)) {
            pResult->nPageIndex = item.nPageIndex;
            pResult->pt = DeviceToPage(item, ptDevice);
        }
    }
    return pResult;
}

std::shared_ptr<Render_PageScreenOffsetInfo> ViewerCore::GetPageScreenOffset(
    std::int32_t nPageIndex) {
    ThrowIfDisposed();
    const LaidOutPage* const pItem = FindLaidOut(nPageIndex);
    return pItem ? CopyPlace(pItem) : nullptr;
}

std::shared_ptr<WrapperDevicePoint> ViewerCore::PagePointToDevicePoint(std::int32_t nPageIndex,
                                                                       Point pt) {
    ThrowIfDisposed();
    auto pResult = std::make_shared<WrapperDevicePoint>();
    pResult->nPageIndex = nPageIndex;
    const LaidOutPage* const pItem = FindLaidOut(nPageIndex);
    if (pItem && OpenDocument()) {
        pResult->bIsValid = true;
        pResult->pt = ToLogical(PageToDevice(*pItem, pt));
    }
    return pResult;
}

// The record of a conversion, without its rectangle; valid with an item.
std::shared_ptr<WrapperDeviceRect> ViewerCore::MakeDeviceRect(std::int32_t nPageIndex,
                                                              const LaidOutPage* pItem) const {
    auto pResult = std::make_shared<WrapperDeviceRect>();
    pResult->bIsValid = pItem != nullptr;
    pResult->nPageIndex = nPageIndex;
    pResult->pPageScreenOffset = CopyPlace(pItem);
    return pResult;
}

const LaidOutPage* ViewerCore::FindConvertible(std::int32_t nPageIndex) const {
    return OpenDocument() ? FindLaidOut(nPageIndex) : nullptr;
}

std::shared_ptr<WrapperDeviceRect> ViewerCore::PageRectToDeviceRect(std::int32_t nPageIndex,
                                                                    const Rect& rc) {
    const auto pResult = PageRectToScreenRect(nPageIndex, rc);
    const Rect rcDevice = std::exchange(pResult->rc, Rect::Empty());
    if (pResult->bIsValid && rcDevice.Width >= 0.0F) {
        const auto& pPanel = m_pCanvas->Panel();
        const float fScaleX = pPanel->CompositionScaleX();
        const float fScaleY = pPanel->CompositionScaleY();
        pResult->rc = Rect(rcDevice.X / fScaleX, rcDevice.Y / fScaleY, rcDevice.Width / fScaleX,
                           rcDevice.Height / fScaleY);
    }
    return pResult;
}

std::shared_ptr<WrapperDeviceRect> ViewerCore::PageRectToScreenRect(std::int32_t nPageIndex,
                                                                    const Rect& rc) {
    ThrowIfDisposed();
    const LaidOutPage* const pItem = FindConvertible(nPageIndex);
    const auto pResult = MakeDeviceRect(nPageIndex, pItem);
    if (pItem) {
        pResult->rc = PageToDevice(*pItem, rc);
    }
    return pResult;
}

std::shared_ptr<WrapperDeviceRect> ViewerCore::ScreenRectToPageRect(std::int32_t nPageIndex,
                                                                    const Rect& rc) {
    ThrowIfDisposed();
    const LaidOutPage* const pItem = FindConvertible(nPageIndex);
    const auto pResult = MakeDeviceRect(nPageIndex, pItem);
    if (pItem) {
        pResult->rc = Convert(*m_pDocument, &VLK_Document::DeviceRectToPageRect, *pItem, rc);
    }
    return pResult;
}

// The height goes by the X scale, as hosts have always been answered.
std::shared_ptr<WrapperDeviceRect> ViewerCore::DeviceRectToPageRect(std::int32_t nPageIndex,
                                                                    const Rect& rc) {
    ThrowIfDisposed();
    if (!m_pCanvas) {
        return MakeDeviceRect(nPageIndex, nullptr);
    }
    const auto& pPanel = m_pCanvas->Panel();
    const float fScaleX = pPanel->CompositionScaleX();
    const float fScaleY = pPanel->CompositionScaleY();
    Rect rcDevice = rc;
    rcDevice.X *= fScaleX;
    rcDevice.Y *= fScaleY;
    rcDevice.Width *= fScaleX;
    rcDevice.Height *= fScaleX;
    return ScreenRectToPageRect(nPageIndex, rcDevice);
}

std::array<double, 6> ViewerCore::GetDisplayMatrix(std::int32_t nPageIndex) {
    ThrowIfDisposed();
    velko::common::vxbase::Matrix2D matrix;
    if (const LaidOutPage* const pItem = FindConvertible(nPageIndex)) {
        const Render_ScreenOffsetInfo& rc = pItem->screenRect;
        matrix = m_pDocument->GetDisplayMatrix(nPageIndex, rc.dbOffsetX, rc.dbOffsetY, rc.nWidth,
                                               rc.nHeight, pItem->m_nRotate);
    }
    return {matrix.A, matrix.B, matrix.C, matrix.D, matrix.E, matrix.F};
}

bool ViewerCore::IsPointInPage(Point pt) {
    return GetPageIndexAtPoint(pt) >= 0;
}

std::int32_t ViewerCore::GetPageIndexAtPoint(Point pt) {
    ThrowIfDisposed();
    if (m_pCanvas) {
        const Point ptDevice = ToDevice(pt);
        for (std::size_t n = 0; n < LaidOutCount(); ++n) {
            if (ToRect(LaidOut(n).screenRect).Contains(ptDevice)) {
                return LaidOut(n).nPageIndex;
            }
        }
    }
    return -1;
}

ViewerCore::Point ViewerCore::AdjustPointInPage(Point pt, std::int32_t nPageIndex) {
    ThrowIfDisposed();
    const LaidOutPage* const pItem = FindLaidOut(nPageIndex);
    if (!pItem || !m_pCanvas) {
        return {-1.0F, -1.0F};
    }
    const double dbSide = GetScale() * kIconSide;
    const Point ptDevice = ToDevice(pt);
    const Render_ScreenOffsetInfo& rc = pItem->screenRect;
    const double dbRight = rc.dbOffsetX + rc.nWidth;
    const double dbBottom = rc.dbOffsetY + rc.nHeight;
    const auto& pPanel = m_pCanvas->Panel();
    if (dbRight < ptDevice.X + dbSide) {
        pt.X = static_cast<float>((dbRight - dbSide) / pPanel->CompositionScaleX());
    }
    if (dbBottom < ptDevice.Y + dbSide) {
        pt.Y = static_cast<float>((dbBottom - dbSide) / pPanel->CompositionScaleY());
    }
    return pt;
}

ViewerCore::Rect ViewerCore::GetPageRectAtPoint(Point pt, std::int32_t nPageIndex) {
    ThrowIfDisposed();
    if (!m_pCanvas) {
        return {};
    }
    const auto& pPanel = m_pCanvas->Panel();
    const float fScaleX = pPanel->CompositionScaleX();
    const float fScaleY = pPanel->CompositionScaleY();
    for (std::size_t n = 0; n < LaidOutCount(); ++n) {
        const LaidOutPage& item = LaidOut(n);
        const Rect rc = ToRect(item.screenRect);
        const Rect rcLogical(rc.X / fScaleX, rc.Y / fScaleY, rc.Width / fScaleX,
                             rc.Height / fScaleY);
        if (nPageIndex == -1 ? rcLogical.Contains(pt) : item.nPageIndex == nPageIndex) {
            return rcLogical;
        }
    }
    return {};
}

}
