// What the view shows: the facts that hosts are told, changes of size, and the
// place that a document is brought back to.
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <utility>

#include "component/DocIdentity.h"
#include "component/KeptView.h"
#include "document/engine/PDFDoc.h"
#include "platform/qt/QtElementWindow.h"
#include "settings/SavedView.h"
#include "viewers/core/Modes.h"
#include "widget/PlaceKeeper.h"
#include "widget/PointerShape.h"
#include "widget/VelkoPdfView.h"
#include "widget/edit/ViewEdits.h"
#include "widget/places/MovedPlaces.h"
#include "widget/text/PageTexts.h"
#include "widget/text/ViewSelection.h"

namespace velko::vkit {

using Windows::Foundation::PropertyValue;
using Windows::Foundation::Collections::PropertySet;

namespace {

constexpr double kLeastFit = 0.1;

// How the zoom follows the window, besides what the control keeps itself.
constexpr const char* kFitKey = "Widget.Fit";

// How much of the page's text, set anew, stood above the window's top.
constexpr const char* kShareKey = "Widget.TextShare";

template <class T>
T ValueOr(const PropertySet& values, const char* szKey, T fallback) {
    return values.HasKey(szKey) && values.Lookup(szKey).Is<T>() ? values.Lookup(szKey).Get<T>()
                                                                : fallback;
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
    facts.eScanColors = m_eScanColors;
    if (!HasDocument()) {
        facts.colors = StoredPageColors();
        return facts;
    }
    facts.nPageCount = m_pControl->GetPageCount();
    facts.nPage = PageInSight();
    facts.dbZoom = m_pControl->GetScale();
    facts.eFit = m_zoom.HasFit() ? static_cast<Fit>(m_zoom.FitMode()) : Fit::None;
    facts.nRotate = m_pControl->GetRotate();
    facts.eLayout = static_cast<Layout>(m_pControl->GetPageLayoutMode());
    facts.colors = {ToQColor(m_pControl->PageBgColor()), ToQColor(m_pControl->PageFgColor())};
    facts.bTextPictures = m_reading.ShowsPictures();
    facts.bShowsSomething = !m_pControl->GetVisiblePages().empty();
    facts.bBack = m_history.CanGoBack();
    facts.bForward = m_history.CanGoForward();
    return facts;
}

// While a page is turned the one of which more is in sight: the release would stay
// with that. The one before where nothing of the text shows.
int VelkoPdfView::PageInSight() {
    const auto pages = m_pControl->GetVisiblePages();
    const auto unseen = pages.empty() ? m_reading.Place() : std::nullopt;
    if (unseen) {
        return unseen->Page();
    }
    const auto place = m_steps.ShowsSinglePage() && pages.size() == 2
                           ? m_pControl->GetPageScreenRect(pages.back())
                           : std::nullopt;
    if (!place) {
        return m_pControl->GetCurrentPageIndex();
    }
    const double dbScreen = m_pControl->GetCanvasSize().Width * m_pControl->CompositionScaleX();
    return place->dbOffsetX < dbScreen / 2.0 ? pages.back() : pages.front();
}

bool VelkoPdfView::Refresh() {
    if (m_bLost) {
        return true; // what is told holds of the picture that stays
    }
    const Facts before = m_facts;
    Guard([this] {
        if (m_pWindow->IsFrameHeld() && IsSharp()) {
            m_hold.stop();
            m_pWindow->ReleaseFrame();
        }
        FollowFit();
        m_reading.NoteScale();
        UpdateLinks();
        m_pTexts->IsSameDocument();
        m_pSelection->Update();
        m_pEdits->Update();
        if (m_pPlace) {
            m_pPlace->Changed();
        }
        m_facts = ReadFacts();
    });
    if (m_eState == State::Shown && !HasDocument() && m_queue.IsIdle()) {
        m_path = {}; // the host has closed it through the control
        return SetState(State::Empty) && TellChanges(before);
    }
    return TellChanges(before);
}

bool VelkoPdfView::TellChanges(const Facts& before) {
    const QPointer<VelkoPdfView> pThis(this);
    const Facts now = m_facts; // a host's handler may change them
    if (now == before) {
        return true;
    }
    if (now.nPageCount != before.nPageCount) {
        emit PageCountChanged(now.nPageCount);
    }
    if (pThis && now.nPage != before.nPage) {
        emit PageChanged(now.nPage);
    }
    if (pThis && now.dbZoom != before.dbZoom) {
        emit ZoomChanged(now.dbZoom);
    }
    if (pThis) {
        emit ViewChanged();
    }
    return !pThis.isNull();
}

void VelkoPdfView::FollowFit() {
    if (HasDocument()) {
        m_zoom.FollowFit(m_zoom.NoteFitLeft());
    }
}

void VelkoPdfView::OnPainted() {
    m_bSeen = m_bSeen || HasInk();
    emit Painted();
}

bool VelkoPdfView::IsRepaired() const {
    const auto pDamage = std::dynamic_pointer_cast<velko::pdf::IRepair>(m_pControl->GetPDFDoc());
    return pDamage && pDamage->WasRepaired();
}

bool VelkoPdfView::IsSharp() const {
    return m_pControl->IsSharp();
}

bool VelkoPdfView::HasInk() const {
    return !m_pWindow->IsFrameHeld() && m_pControl->HasInk();
}

// Also before there is a page, so that nothing flashes up where it will be.
void VelkoPdfView::ShowAround() {
    const PageColors colors =
        m_pControl->HasViewer()
            ? PageColors{ToQColor(m_pControl->PageBgColor()), ToQColor(m_pControl->PageFgColor())}
            : StoredPageColors();
    ShowAround(colors);
}

void VelkoPdfView::ShowAround(const PageColors& colors) {
    const QColor around = m_surround.value_or(colors.Around(m_bDarkSurround));
    m_pControl->SetSurround(ToColor(around));
    m_pWindow->SetBackground(around);
}

void VelkoPdfView::SetDarkSurround(bool bDark) {
    if (std::exchange(m_bDarkSurround, bDark) != bDark) {
        RedrawAround();
    }
}

void VelkoPdfView::SetSurround(const std::optional<QColor>& color) {
    m_surround = color;
    RedrawAround();
}

void VelkoPdfView::RedrawAround() {
    ShowAround();
    if (HasDocument()) {
        Guard([this] { m_pControl->UpdateViewer(); });
    }
}

void VelkoPdfView::HidePointer(bool bHide) {
    m_pPointer->Set(PointerShape::Hidden, bHide);
}

// --- changes of size -------------------------------------------------------

void VelkoPdfView::resizeEvent(QResizeEvent* /*pEvent*/) {
    m_pWindow->setGeometry(rect());
}

void VelkoPdfView::ResizeAtTheZoom(const std::function<void()>& fnResize) {
    m_bKeepsZoom = true;
    fnResize();
    m_bKeepsZoom = false;
}

void VelkoPdfView::ArrangeBeforeShow() {
    m_pWindow->setGeometry(rect());
    m_pWindow->Arrange();
}

void VelkoPdfView::Hold() {
    HoldFor(kLongestHoldMs);
}

// Holds that follow each other are one, which lasts no longer than the longest of them.
void VelkoPdfView::HoldFor(int nMs) {
    if (m_bLost) {
        return; // until there is a document again
    }
    if (!m_hold.isActive() || nMs > m_hold.interval()) {
        m_pWindow->HoldFrame();
        m_hold.start(nMs);
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
        keeper->Restore(*m_pControl, m_bKeepsZoom ? keeper->Zoom() : m_zoom.FitOr(keeper->Zoom()));
        m_zoom.NoteFit();
    } else if (HasDocument() && !m_bSeen) {
        ShowKeptPlace();
    }
    QueueRefresh();
}

// --- the place -------------------------------------------------------------

// Of the page that counts as the one being read; the topmost may be the one before,
// of which a hair's breadth is left. Asking the viewer of single pages for its place
// ends a turn, which is not to happen under the reader's finger.
std::optional<KeptView> VelkoPdfView::PlaceNow(bool bLeft) {
    const bool bTurning =
        LayoutMode() == Layout::SinglePage && m_pControl->GetVisiblePages().size() > 1;
    if (!HasDocument() || m_bPlaceHeld || (bTurning && !bLeft)) {
        return std::nullopt;
    }
    m_zoom.NoteFitLeft();
    PropertySet values;
    values.Insert(kFitKey, PropertyValue::Create(m_zoom.FitMode()));
    if (m_pMoved) {
        WriteIdentity(values, m_pMoved->Identity());
    }
    auto view = TakeView(*m_pControl, values);
    const int nPage = m_pControl->GetCurrentPageIndex();
    if (const auto place = m_pControl->GetPageScreenRect(nPage); place && view) {
        auto pValues = std::make_shared<PropertySet>(*view->pValues);
        WriteSavedPlace(*pValues, nPage, place->dbOffsetX, place->dbOffsetY);
        if (IsReading()) {
            pValues->Insert(kShareKey,
                            PropertyValue::Create(-place->dbOffsetY / std::max(1, place->nHeight)));
        }
        view->pValues = std::move(pValues);
    }
    return view;
}

void VelkoPdfView::ShowKeptPlace() {
    m_reading.Forget();
    if (m_pMoved) {
        m_pMoved->Begin();
    }
    m_bPlaceKnown = true;
    if ((m_return || m_bReloading) && m_before) {
        ShowLayoutOf(*m_before);
        ShowPlace(*m_before);
        m_zoom.NoteFit();
        return;
    }
    const auto kept = FindPlace();
    m_bPlaceKnown = kept.has_value();
    if (kept) {
        ShowPlace(*kept);
    } else if (m_reading.IsOn()) {
        m_zoom.ZoomTo(m_reading.FirstScale(devicePixelRatioF()));
    } else if (m_zoom.FitMode() == ZoomMode::kFitWidth || m_zoom.FitOr(1.0) < kLeastFit) {
        m_zoom.SetFitMode(ZoomMode::kFitWidth); // a whole page would be a mere strip
        m_zoom.ZoomToFit();
    }
    m_zoom.NoteFit();
}

// By the file's path, as the control has found the layout, else as the same file.
std::optional<KeptView> VelkoPdfView::FindPlace() {
    const auto pFile = m_pPlace ? m_pControl->GetDocumentFile() : nullptr;
    if (auto kept = pFile ? FindView(pFile->Path()) : std::nullopt) {
        return kept;
    }
    auto moved = pFile ? m_pMoved->FindAtOnce() : std::nullopt;
    if (moved) {
        ShowLayoutOf(*moved);
    }
    return moved;
}

// It comes late: a reader who has gone on is left alone.
void VelkoPdfView::OnPlaceFound(const KeptView& kept) {
    const bool bAtStart = m_eState == State::Shown && !m_history.CanGoBack() && m_zoom.HasFit() &&
                          CurrentPage() == 0 && Rotation() == 0;
    const auto place = bAtStart ? m_pControl->GetPageScreenRect(0) : std::nullopt;
    if (place && place->dbOffsetY >= 0.0) {
        Command([&] {
            Hold();
            ShowLayoutOf(kept);
            ShowPlace(kept);
            m_zoom.NoteFit();
        });
    }
}

// The control takes it from what is stored, which is nothing where no places are kept.
void VelkoPdfView::ShowLayoutOf(const KeptView& kept) {
    const std::int32_t nMode =
        PDFViewerState::ReadFrom(*kept.pValues, WasSavedWide(*kept.pValues)).ViewState;
    if (nMode != LayoutMode::kNone && nMode != m_pControl->GetPageLayoutMode()) {
        m_pControl->SetPageLayoutMode(nMode);
    }
}

// Zoom and offsets mean something only on a screen that lies the same way.
void VelkoPdfView::ShowPlace(const KeptView& kept) {
    const PropertySet& values = *kept.pValues;
    const auto size = m_pControl->GetCanvasSize();
    const bool bWide = size.Width > size.Height;
    const bool bSameWay = WasSavedWide(values) == bWide;
    const PDFViewerState state = PDFViewerState::ReadFrom(values, bWide);
    const int nPage = std::min(state.CurrentPageIndex, m_pControl->GetPageCount() - 1);
    const bool bShorter = nPage < state.CurrentPageIndex;
    const double dbScale = state.Scale;
    if (m_reading.IsOn()) {
        ShowTextPlace(values, nPage);
        return;
    }
    if (m_pControl->GetRotate() != state.Rotate) {
        m_pControl->RotateViewer(state.Rotate);
    }
    if (nPage < 0) {
        m_zoom.ZoomToFit();
        return;
    }
    if (!bSameWay || !(dbScale > 0.0) || !std::isfinite(dbScale)) {
        m_pControl->GotoPage(nPage);
        return;
    }
    m_zoom.SetFitMode(std::clamp(ValueOr<std::int32_t>(values, kFitKey, 0), 0, 3));
    m_zoom.ZoomTo(m_zoom.FitOr(dbScale));
    const double dbGrown = m_pControl->GetScale() / dbScale;
    PutPage(nPage, state.OffsetX * dbGrown, bShorter ? 0.0 : state.OffsetY * dbGrown);
}

// The fit waits for the pages.
void VelkoPdfView::ShowTextPlace(const PropertySet& values, int nPage) {
    const PDFViewerState state = PDFViewerState::ReadFrom(values, WasSavedWide(values));
    m_zoom.SetFitMode(std::clamp(ValueOr<std::int32_t>(values, kFitKey, 0), 0, 3));
    m_reading.ShowPictures(state.IsReflowShowPicture);
    m_zoom.ZoomTo(state.ReflowScale);
    if (nPage < 0 || nPage >= m_pControl->GetPageCount()) {
        return; // the document has become shorter
    }
    m_pControl->GotoPage(nPage);
    if (const auto place = m_pControl->GetPageScreenRect(nPage)) {
        const double dbShare = ValueOr<double>(values, kShareKey, 0.0);
        const double dbTop = std::isfinite(dbShare) ? dbShare * place->nHeight : 0.0;
        ScrollAndSettle(*m_pControl, place->dbOffsetY + dbTop, 0.0);
    }
}

// Brings a page's top left to a place of the screen, as far as the document
// reaches.
void VelkoPdfView::PutPage(int nPage, double dbLeft, double dbTop) {
    m_pControl->GotoPage(nPage);
    const auto place = m_pControl->GetPageScreenRect(nPage);
    if (place && std::isfinite(dbLeft) && std::isfinite(dbTop)) {
        ScrollAndSettle(*m_pControl, place->dbOffsetY - dbTop, place->dbOffsetX - dbLeft);
    }
}

}
