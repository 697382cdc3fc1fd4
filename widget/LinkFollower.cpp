#include "widget/LinkFollower.h"

#include <QMouseEvent>
#include <QPointer>
#include <algorithm>
#include <utility>

#include "control/PDFViewCtrl.h"
#include "document/engine/PDFDoc.h"
#include "platform/concurrency/Task.h"
#include "platform/qt/QtElementWindow.h"
#include "platform/system/Debug.h"

namespace velko::vkit {

using velko::pdf::ILinkSource;
using velko::pdf::PDFDoc;
using Windows::Foundation::Point;

namespace {

constexpr std::size_t kMostPages = 64; // whose links are kept

bool IsWithin(const velko::common::vxbase::RectF& rc, Point pt) {
    return pt.X >= std::min(rc.Left, rc.Right) && pt.X <= std::max(rc.Left, rc.Right) &&
           pt.Y >= std::min(rc.Bottom, rc.Top) && pt.Y <= std::max(rc.Bottom, rc.Top);
}

std::vector<velko::pdf::LinkRecord> LinksOf(const std::shared_ptr<PDFDoc>& pDocument,
                                            std::int32_t nPage) {
    try {
        const auto pSource = std::dynamic_pointer_cast<ILinkSource>(pDocument);
        return pSource ? pSource->GetLinks(nPage) : std::vector<velko::pdf::LinkRecord>();
    } catch (...) {
        Platform::Debug::OutputDebugString("the links of page " + std::to_string(nPage) +
                                           " could not be read\n");
        return {};
    }
}

}

LinkFollower::LinkFollower(PDFViewCtrl& control, Platform::Qt::QtElementWindow& window)
    : m_control(control), m_window(window) {
    m_window.installEventFilter(this);
    m_tapToken = m_window.Panel()->Tapped.add([this](auto& args) { Tap(args.Position); });
}

LinkFollower::~LinkFollower() {
    m_window.Panel()->Tapped.remove(m_tapToken);
}

bool LinkFollower::eventFilter(QObject* /*pWatched*/, QEvent* pEvent) {
    if (pEvent->type() == QEvent::MouseMove) {
        const auto& move = *static_cast<QMouseEvent*>(pEvent);
        m_pointer = move.buttons() == Qt::NoButton ? std::optional(move.position()) : std::nullopt;
        Hover();
    } else if (pEvent->type() == QEvent::Leave) {
        m_pointer.reset();
        Hover();
    }
    return false;
}

void LinkFollower::Update() {
    FollowDocument();
    Hover();
}

// What is known of another document is of no use.
void LinkFollower::FollowDocument() {
    const auto pDocument = m_control.GetPDFDoc();
    if (m_wkDocument.lock() != pDocument || !pDocument) {
        SetHovered(nullptr);
        m_links.clear();
        m_tapped.reset();
        m_wkDocument = pDocument;
    }
}

std::optional<LinkFollower::PagePoint> LinkFollower::PageAt(Point ptDevice) const {
    if (m_control.GetPageIndexAtPoint(ptDevice) < 0) {
        return std::nullopt;
    }
    const auto pPoint = m_control.DevicePointToPagePoint(ptDevice);
    return PagePoint{pPoint->nPageIndex, pPoint->pt};
}

// Of links over each other the last one lies on top.
const LinkFollower::Link* LinkFollower::LinkAt(const PagePoint& point) {
    const auto it = m_links.find(point.nPage);
    if (it == m_links.end()) {
        Read(point.nPage);
        return nullptr;
    }
    if (!it->second) {
        return nullptr;
    }
    const auto link = std::find_if(it->second->rbegin(), it->second->rend(), [&](const Link& item) {
        return IsWithin(item.rcArea, point.pt);
    });
    return link == it->second->rend() ? nullptr : &*link;
}

// --- the pointer -----------------------------------------------------------

void LinkFollower::Hover() {
    if (!m_pointer || m_wkDocument.expired()) {
        SetHovered(nullptr);
        return;
    }
    const QPointF pt = *m_pointer * m_window.devicePixelRatioF();
    const auto point = PageAt({static_cast<float>(pt.x() / m_window.Panel()->CompositionScaleX()),
                               static_cast<float>(pt.y() / m_window.Panel()->CompositionScaleY())});
    SetHovered(point ? LinkAt(*point) : nullptr);
}

void LinkFollower::SetHovered(const Link* pLink) {
    if (std::exchange(m_pHovered, pLink) == pLink) {
        return;
    }
    if (pLink != nullptr) {
        m_window.setCursor(Qt::PointingHandCursor);
    } else {
        m_window.unsetCursor();
    }
    if (OnHover) {
        OnHover(pLink);
    }
}

void LinkFollower::Tap(Point ptDevice) {
    FollowDocument();
    const auto point = PageAt(ptDevice);
    if (!point) {
        return;
    }
    m_tapped = point;
    if (const Link* const pLink = LinkAt(*point); pLink != nullptr && OnFollow) {
        m_tapped.reset();
        const Link link = *pLink; // following it may bring another document
        OnFollow(link);
    }
}

// --- reading ---------------------------------------------------------------

void LinkFollower::Read(std::int32_t nPage) {
    const auto pDocument = m_wkDocument.lock();
    if (!pDocument) {
        return;
    }
    if (m_links.size() >= kMostPages) {
        SetHovered(nullptr);
        m_links.clear();
    }
    m_links[nPage].reset();
    const auto fnRead = [pDocument, nPage] { return LinksOf(pDocument, nPage); };
    concurrency::create_task(fnRead).then([pThis = QPointer<LinkFollower>(this),
                                           wkDocument = std::weak_ptr<PDFDoc>(pDocument),
                                           nPage](const concurrency::task<Links>& reading) {
        if (pThis && reading.is_value()) {
            pThis->OnRead(wkDocument, nPage, reading.get());
        }
    });
}

void LinkFollower::OnRead(const std::weak_ptr<PDFDoc>& wkDocument, std::int32_t nPage,
                          Links links) {
    if (wkDocument.lock() != m_wkDocument.lock()) {
        return;
    }
    m_links[nPage] = std::move(links);
    const auto tapped = std::exchange(m_tapped, std::nullopt);
    const Link* const pTapped = tapped && tapped->nPage == nPage ? LinkAt(*tapped) : nullptr;
    if (pTapped != nullptr && OnFollow) {
        const Link link = *pTapped;
        OnFollow(link);
    } else {
        Hover();
    }
}

}
