#include "widget/LinkFocus.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <algorithm>
#include <cmath>
#include <utility>

#include "control/PDFViewCtrl.h"
#include "platform/foundation/Exception.h"
#include "platform/qt/QtElementWindow.h"
#include "surface/PDFViewCanvas.h"
#include "widget/LinkAccessible.h"
#include "widget/LinkTarget.h"

namespace velko::vkit {

using Windows::Foundation::Rect;

namespace {

constexpr int kFarthestPages = 500; // that a step looks for a link on
constexpr double kMargin = 48.0;    // between a link that is brought into sight and the edge

// Two lines, so that one of them stands out from whatever lies below.
constexpr std::uint32_t kLine = 0xFF0B57D0U;
constexpr std::uint32_t kAround = 0xFFFFFFFFU;

// How far to scroll so that what lies from `dbFrom` to `dbTo` is within the length,
// with a margin where that has room; 0 for what is.
double ScrollFor(double dbFrom, double dbTo, double dbLength, double dbMargin) {
    if (dbFrom >= 0.0 && dbTo <= dbLength) {
        return 0.0;
    }
    const double dbRoom = std::clamp((dbLength - (dbTo - dbFrom)) / 2.0, 0.0, dbMargin);
    return dbFrom < 0.0 || dbTo - dbFrom > dbLength ? dbFrom - dbRoom : dbTo - dbLength + dbRoom;
}

}

LinkFocus::LinkFocus(PDFViewCtrl& control, Platform::Qt::QtElementWindow& window, PageLinks& links,
                     Hands hands)
    : QObject(&window), // where the accessible tree finds it
      m_control(control),
      m_window(window),
      m_links(links),
      m_hands(std::move(hands)) {
    m_window.installEventFilter(this);
    connect(&m_links, &PageLinks::Read, this, &LinkFocus::GoOn);
    m_drawToken =
        m_control.RenderCanvasEvent.add([this](const auto&, const auto& pArgs) { Draw(*pArgs); });
    LinkAccessible::Install(m_window);
}

LinkFocus::~LinkFocus() {
    m_control.RenderCanvasEvent.remove(m_drawToken);
}

// --- input -----------------------------------------------------------------

bool LinkFocus::eventFilter(QObject* /*pWatched*/, QEvent* pEvent) {
    switch (pEvent->type()) {
        case QEvent::ShortcutOverride: // the link's keys come before the window's
            if (Focused() != nullptr && static_cast<QKeyEvent*>(pEvent)->modifiers() == 0) {
                const int nKey = static_cast<QKeyEvent*>(pEvent)->key();
                pEvent->setAccepted(nKey == Qt::Key_Return || nKey == Qt::Key_Escape);
                return pEvent->isAccepted();
            }
            return false;
        case QEvent::KeyPress:
            return !m_bLeaving && HandleKey(*static_cast<QKeyEvent*>(pEvent));
        case QEvent::MouseButtonPress:
        case QEvent::TouchBegin:
            Leave();
            return false;
        case QEvent::FocusOut:
            OnFocusOut(*static_cast<QFocusEvent*>(pEvent));
            return false;
        case QEvent::FocusIn:
            if (m_spot) {
                Changed();
            }
            return false;
        default:
            return false;
    }
}

bool LinkFocus::HandleKey(const QKeyEvent& event) {
    m_search.reset();
    const auto modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (event.key() == Qt::Key_Tab && modifiers == Qt::NoModifier) {
        Step(1);
        return true;
    }
    if (Focused() == nullptr) {
        return false;
    }
    if (event.key() == Qt::Key_Backtab && (modifiers & ~Qt::ShiftModifier) == 0) {
        Step(-1);
        return true;
    }
    if ((event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter) &&
        modifiers == Qt::NoModifier) {
        const Link link = m_spot->Get(); // following it may bring another document
        m_hands.fnFollow(link);
        return true;
    }
    if (event.key() == Qt::Key_Escape) {
        Leave();
        return true;
    }
    return false;
}

// A question that the window asks, or another window, gives the focus back.
void LinkFocus::OnFocusOut(const QFocusEvent& event) {
    m_search.reset();
    const bool bComesBack =
        event.reason() == Qt::ActiveWindowFocusReason || event.reason() == Qt::PopupFocusReason ||
        event.reason() == Qt::MenuBarFocusReason || event.reason() == Qt::OtherFocusReason;
    if (!bComesBack) {
        Leave();
    } else if (m_spot) {
        Changed();
    }
}

// --- steps -----------------------------------------------------------------

void LinkFocus::Step(int nDirection) {
    Search search;
    search.nDirection = nDirection;
    search.nPagesLeft = kFarthestPages;
    if (m_spot) {
        search.nPage = m_spot->nPage;
        search.from = m_spot->nLink;
    } else {
        const auto pages = m_control.GetVisiblePages();
        if (!m_links.IsSameDocument() && !m_links.Document()) {
            LeaveWindow(nDirection);
            return;
        }
        search.bOnScreen = true;
        search.nPage = pages.empty() ? 0 : pages.front();
        search.nPagesLeft = static_cast<int>(pages.size());
    }
    m_search = search;
    GoOn();
}

// Until a link is found, the pages end, or one has to be read first.
void LinkFocus::GoOn() {
    while (m_search) {
        if (m_search->nPagesLeft <= 0 || !IsPageWithin(m_search->nPage)) {
            LeaveWindow(std::exchange(m_search, std::nullopt)->nDirection);
            return;
        }
        const auto pLinks = m_links.Find(m_search->nPage);
        if (!pLinks) {
            return;
        }
        if (const auto found = FindOn(*m_search, *pLinks)) {
            Take({std::exchange(m_search, std::nullopt)->nPage, *found, pLinks});
            return;
        }
        m_search->nPage += m_search->nDirection;
        --m_search->nPagesLeft;
        m_search->from.reset();
    }
}

std::optional<std::size_t> LinkFocus::FindOn(const Search& search, const PageLinks::Links& links) {
    const auto nLinks = static_cast<std::ptrdiff_t>(links.size());
    std::ptrdiff_t n = search.nDirection > 0 ? 0 : nLinks - 1;
    if (search.from) {
        n = static_cast<std::ptrdiff_t>(*search.from) + search.nDirection;
    }
    for (; n >= 0 && n < nLinks; n += search.nDirection) {
        const auto nLink = static_cast<std::size_t>(n);
        const auto place = PlaceOf(search.nPage, links[nLink]);
        if (!search.bOnScreen || (place && place->Y + place->Height > 0.0F)) {
            return nLink;
        }
    }
    return std::nullopt;
}

bool LinkFocus::IsPageWithin(std::int32_t nPage) {
    return nPage >= 0 && nPage < m_control.GetPageCount();
}

void LinkFocus::Take(Spot spot) {
    m_spot = std::move(spot);
    BringIntoSight();
    Changed();
}

void LinkFocus::Leave() {
    m_search.reset();
    if (std::exchange(m_spot, std::nullopt)) {
        Changed();
    }
}

// As if nobody had taken the key.
void LinkFocus::LeaveWindow(int nDirection) {
    Leave();
    if (!m_window.hasFocus()) {
        return;
    }
    m_bLeaving = true;
    QKeyEvent press(QEvent::KeyPress, nDirection > 0 ? Qt::Key_Tab : Qt::Key_Backtab,
                    nDirection > 0 ? Qt::NoModifier : Qt::ShiftModifier);
    QCoreApplication::sendEvent(&m_window, &press);
    m_bLeaving = false;
}

void LinkFocus::Changed() {
    m_control.UpdateViewer();
    LinkAccessible::Tell(*this, m_window);
    m_hands.fnChanged();
}

// --- places ----------------------------------------------------------------

const LinkFocus::Link* LinkFocus::Focused() const {
    return m_spot && m_window.hasFocus() ? &m_spot->Get() : nullptr;
}

QString LinkFocus::Text() const {
    const auto pDocument = m_links.Document();
    return Focused() != nullptr && pDocument ? TextOf(*Focused(), *pDocument) : QString();
}

std::optional<Rect> LinkFocus::PlaceOf(std::int32_t nPage, const Link& link) const {
    const auto& area = link.rcArea;
    const Rect rcPage(std::min(area.Left, area.Right), std::min(area.Bottom, area.Top),
                      std::abs(area.Right - area.Left), std::abs(area.Top - area.Bottom));
    try {
        if (m_control.GetPageScreenRect(nPage)) {
            return m_control.PageRectToDeviceRect(nPage, rcPage);
        }
    } catch (const Platform::Exception&) {
        // A page that cannot be brought back says so itself.
    }
    return std::nullopt;
}

QRect LinkFocus::Place() const {
    const auto place = m_spot ? PlaceOf(m_spot->nPage, m_spot->Get()) : std::nullopt;
    if (!place) {
        return {};
    }
    const double dbX = m_control.CompositionScaleX() / m_window.devicePixelRatioF();
    const double dbY = m_control.CompositionScaleY() / m_window.devicePixelRatioF();
    return QRectF(place->X * dbX, place->Y * dbY, place->Width * dbX, place->Height * dbY)
        .toAlignedRect();
}

bool LinkFocus::IsInSight(const Spot& spot) const {
    const auto place = PlaceOf(spot.nPage, spot.Get());
    const auto size = m_control.GetCanvasSize();
    return place && place->X < size.Width && place->X + place->Width > 0.0F &&
           place->Y < size.Height && place->Y + place->Height > 0.0F;
}

void LinkFocus::BringIntoSight() {
    if (!PlaceOf(m_spot->nPage, m_spot->Get())) {
        m_hands.fnGotoPage(m_spot->nPage);
    }
    const auto place = PlaceOf(m_spot->nPage, m_spot->Get());
    if (!place) {
        return;
    }
    const auto size = m_control.GetCanvasSize();
    const float fScaleX = m_control.CompositionScaleX();
    const float fScaleY = m_control.CompositionScaleY();
    const double dbMargin = kMargin * m_window.devicePixelRatioF();
    const double dbX =
        ScrollFor(place->X, place->X + place->Width, size.Width, dbMargin / fScaleX) * fScaleX;
    const double dbY =
        ScrollFor(place->Y, place->Y + place->Height, size.Height, dbMargin / fScaleY) * fScaleY;
    if (dbX != 0.0 || dbY != 0.0) {
        m_hands.fnScroll(dbX, dbY);
    }
}

void LinkFocus::Update() {
    if (m_spot && !IsInSight(*m_spot)) {
        Leave();
    }
}

void LinkFocus::Draw(const RenderCanvasEventArgs& args) {
    if (Focused() == nullptr || args.nPageIndex != m_spot->nPage) {
        return;
    }
    const auto place = PlaceOf(m_spot->nPage, m_spot->Get());
    if (!place) {
        return;
    }
    const auto fLine = static_cast<float>(std::max(1.0, std::round(m_window.devicePixelRatioF())));
    const float fX = 2.0F * fLine / m_control.CompositionScaleX();
    const float fY = 2.0F * fLine / m_control.CompositionScaleY();
    const Rect rc(place->X - fX, place->Y - fY, place->Width + 2.0F * fX,
                  place->Height + 2.0F * fY);
    args.Canvas->DrawRectWidth(rc, kAround, 4.0F * fLine);
    args.Canvas->DrawRectWidth(rc, kLine, 2.0F * fLine);
}

}
