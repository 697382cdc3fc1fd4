// Where elements stand: what each wants, and what its parent gives it.
#include <algorithm>
#include <cmath>

#include "platform/foundation/FirstFailure.h"
#include "platform/system/Environment.h"
#include "platform/ui/Controls.h"

namespace Windows::UI::Xaml {

using Foundation::Point;
using Foundation::Rect;
using Foundation::Size;

namespace {

// Of a 96th of an inch.
float Unit() {
    constexpr float kDotsPerInch = 96.0F;
    return Windows::Graphics::Display::DisplayInformation::LogicalDpi() / kDotsPerInch;
}

bool IsNone(const Thickness& room) {
    return room.Left == 0.0 && room.Top == 0.0 && room.Right == 0.0 && room.Bottom == 0.0;
}

Size RoomOf(const Thickness& room) {
    if (IsNone(room)) {
        return {}; // asks no environment, which a bare tree has none of
    }
    return {static_cast<float>(room.Left + room.Right) * Unit(),
            static_cast<float>(room.Top + room.Bottom) * Unit()};
}

Rect Without(const Thickness& room, const Rect& rc) {
    if (IsNone(room)) {
        return rc;
    }
    const float fUnit = Unit();
    const Size taken = RoomOf(room);
    return {rc.X + static_cast<float>(room.Left) * fUnit,
            rc.Y + static_cast<float>(room.Top) * fUnit, std::max(rc.Width - taken.Width, 0.0F),
            std::max(rc.Height - taken.Height, 0.0F)};
}

// What is too large for its slot stands at its beginning.
float StartIn(float fSlot, float fLength, int nAlignment) {
    const float fRoom = std::max(fSlot - fLength, 0.0F);
    switch (nAlignment) {
        case 0:
            return 0.0F;
        case 2:
            return fRoom;
        default:
            return fRoom / 2.0F;
    }
}

}

// --- what it wants ---------------------------------------------------------

void FrameworkElement::Width(std::optional<double> width) {
    if (m_width != width) {
        m_width = width;
        InvalidateLayout();
    }
}

void FrameworkElement::Height(std::optional<double> height) {
    if (m_height != height) {
        m_height = height;
        InvalidateLayout();
    }
}

void FrameworkElement::HorizontalAlignment(Xaml::HorizontalAlignment eAlignment) {
    m_eHorizontal = eAlignment;
    InvalidateLayout();
}

void FrameworkElement::VerticalAlignment(Xaml::VerticalAlignment eAlignment) {
    m_eVertical = eAlignment;
    InvalidateLayout();
}

void FrameworkElement::Margin(const Thickness& margin) {
    m_margin = margin;
    InvalidateLayout();
}

void FrameworkElement::RenderTransform(std::shared_ptr<Media::TranslateTransform> pTransform) {
    m_pRenderTransform = std::move(pTransform);
    Root()->LayoutUpdated.raise();
}

Size FrameworkElement::Measure(float fWidthLimit) const {
    if (m_eVisibility == Xaml::Visibility::Collapsed || !TakesRoom()) {
        return {};
    }
    const Size margin = RoomOf(m_margin);
    const float fInside = std::max(fWidthLimit - margin.Width, 0.0F);
    const Size size = SizeIn({fInside, -1.0F});
    return {size.Width + margin.Width, size.Height + margin.Height};
}

// In a slot without its margin. A negative height asks for what the contents need.
Size FrameworkElement::SizeIn(Size slot) const {
    const bool bMeasured = slot.Height < 0.0F;
    const bool bStretchX = !bMeasured && m_eHorizontal == Xaml::HorizontalAlignment::Stretch;
    const bool bStretchY = !bMeasured && m_eVertical == Xaml::VerticalAlignment::Stretch;
    const float fLimit = m_width ? static_cast<float>(*m_width) : slot.Width;
    Size size = slot;
    if (!(m_width || bStretchX) || !(m_height || bStretchY)) {
        const Size wanted = MeasureContents(fLimit);
        size.Width = bStretchX ? slot.Width : std::min(wanted.Width, slot.Width);
        size.Height = bStretchY   ? slot.Height
                      : bMeasured ? wanted.Height
                                  : std::min(wanted.Height, slot.Height);
    }
    size.Width = m_width ? fLimit : size.Width;
    size.Height = m_height ? static_cast<float>(*m_height) : size.Height;
    return size;
}

Size FrameworkElement::MeasureContents(float fWidthLimit) const {
    if (m_fnNaturalSize) {
        return m_fnNaturalSize(fWidthLimit);
    }
    Size size;
    for (const auto& pChild : m_children) {
        const Size wanted = pChild->Measure(fWidthLimit);
        size = {std::max(size.Width, wanted.Width), std::max(size.Height, wanted.Height)};
    }
    return size;
}

// --- what it gets ----------------------------------------------------------

void FrameworkElement::Arrange(Size size) {
    SizeSteps steps;
    TakeSize(*this, size, steps);
    Platform::FirstFailure failure;
    failure.Run([&] { RaiseSizeChanged(steps); });
    failure.Run([this] { LayoutUpdated.raise(); });
    failure.Rethrow();
}

void FrameworkElement::InvalidateLayout() {
    const auto pRoot = Root();
    pRoot->Arrange(pRoot->m_size);
}

void FrameworkElement::TakeSize(FrameworkElement& element, Size size, SizeSteps& steps) {
    if (!(size.Width >= 0.0F && size.Height >= 0.0F)) {
        throw Platform::InvalidArgumentException("an element of negative size");
    }
    if (size != element.m_size) {
        steps.push_back({element.shared_from_this(), {element.m_size, size}});
        element.m_size = size;
    }
    element.ArrangeContents(size, steps);
}

void FrameworkElement::ArrangeContents(Size size, SizeSteps& steps) {
    for (const auto& pChild : m_children) {
        ArrangeIn({0.0F, 0.0F, size.Width, size.Height}, *pChild, steps);
    }
}

void FrameworkElement::ArrangeIn(const Rect& rcSlot, FrameworkElement& element, SizeSteps& steps) {
    const Rect rc = Without(element.m_margin, rcSlot);
    const Size size = element.SizeIn({rc.Width, rc.Height});
    element.m_ptLayout = {
        rc.X + StartIn(rc.Width, size.Width, static_cast<int>(element.m_eHorizontal)),
        rc.Y + StartIn(rc.Height, size.Height, static_cast<int>(element.m_eVertical))};
    TakeSize(element, size, steps);
}

Point FrameworkElement::PositionInParent() const {
    Point pt{m_ptInParent.X + m_ptLayout.X, m_ptInParent.Y + m_ptLayout.Y};
    if (m_pRenderTransform) {
        pt.X += static_cast<float>(m_pRenderTransform->X());
        pt.Y += static_cast<float>(m_pRenderTransform->Y());
    }
    return pt;
}

Point FrameworkElement::PositionInWindow() const {
    const auto pParent = Parent();
    const Point ptParent = pParent ? pParent->PositionInWindow() : Point();
    const Point pt = PositionInParent();
    return {ptParent.X + pt.X, ptParent.Y + pt.Y};
}

// --- panels ----------------------------------------------------------------

namespace Controls {

void Panel::Padding(const Thickness& padding) {
    m_padding = padding;
    InvalidateLayout();
}

Rect Panel::Inside(Size size) const {
    return Without(m_padding, {0.0F, 0.0F, size.Width, size.Height});
}

Size Panel::PaddingSize() const {
    return RoomOf(m_padding);
}

Size Grid::MeasureContents(float fWidthLimit) const {
    const Size padding = PaddingSize();
    const Size wanted = Panel::MeasureContents(std::max(fWidthLimit - padding.Width, 0.0F));
    return {wanted.Width + padding.Width, wanted.Height + padding.Height};
}

void Grid::ArrangeContents(Size size, SizeSteps& steps) {
    const Rect rc = Inside(size);
    for (const auto& pChild : Children()) {
        ArrangeIn(rc, *pChild, steps);
    }
}

Size StackPanel::MeasureContents(float fWidthLimit) const {
    const Size padding = PaddingSize();
    const float fInside = std::max(fWidthLimit - padding.Width, 0.0F);
    const float fSpacing = static_cast<float>(m_dbSpacing) * Unit();
    float fLength = 0.0F;
    float fBreadth = 0.0F;
    for (const auto& pChild : Children()) {
        if (pChild->Visibility() == Visibility::Collapsed) {
            continue;
        }
        const Size wanted = pChild->Measure(fInside);
        const bool bDown = m_eOrientation == Orientation::Vertical;
        const float fOwn = bDown ? wanted.Height : wanted.Width;
        fLength += fOwn + (fLength > 0.0F && fOwn > 0.0F ? fSpacing : 0.0F);
        fBreadth = std::max(fBreadth, bDown ? wanted.Width : wanted.Height);
    }
    const Size size =
        m_eOrientation == Orientation::Vertical ? Size{fBreadth, fLength} : Size{fLength, fBreadth};
    return {size.Width + padding.Width, size.Height + padding.Height};
}

void StackPanel::ArrangeContents(Size size, SizeSteps& steps) {
    const Rect rc = Inside(size);
    const float fSpacing = static_cast<float>(m_dbSpacing) * Unit();
    Rect rcNext = rc;
    for (const auto& pChild : Children()) {
        if (pChild->Visibility() == Visibility::Collapsed) {
            ArrangeIn({rcNext.X, rcNext.Y, 0.0F, 0.0F}, *pChild, steps);
            continue;
        }
        if (!pChild->TakesRoom()) {
            ArrangeIn(rc, *pChild, steps);
            continue;
        }
        const Size wanted = pChild->Measure(std::max(rc.X + rc.Width - rcNext.X, 0.0F));
        if (m_eOrientation == Orientation::Vertical) {
            rcNext.Height = wanted.Height;
            ArrangeIn(rcNext, *pChild, steps);
            rcNext.Y += wanted.Height > 0.0F ? wanted.Height + fSpacing : 0.0F;
        } else {
            rcNext.Width = wanted.Width;
            ArrangeIn(rcNext, *pChild, steps);
            rcNext.X += wanted.Width > 0.0F ? wanted.Width + fSpacing : 0.0F;
        }
    }
}

}

}
