#include "widget/places/PlaceFollower.h"

#include <cmath>
#include <utility>

#include "component/DocIdentity.h"
#include "settings/SavedView.h"
#include "viewers/core/Modes.h"
#include "widget/reload/FileJudge.h"

namespace velko::vkit {

using velko::common::vxbase::PointF;
using Windows::Foundation::Point;
using Windows::Foundation::PropertyValue;
using Windows::Foundation::Collections::PropertySet;

namespace {

constexpr const char* kPrefix = "Widget.Place.";
// Where the words stood on the screen, in device pixels.
constexpr const char* kScreenX = "Widget.Place.ScreenX";
constexpr const char* kScreenY = "Widget.Place.ScreenY";

constexpr double kNear = 2.0;  // points: less comes of a change of size
constexpr float kSame = 0.25F; // points

PointF StartOf(const PlaceSnippet& snippet) {
    return {static_cast<float>(snippet.dbX), static_cast<float>(snippet.dbY)};
}

// Device pixels.
Point OnScreen(PDFViewCtrl& control, std::int32_t nPage, PointF ptPage) {
    const Point pt = control.PagePointToDevicePoint(nPage, {ptPage.X, ptPage.Y});
    return {pt.X * control.CompositionScaleX(), pt.Y * control.CompositionScaleY()};
}

std::optional<Point> KeptOnScreen(const PropertySet& values) {
    if (!values.HasKey(kScreenX) || !values.HasKey(kScreenY) ||
        !values.Lookup(kScreenX).Is<double>() || !values.Lookup(kScreenY).Is<double>()) {
        return std::nullopt;
    }
    const double dbX = values.Lookup(kScreenX).Get<double>();
    const double dbY = values.Lookup(kScreenY).Get<double>();
    return std::isfinite(dbX + dbY)
               ? std::optional(Point{static_cast<float>(dbX), static_cast<float>(dbY)})
               : std::nullopt;
}

SoughtPlace SoughtIn(const KeptView& kept) {
    const PropertySet& values = *kept.pValues;
    return {PDFViewerState::ReadFrom(values, WasSavedWide(values)).CurrentPageIndex,
            ReadSnippet(values, kPrefix)};
}

bool HasMoved(const FoundPlace& found, std::int32_t nPage) {
    return found.nPage != nPage || std::abs(found.ptNow.X - found.ptThen.X) > kSame ||
           std::abs(found.ptNow.Y - found.ptThen.Y) > kSame;
}

}

PlaceFollower::PlaceFollower(std::shared_ptr<PDFViewCtrl> pControl, PageTexts& texts)
    : m_pControl(std::move(pControl)), m_taker(*m_pControl, texts) {}

void PlaceFollower::Forget() {
    EndPreparing(nullptr);
    m_taker.Forget();
}

void PlaceFollower::WriteWords(PropertySet& values, std::int32_t nPage) const {
    const PlaceSnippet snippet = m_taker.Now(nPage);
    WriteSnippet(values, kPrefix, snippet);
    if (!snippet.IsEmpty() && m_pControl->GetPageLayoutMode() != LayoutMode::kReflow) {
        const Point pt = OnScreen(*m_pControl, nPage, StartOf(snippet));
        values.Insert(kScreenX, PropertyValue::Create(static_cast<double>(pt.X)));
        values.Insert(kScreenY, PropertyValue::Create(static_cast<double>(pt.Y)));
    }
}

// Half of the words stood as far from all of them as it would on the page of now.
Point PlaceFollower::WayTo(const PropertySet& values, const FoundPlace& found,
                           double dbGrown) const {
    const auto ptKept = KeptOnScreen(values);
    if (!ptKept) {
        return {};
    }
    const auto fnAt = [&](PointF pt) { return OnScreen(*m_pControl, found.nPage, pt); };
    const Point ptStart = fnAt(StartOf(ReadSnippet(values, kPrefix)));
    const Point ptThen = fnAt(found.ptThen);
    const Point ptNow = fnAt(found.ptNow);
    const auto fGrown = static_cast<float>(dbGrown);
    return {ptNow.X - (ptKept->X * fGrown + ptThen.X - ptStart.X),
            ptNow.Y - (ptKept->Y * fGrown + ptThen.Y - ptStart.Y)};
}

// --- a document that was opened --------------------------------------------

void PlaceFollower::Expect(const KeptView& kept, const Windows::Storage::FileVersion& version) {
    const auto pFile = m_pControl->GetDocumentFile();
    if (pFile && !SoughtIn(kept).snippet.IsEmpty() &&
        ReadIdentity(*kept.pValues).version != version) {
        m_awaited = KeptView{pFile->Path(), kept.pValues};
        m_shownAt = ViewKeeper::Remember(*m_pControl);
    }
}

void PlaceFollower::Look(std::function<void(const FoundPlace& found)> fnFound) {
    m_bLooking = true;
    if (!m_shownAt) {
        m_shownAt = ViewKeeper::Remember(*m_pControl);
    }
    const SoughtPlace sought = SoughtIn(*m_awaited);
    m_search.Begin(m_pControl->GetPDFDoc(), sought,
                   [this, fnFound = std::move(fnFound),
                    nPage = sought.nPage](const std::optional<FoundPlace>& found) {
                       if (found && HasMoved(*found, nPage)) {
                           fnFound(*found);
                       }
                       EndLooking();
                   });
}

const KeptView* PlaceFollower::Awaited(bool bFits) const {
    if (!m_awaited) {
        return nullptr;
    }
    const auto now = m_shownAt ? ViewKeeper::Remember(*m_pControl) : std::nullopt;
    const bool bLeft =
        now && (!now->IsNear(*m_shownAt, kNear) || (!bFits && now->Zoom() != m_shownAt->Zoom()));
    return bLeft ? nullptr : &*m_awaited;
}

void PlaceFollower::EndLooking() {
    m_search.End();
    m_awaited.reset();
    m_shownAt.reset();
    m_bLooking = false;
}

// --- a document that is shown anew -----------------------------------------

void PlaceFollower::Prepare(const JudgedFile& judged, Platform::SecretText password,
                            std::function<std::optional<KeptView>()> fnPlace,
                            std::function<void()> fnDone) {
    m_sought.reset();
    m_found.reset();
    m_taker.WhenKnown([this, judged, password = std::move(password), fnPlace = std::move(fnPlace),
                       fnDone = std::move(fnDone), nPreparation = ++m_nPreparation] {
        if (m_nPreparation != nPreparation) {
            return;
        }
        m_sought = fnPlace();
        const SoughtPlace sought = m_sought ? SoughtIn(*m_sought) : SoughtPlace();
        if (sought.snippet.IsEmpty()) {
            fnDone();
            return;
        }
        m_search.BeginIn(judged, password, sought,
                         [this, fnDone](const std::optional<FoundPlace>& found) {
                             m_found = found;
                             fnDone();
                         });
    });
}

void PlaceFollower::EndPreparing(const KeptView* pPlace) {
    ++m_nPreparation;
    EndLooking();
    if (pPlace == nullptr || !m_sought || !IsSamePlace(*pPlace, *m_sought)) {
        m_found.reset();
    }
}

std::int32_t PlaceFollower::PagesMoved() const {
    return m_found ? m_found->nPage - SoughtIn(*m_sought).nPage : 0;
}

}
