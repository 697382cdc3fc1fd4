#include "widget/LinkFollower.h"

#include <QMouseEvent>
#include <algorithm>
#include <utility>

#include "control/PDFViewCtrl.h"
#include "platform/qt/QtElementWindow.h"

namespace velko::vkit {

using Windows::Foundation::Point;

namespace {

bool IsWithin(const velko::common::vxbase::RectF& rc, Point pt) {
    return pt.X >= std::min(rc.Left, rc.Right) && pt.X <= std::max(rc.Left, rc.Right) &&
           pt.Y >= std::min(rc.Bottom, rc.Top) && pt.Y <= std::max(rc.Bottom, rc.Top);
}

}

LinkFollower::LinkFollower(PDFViewCtrl& control, Platform::Qt::QtElementWindow& window,
                           PageLinks& links, PointerShape& shape)
    : m_control(control), m_window(window), m_links(links), m_shape(shape) {
    m_window.installEventFilter(this);
    connect(&m_links, &PageLinks::Read, this, &LinkFollower::OnRead);
    m_tapToken = m_window.Panel()->Tapped.add([this](auto& args) { Tap(args.Position); });
}

LinkFollower::~LinkFollower() {
    m_window.Panel()->Tapped.remove(m_tapToken);
}

bool LinkFollower::eventFilter(QObject* /*pWatched*/, QEvent* pEvent) {
    if (pEvent->type() == QEvent::MouseMove || pEvent->type() == QEvent::MouseButtonRelease) {
        const auto& mouse = *static_cast<QMouseEvent*>(pEvent);
        m_pointer =
            mouse.buttons() == Qt::NoButton ? std::optional(mouse.position()) : std::nullopt;
        Hover();
    } else if (pEvent->type() == QEvent::Leave) {
        m_pointer.reset();
        Hover();
    }
    return false;
}

void LinkFollower::Forget() {
    SetHovered(nullptr);
    m_tapped.reset();
}

std::optional<LinkFollower::PagePoint> LinkFollower::PageAt(Point ptDevice) const {
    if (m_control.GetPageIndexAtPoint(ptDevice) < 0) {
        return std::nullopt;
    }
    const auto pPoint = m_control.DevicePointToPagePoint(ptDevice);
    return PagePoint{pPoint->nPageIndex, pPoint->pt};
}

// Of links over each other the last one lies on top.
LinkFollower::LinkPtr LinkFollower::LinkAt(const PagePoint& point) {
    const auto pLinks = m_links.Find(point.nPage);
    if (!pLinks) {
        return nullptr;
    }
    const auto link = std::find_if(pLinks->rbegin(), pLinks->rend(), [&](const Link& item) {
        return IsWithin(item.rcArea, point.pt);
    });
    return link == pLinks->rend() ? nullptr : LinkPtr(pLinks, &*link);
}

void LinkFollower::Hover() {
    if (!m_pointer || !m_links.Document()) {
        SetHovered(nullptr);
        return;
    }
    const QPointF pt = *m_pointer * m_window.devicePixelRatioF();
    const auto point = PageAt({static_cast<float>(pt.x() / m_window.Panel()->CompositionScaleX()),
                               static_cast<float>(pt.y() / m_window.Panel()->CompositionScaleY())});
    SetHovered(point ? LinkAt(*point) : nullptr);
}

void LinkFollower::SetHovered(const LinkPtr& pLink) {
    if (std::exchange(m_pHovered, pLink) == pLink) {
        return;
    }
    m_shape.Set(PointerShape::OverLink, pLink != nullptr);
    if (OnHover) {
        OnHover();
    }
}

void LinkFollower::Tap(Point ptDevice) {
    if (!m_links.IsSameDocument()) {
        Forget();
    }
    const auto point = PageAt(ptDevice);
    if (!point) {
        return;
    }
    m_tapped = point;
    const LinkPtr pLink = LinkAt(*point);
    if (pLink && OnFollow) {
        m_tapped.reset();
        OnFollow(*pLink);
    }
}

void LinkFollower::OnRead(std::int32_t nPage) {
    LinkPtr pTapped;
    if (m_tapped && m_tapped->nPage == nPage) {
        pTapped = LinkAt(*std::exchange(m_tapped, std::nullopt));
    }
    if (pTapped && OnFollow) {
        OnFollow(*pTapped);
    } else {
        Hover();
    }
}

}
