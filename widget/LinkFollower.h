// The links of the pages on the screen: which one lies under the pointer, and
// which one the reader taps.
//
// A page's links are read on the task pool when the pointer first comes to the
// page. A drag that begins on a link follows nothing.
// Lifetime: goes before the window and the control that it works on.
// Threads: UI thread only. Errors: a page whose links cannot be read has none.
#pragma once

#include <QObject>
#include <QPointF>
#include <QString>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "document/engine/HostServices.h"
#include "platform/foundation/Event.h"
#include "platform/foundation/Geometry.h"

namespace Platform::Qt {
class QtElementWindow;
}

namespace velko::pdf {
class PDFDoc;
}

namespace velko::vkit {

class PDFViewCtrl;

class LinkFollower : public QObject {
public:
    using Link = velko::pdf::LinkRecord;

    LinkFollower(PDFViewCtrl& control, Platform::Qt::QtElementWindow& window);
    ~LinkFollower() override;

    // The pages have moved under the pointer, or others are shown.
    void Update();

    std::function<void(const Link&)> OnFollow;
    std::function<void(const Link*)> OnHover; // null: no link is under the pointer any more

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    using Links = std::vector<Link>;

    // A point of a page, in page space.
    struct PagePoint {
        std::int32_t nPage = 0;
        Windows::Foundation::Point pt;
    };

    std::optional<PagePoint> PageAt(Windows::Foundation::Point ptDevice) const;
    const Link* LinkAt(const PagePoint& point); // null also while the page's links are read
    void Hover();
    void SetHovered(const Link* pLink);
    void Tap(Windows::Foundation::Point ptDevice);
    void Read(std::int32_t nPage);
    void OnRead(const std::weak_ptr<velko::pdf::PDFDoc>& wkDocument, std::int32_t nPage,
                Links links);
    void FollowDocument();

    PDFViewCtrl& m_control;
    Platform::Qt::QtElementWindow& m_window;
    Windows::Foundation::EventRegistrationToken m_tapToken;
    std::weak_ptr<velko::pdf::PDFDoc> m_wkDocument;       // whose links these are
    std::map<std::int32_t, std::optional<Links>> m_links; // empty while they are read
    std::optional<QPointF> m_pointer;                     // over the window, no button down
    std::optional<PagePoint> m_tapped;                    // on a page whose links are read
    const Link* m_pHovered = nullptr;                     // in `m_links`
};

}
