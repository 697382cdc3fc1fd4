// The keyboard's way over the links: Tab and Shift+Tab move a focus that shows
// from link to link, Return follows the one that has it, Escape leaves it.
//
// Tab begins at the first link on the screen and goes on beyond it, over the pages
// that come, as the file lists their links; where there is none left the focus
// goes to the next widget. Shift+Tab goes back from a link, and without one to the
// widget before. What leaves the screen loses the focus: the next Tab begins anew
// with what the reader sees.
//
// Lifetime: goes before the window, the control and the links that it works on.
// Threads: UI thread only.
#pragma once

#include <QObject>
#include <QRect>
#include <QString>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "platform/foundation/Event.h"
#include "platform/foundation/Geometry.h"
#include "widget/PageLinks.h"

class QFocusEvent;
class QKeyEvent;

namespace Platform::Qt {
class QtElementWindow;
}

namespace velko::vkit {

class RenderCanvasEventArgs;

class LinkFocus : public QObject {
    Q_OBJECT

public:
    using Link = PageLinks::Link;

    // What the focus asks of the view.
    struct Hands {
        std::function<void(const Link&)> fnFollow;
        std::function<void(int nPage)> fnGotoPage;
        std::function<void(double dbX, double dbY)> fnScroll; // device pixels
        std::function<void()> fnChanged;                      // another link, or none any more
    };

    LinkFocus(PDFViewCtrl& control, Platform::Qt::QtElementWindow& window, PageLinks& links,
              Hands hands);
    ~LinkFocus() override;

    // The link that has the focus of the keyboard, what it leads to, and where it
    // lies in the window, in Qt's units; null and empty when none has it.
    const Link* Focused() const;
    QString Text() const;
    QRect Place() const;

    // The pages have moved, or others are shown.
    void Update();
    // What is known of another document is of no use.
    void Forget() { Leave(); }

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    // A link that has the focus, of the page's list.
    struct Spot {
        std::int32_t nPage = 0;
        std::size_t nLink = 0;
        std::shared_ptr<const PageLinks::Links> pLinks;

        const Link& Get() const { return (*pLinks)[nLink]; }
    };

    // A step that is under way, page by page.
    struct Search {
        int nDirection = 1;
        std::int32_t nPage = 0;          // to be looked at
        std::optional<std::size_t> from; // the link of that page to go on from
        bool bOnScreen = false;          // what lies above the window is left out
        int nPagesLeft = 0;
    };

    bool HandleKey(const QKeyEvent& event);
    void OnFocusOut(const QFocusEvent& event);
    void Step(int nDirection);
    void GoOn();
    std::optional<std::size_t> FindOn(const Search& search, const PageLinks::Links& links);
    bool IsPageWithin(std::int32_t nPage);
    void Take(Spot spot);
    void Leave();
    void LeaveWindow(int nDirection);
    void Changed();
    void BringIntoSight();
    void Draw(const RenderCanvasEventArgs& args);

    // Of a link, in the control's logical units; empty for one that is not laid out.
    std::optional<Windows::Foundation::Rect> PlaceOf(std::int32_t nPage, const Link& link) const;
    bool IsInSight(const Spot& spot) const;

    PDFViewCtrl& m_control;
    Platform::Qt::QtElementWindow& m_window;
    PageLinks& m_links;
    const Hands m_hands;
    Windows::Foundation::EventRegistrationToken m_drawToken;
    std::optional<Spot> m_spot;
    std::optional<Search> m_search;
    bool m_bLeaving = false; // this key goes to the next widget
};

}
