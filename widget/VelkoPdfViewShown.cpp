// What the view shows: the facts that hosts are told, changes of size, and the
// place that a document is brought back to.
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <utility>

#include "component/KeptView.h"
#include "control/PDFViewerManager.h"
#include "platform/qt/QtElementWindow.h"
#include "settings/SavedView.h"
#include "widget/LinkFollower.h"
#include "widget/PageInk.h"
#include "widget/VelkoPdfView.h"

namespace velko::vkit {

using Windows::Foundation::Point;
using Windows::Foundation::PropertyValue;
using Windows::Foundation::Collections::PropertySet;

namespace {

constexpr int kLongestHoldMs = 300; // of the old frame while the new one renders

// How the zoom follows the window, besides what the control keeps itself.
constexpr const char* kFitKey = "Widget.Fit";

template <class T>
T ValueOr(const PropertySet& values, const char* szKey, T fallback) {
    return values.HasKey(szKey) && values.Lookup(szKey).Is<T>() ? values.Lookup(szKey).Get<T>()
                                                                : fallback;
}

QColor ToQColor(Windows::UI::Color color) {
    return QColor::fromRgb(color.ToArgb());
}

}

// --- facts -----------------------------------------------------------------

// The control tells of page changes only around some operations, so its
// numbers are read after each frame.
void VelkoPdfView::QueueRefresh() {
    if (!std::exchange(m_bRefreshQueued, true)) {
        QMetaObject::invokeMethod(
            this,
            [this] {
                m_bRefreshQueued = false;
                Refresh();
            },
            Qt::QueuedConnection);
    }
}

VelkoPdfView::Facts VelkoPdfView::ReadFacts() {
    Facts facts;
    if (!HasDocument()) {
        facts.colors = StoredPageColors();
        facts.bNight = facts.colors == NightPageColors();
        return facts;
    }
    facts.nPageCount = m_pControl->GetPageCount();
    facts.nPage = m_pControl->GetCurrentPageIndex();
    facts.dbZoom = m_pControl->GetScale();
    facts.eFit = m_eFit;
    facts.nRotate = m_pControl->GetRotate();
    facts.eLayout = static_cast<Layout>(m_pControl->GetPageLayoutMode());
    facts.colors = {ToQColor(m_pControl->PageBgColor()), ToQColor(m_pControl->PageFgColor())};
    facts.bNight = m_pControl->NightMode();
    facts.bBack = m_history.CanGoBack();
    facts.bForward = m_history.CanGoForward();
    return facts;
}

void VelkoPdfView::Refresh() {
    Guard([this] {
        if (m_pWindow->IsFrameHeld() && IsSharp()) {
            m_pWindow->ReleaseFrame();
        }
        NoteFitLeft();
        m_pLinks->Update();
        const Facts facts = ReadFacts();
        const Facts before = std::exchange(m_facts, facts);
        TellChanges(before);
    });
}

void VelkoPdfView::TellChanges(const Facts& before) {
    const Facts now = m_facts; // a host's handler may change them
    if (now == before) {
        return;
    }
    if (now.nPageCount != before.nPageCount) {
        emit PageCountChanged(now.nPageCount);
    }
    if (now.nPage != before.nPage) {
        emit PageChanged(now.nPage);
    }
    if (now.dbZoom != before.dbZoom) {
        emit ZoomChanged(now.dbZoom);
    }
    emit ViewChanged();
}

// A gesture that zooms leaves the fit. A page that is turned to may be fitted at
// another scale than the one before.
void VelkoPdfView::NoteFitLeft() {
    if (!HasDocument() || m_eFit == Fit::None) {
        return;
    }
    const float fScale = m_pControl->GetScale();
    const bool bTurned = m_pControl->GetPageLayoutMode() != std::int32_t(Layout::Continuous) &&
                         m_pControl->GetCurrentPageIndex() != m_facts.nPage;
    if (bTurned) {
        m_fFitScale = fScale;
    } else if (fScale != m_fFitScale) {
        m_eFit = Fit::None;
    }
}

void VelkoPdfView::OnPainted() {
    m_bSeen = m_bSeen || HasInk();
    emit Painted();
}

bool VelkoPdfView::IsSharp() const {
    return InkOf(*m_pControl).bAll;
}

bool VelkoPdfView::HasInk() const {
    return !m_pWindow->IsFrameHeld() && InkOf(*m_pControl).bSome;
}

// Also before there is a page, so that nothing flashes up where it will be.
void VelkoPdfView::ShowAround() {
    const PageColors colors =
        m_pControl->PageViewMgr() && m_pControl->PageViewMgr()->GetViewer()
            ? PageColors{ToQColor(m_pControl->PageBgColor()), ToQColor(m_pControl->PageFgColor())}
            : StoredPageColors();
    ShowTonesOf(colors);
}

// A page that is blank yet shows in the colour that it will have.
void VelkoPdfView::ShowTonesOf(const PageColors& colors) {
    m_pWindow->SetTones({colors.IsDark() ? colors.Around() : QColor(), colors.background});
}

// --- changes of size -------------------------------------------------------

void VelkoPdfView::resizeEvent(QResizeEvent* /*pEvent*/) {
    m_pWindow->setGeometry(rect());
}

void VelkoPdfView::ArrangeBeforeShow() {
    m_pWindow->setGeometry(rect());
    m_pWindow->Arrange();
}

void VelkoPdfView::Hold() {
    if (!m_pWindow->IsFrameHeld()) {
        m_pWindow->HoldFrame();
        QTimer::singleShot(kLongestHoldMs, this, [this] { m_pWindow->ReleaseFrame(); });
    }
}

// Before the reader has seen a page there is nothing to keep, and the first
// layout at the new size is the better one.
void VelkoPdfView::BeforeArrange() {
    if (!HasDocument() || !m_bSeen) {
        return;
    }
    m_keeper = ViewKeeper::Remember(*m_pControl);
    if (m_keeper) {
        Hold();
    }
}

void VelkoPdfView::AfterArrange() {
    if (const auto keeper = std::exchange(m_keeper, std::nullopt)) {
        keeper->Restore(*m_pControl, ZoomFor(*keeper));
        m_fFitScale = m_pControl->GetScale();
    } else if (HasDocument() && !m_bSeen) {
        ShowKeptPlace();
    }
    QueueRefresh();
}

// --- the place -------------------------------------------------------------

// Asking the viewer of single pages for its place ends a turn, which is not to
// happen under the reader's finger.
std::optional<KeptView> VelkoPdfView::PlaceNow(bool bLeft) {
    const bool bTurning =
        LayoutMode() == Layout::SinglePage && m_pControl->GetVisiblePages().size() > 1;
    if (!HasDocument() || (bTurning && !bLeft)) {
        return std::nullopt;
    }
    NoteFitLeft();
    PropertySet values;
    values.Insert(kFitKey, PropertyValue::Create(static_cast<std::int32_t>(m_eFit)));
    return TakeView(*m_pControl, values);
}

void VelkoPdfView::ShowKeptPlace() {
    EnsureLayout();
    const auto pFile = m_pPlace ? m_pControl->GetDocumentFile() : nullptr;
    if (const auto kept = pFile ? FindView(pFile->Path()) : std::nullopt) {
        ShowPlace(*kept);
    }
    m_fFitScale = m_pControl->GetScale();
}

// A layout that was stored by another program may be one that this one has not.
void VelkoPdfView::EnsureLayout() {
    const auto pManager = m_pControl->PageViewMgr();
    if (pManager && !pManager->GetViewer()) {
        m_pControl->SetPageLayoutMode(std::int32_t(Layout::Continuous));
    }
}

// Zoom and offsets mean something only on a screen that lies the same way.
void VelkoPdfView::ShowPlace(const KeptView& kept) {
    const PropertySet& values = *kept.pValues;
    const auto size = m_pControl->GetCanvasSize();
    const bool bWide = size.Width > size.Height;
    const bool bSameWay = WasSavedWide(values) == bWide;
    const PDFViewerState state = PDFViewerState::ReadFrom(values, bWide);
    const int nPage = state.CurrentPageIndex;
    const double dbScale = state.Scale;
    if (m_pControl->GetRotate() != state.Rotate) {
        m_pControl->RotateViewer(state.Rotate);
    }
    if (nPage < 0 || nPage >= m_pControl->GetPageCount()) {
        return; // the document has become shorter
    }
    if (!bSameWay || !(dbScale > 0.0) || !std::isfinite(dbScale)) {
        m_pControl->GotoPage(nPage);
        return;
    }
    m_eFit = static_cast<Fit>(std::clamp(ValueOr<std::int32_t>(values, kFitKey, 0), 0, 3));
    ApplyZoom(m_eFit == Fit::None ? dbScale : FitZoom(m_eFit));
    const double dbGrown = m_pControl->GetScale() / dbScale;
    PutPage(nPage, state.OffsetX * dbGrown, state.OffsetY * dbGrown);
}

// Brings a page's top left to a place of the screen, as far as the document
// reaches.
void VelkoPdfView::PutPage(int nPage, double dbLeft, double dbTop) {
    m_pControl->GotoPage(nPage);
    const auto pViewer = m_pControl->PageViewMgr()->GetViewer();
    const auto pPlace = pViewer ? pViewer->GetPageScreenOffset(nPage) : nullptr;
    if (pPlace && std::isfinite(dbLeft) && std::isfinite(dbTop)) {
        ScrollAndSettle(*m_pControl, pPlace->dbOffsetY - dbTop, pPlace->dbOffsetX - dbLeft);
    }
}

}
