// The pointer's way to the links on the screen: which one lies under it, and
// which one the reader taps. A drag that begins on a link follows nothing.
//
// Lifetime: goes before the window, the control, the links and the shape that it works on.
// Threads: UI thread only.
#pragma once

#include <QObject>
#include <QPointF>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "platform/foundation/Event.h"
#include "platform/foundation/Geometry.h"
#include "widget/PageLinks.h"
#include "widget/PointerShape.h"

namespace Platform::Qt {
class QtElementWindow;
}

namespace velko::vkit {

class LinkFollower : public QObject {
public:
    using Link = PageLinks::Link;

    LinkFollower(PDFViewCtrl& control, Platform::Qt::QtElementWindow& window, PageLinks& links,
                 PointerShape& shape);
    ~LinkFollower() override;

    // The pages have moved under the pointer, or others are shown.
    void Update() { Hover(); }
    // What is known of another document is of no use.
    void Forget();

    const Link* Hovered() const { return m_pHovered.get(); } // null: none is under the pointer

    std::function<void(const Link&)> OnFollow;
    std::function<void()> OnHover; // another one, or none any more

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    using LinkPtr = std::shared_ptr<const Link>;

    // A point of a page, in page space.
    struct PagePoint {
        std::int32_t nPage = 0;
        Windows::Foundation::Point pt;
    };

    std::optional<PagePoint> PageAt(Windows::Foundation::Point ptDevice) const;
    LinkPtr LinkAt(const PagePoint& point); // empty also while the page's links are read
    void Hover();
    void SetHovered(const LinkPtr& pLink);
    void Tap(Windows::Foundation::Point ptDevice);
    void OnRead(std::int32_t nPage);

    PDFViewCtrl& m_control;
    Platform::Qt::QtElementWindow& m_window;
    PageLinks& m_links;
    PointerShape& m_shape;
    Windows::Foundation::EventRegistrationToken m_tapToken;
    std::optional<QPointF> m_pointer;  // over the window, no button down
    std::optional<PagePoint> m_tapped; // on a page whose links are read
    LinkPtr m_pHovered;
};

}
