// Conversions between the screen and the pages that are laid out.
#include <utility>

#include "document/VLK_Document.h"
#include "viewers/core/PageViewerBase.h"

namespace velko::vkit {

namespace {

constexpr float kIconSide = 24.0F; // device pixels at scale 1.0

// Calls one of the document's four conversions with an item's place.
template <class F, class T>
auto Convert(VLK_Document& document, F pConversion, const ViewerPageItem& item, const T& value) {
    const Render_ScreenOffsetInfo& rc = item.screenRect;
    return (document.*pConversion)(item.nPageIndex, rc.dbOffsetX, rc.dbOffsetY, rc.nWidth,
                                   rc.nHeight, item.m_nRotate, value);
}

std::shared_ptr<Render_PageScreenOffsetInfo> CopyPlace(const ViewerPageItem* pItem) {
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

PageViewerBase::Point PageViewerBase::ToDevice(Point pt) const {
    const auto& pPanel = m_pCanvas->Panel();
    return {pt.X * pPanel->CompositionScaleX(), pt.Y * pPanel->CompositionScaleY()};
}

PageViewerBase::Point PageViewerBase::ToLogical(Point pt) const {
    const auto& pPanel = m_pCanvas->Panel();
    return {pt.X / pPanel->CompositionScaleX(), pt.Y / pPanel->CompositionScaleY()};
}

PageViewerBase::Point PageViewerBase::PageToDevice(const ViewerPageItem& item, Point pt) const {
    return Convert(*m_pDocument, &VLK_Document::PagePointToDevicePoint, item, pt);
}

PageViewerBase::Point PageViewerBase::DeviceToPage(const ViewerPageItem& item, Point pt) const {
    return Convert(*m_pDocument, &VLK_Document::DevicePointToPagePoint, item, pt);
}

PageViewerBase::Rect PageViewerBase::PageToDevice(const ViewerPageItem& item,
                                                  const Rect& rc) const {
    return Convert(*m_pDocument, &VLK_Document::PageRectToDeviceRect, item, rc);
}

// With overlapping pages the last one wins.
std::shared_ptr<PDFPagePoint> PageViewerBase::DevicePointToPagePoint(Point pt) {
    ThrowIfDisposed();
    auto pResult = std::make_shared<PDFPagePoint>();
    pResult->nPageIndex = GetCurrentPageIndex();
    pResult->pt = m_pCanvas ? ToDevice(pt) : pt;
    if (!HasItems() || !LiveDocument()) {
        return pResult;
    }
    const Point ptDevice = pResult->pt;
    for (const PageItem& pItem : *m_pPageItems) {
        if (ToRect(pItem->screenRect).Contains(ptDevice)) {
            pResult->nPageIndex = pItem->nPageIndex;
            pResult->pt = DeviceToPage(*pItem, ptDevice);
        }
    }
    return pResult;
}

std::shared_ptr<Render_PageScreenOffsetInfo> PageViewerBase::GetPageScreenOffset(
    std::int32_t nPageIndex) {
    ThrowIfDisposed();
    const PageItem pItem = FindItem(nPageIndex);
    return pItem ? CopyPlace(pItem.get()) : nullptr;
}

std::shared_ptr<WrapperDevicePoint> PageViewerBase::PagePointToDevicePoint(std::int32_t nPageIndex,
                                                                           Point pt) {
    ThrowIfDisposed();
    auto pResult = std::make_shared<WrapperDevicePoint>();
    pResult->nPageIndex = nPageIndex;
    const PageItem pItem = FindItem(nPageIndex);
    if (pItem && LiveDocument()) {
        pResult->bIsValid = true;
        pResult->pt = ToLogical(PageToDevice(*pItem, pt));
    }
    return pResult;
}

// The record of a conversion, without its rectangle; valid with an item.
std::shared_ptr<WrapperDeviceRect> PageViewerBase::MakeDeviceRect(
    std::int32_t nPageIndex, const ViewerPageItem* pItem) const {
    auto pResult = std::make_shared<WrapperDeviceRect>();
    pResult->bIsValid = pItem != nullptr;
    pResult->nPageIndex = nPageIndex;
    pResult->pPageScreenOffset = CopyPlace(pItem);
    return pResult;
}

PageViewerBase::PageItem PageViewerBase::FindConvertible(std::int32_t nPageIndex) const {
    return LiveDocument() ? FindItem(nPageIndex) : nullptr;
}

std::shared_ptr<WrapperDeviceRect> PageViewerBase::PageRectToDeviceRect(std::int32_t nPageIndex,
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

std::shared_ptr<WrapperDeviceRect> PageViewerBase::PageRectToScreenRect(std::int32_t nPageIndex,
                                                                        const Rect& rc) {
    ThrowIfDisposed();
    const PageItem pItem = FindConvertible(nPageIndex);
    const auto pResult = MakeDeviceRect(nPageIndex, pItem.get());
    if (pItem) {
        pResult->rc = PageToDevice(*pItem, rc);
    }
    return pResult;
}

std::shared_ptr<WrapperDeviceRect> PageViewerBase::ScreenRectToPageRect(std::int32_t nPageIndex,
                                                                        const Rect& rc) {
    ThrowIfDisposed();
    const PageItem pItem = FindConvertible(nPageIndex);
    const auto pResult = MakeDeviceRect(nPageIndex, pItem.get());
    if (pItem) {
        pResult->rc = Convert(*m_pDocument, &VLK_Document::DeviceRectToPageRect, *pItem, rc);
    }
    return pResult;
}

// The height goes by the X scale, as hosts have always been answered.
std::shared_ptr<WrapperDeviceRect> PageViewerBase::DeviceRectToPageRect(std::int32_t nPageIndex,
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

std::array<double, 6> PageViewerBase::GetDisplayMatrix(std::int32_t nPageIndex) {
    ThrowIfDisposed();
    velko::common::vxbase::Matrix2D matrix;
    if (const PageItem pItem = FindConvertible(nPageIndex)) {
        const Render_ScreenOffsetInfo& rc = pItem->screenRect;
        matrix = m_pDocument->GetDisplayMatrix(nPageIndex, rc.dbOffsetX, rc.dbOffsetY, rc.nWidth,
                                               rc.nHeight, pItem->m_nRotate);
    }
    return {matrix.A, matrix.B, matrix.C, matrix.D, matrix.E, matrix.F};
}

bool PageViewerBase::IsPointInPage(Point pt) {
    return GetPageIndexAtPoint(pt) >= 0;
}

std::int32_t PageViewerBase::GetPageIndexAtPoint(Point pt) {
    ThrowIfDisposed();
    if (!HasItems() || !m_pCanvas) {
        return -1;
    }
    const PageItem pItem = FindItemAt(ToDevice(pt));
    return pItem ? pItem->nPageIndex : -1;
}

PageViewerBase::Point PageViewerBase::AdjustPointInPage(Point pt, std::int32_t nPageIndex) {
    ThrowIfDisposed();
    const PageItem pItem = FindItem(nPageIndex);
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

PageViewerBase::Rect PageViewerBase::GetPageRectAtPoint(Point pt, std::int32_t nPageIndex) {
    ThrowIfDisposed();
    if (!HasItems() || !m_pCanvas) {
        return {};
    }
    const auto& pPanel = m_pCanvas->Panel();
    const float fScaleX = pPanel->CompositionScaleX();
    const float fScaleY = pPanel->CompositionScaleY();
    for (const PageItem& pItem : *m_pPageItems) {
        const Rect rc = ToRect(pItem->screenRect);
        const Rect rcLogical(rc.X / fScaleX, rc.Y / fScaleY, rc.Width / fScaleX,
                             rc.Height / fScaleY);
        if (nPageIndex == -1 ? rcLogical.Contains(pt) : pItem->nPageIndex == nPageIndex) {
            return rcLogical;
        }
    }
    return {};
}

}
