// The place that a document is brought back to.
#include <algorithm>
#include <cmath>
#include <utility>

#include "component/DocIdentity.h"
#include "component/KeptView.h"
#include "settings/SavedView.h"
#include "viewers/core/Modes.h"
#include "widget/PlaceKeeper.h"
#include "widget/VelkoPdfView.h"
#include "widget/places/MovedPlaces.h"
#include "widget/places/PlaceFollower.h"

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
    if (const KeptView* const pAwaited = m_pFollower->Awaited(m_zoom.HasFit())) {
        return *pAwaited;
    }
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
        m_pFollower->WriteWords(*pValues, nPage);
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
        const auto& found = m_pFollower->Found();
        ShowPlace(*m_before, m_bReloading && found ? &*found : nullptr);
        m_zoom.NoteFit();
        return;
    }
    m_pFollower->Forget();
    const auto kept = FindPlace();
    m_bPlaceKnown = kept.has_value();
    if (kept) {
        ShowPlace(*kept, nullptr);
    } else if (m_reading.IsOn()) {
        m_zoom.ZoomTo(m_reading.FirstScale(devicePixelRatioF()));
    } else if (m_zoom.FitMode() == ZoomMode::kFitWidth || m_zoom.FitOr(1.0) < kLeastFit) {
        m_zoom.SetFitMode(ZoomMode::kFitWidth); // a whole page would be a mere strip
        m_zoom.ZoomToFit();
    }
    m_zoom.NoteFit();
    if (kept) {
        m_pFollower->Expect(*kept, m_pMoved->Identity().version);
    }
}

// Once the pages stand, so that nothing comes between the start and them.
void VelkoPdfView::LookForPlace() {
    if (m_eState == State::Shown && m_pFollower->IsExpecting() && HasInk()) {
        m_pFollower->Look([this](const FoundPlace& found) { OnWordsFound(found); });
    }
}

// It comes late: a reader who has gone on is left alone.
void VelkoPdfView::OnWordsFound(const FoundPlace& found) {
    const KeptView* const pAwaited = m_pFollower->Awaited(m_zoom.HasFit());
    if (pAwaited != nullptr && !IsInTheMiddle() && !m_history.CanGoBack()) {
        Command([&] {
            Hold();
            ShowPlace(*pAwaited, &found);
            m_zoom.NoteFit();
        });
    }
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
            ShowPlace(kept, nullptr);
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

// Zoom and offsets mean something only on a screen that lies the same way. What was found
// of the place in another version of the document comes to where it stood.
void VelkoPdfView::ShowPlace(const KeptView& kept, const FoundPlace* pFound) {
    const PropertySet& values = *kept.pValues;
    const auto size = m_pControl->GetCanvasSize();
    const bool bWide = size.Width > size.Height;
    const bool bSameWay = WasSavedWide(values) == bWide;
    const PDFViewerState state = PDFViewerState::ReadFrom(values, bWide);
    const int nKept = pFound != nullptr ? pFound->nPage : state.CurrentPageIndex;
    const int nPage = std::min(nKept, m_pControl->GetPageCount() - 1);
    const bool bShorter = nPage < nKept;
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
    if (pFound != nullptr) {
        const auto way = m_pFollower->WayTo(values, *pFound, dbGrown);
        const bool bTurned = m_pControl->GetRotate() % 2 != 0; // lines run down the screen
        ScrollAndSettle(*m_pControl, bTurned ? 0.0 : way.Y, bTurned ? way.X : 0.0);
    }
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
