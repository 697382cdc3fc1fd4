#include "widget/search/ViewSearch.h"

#include <algorithm>
#include <utility>

#include "control/PDFViewCtrl.h"
#include "platform/foundation/Exception.h"
#include "platform/qt/QtElementWindow.h"
#include "widget/PageColors.h"

namespace velko::vkit {

using velko::common::vxbase::RectF;
using velko::pdf::PageText;
using velko::pdf::TextQuad;

namespace {

constexpr std::size_t kMostMarkedPages = 16;
constexpr std::int32_t kMostMarked = 4'000; // hits on a page; more are one stain

RectF BoxOf(const std::vector<TextQuad>& quads) {
    RectF rc{};
    bool bFirst = true;
    for (const TextQuad& quad : quads) {
        for (const auto pt :
             {quad.ptTopLeft, quad.ptTopRight, quad.ptBottomLeft, quad.ptBottomRight}) {
            rc = bFirst ? RectF{pt.X, pt.Y, pt.X, pt.Y}
                        : RectF{std::min(rc.Left, pt.X), std::min(rc.Bottom, pt.Y),
                                std::max(rc.Right, pt.X), std::max(rc.Top, pt.Y)};
            bFirst = false;
        }
    }
    return rc;
}

// How far what lies between the two goes to lie within a length, with some room around.
double WayInto(double dbLength, double dbRoom, double dbStart, double dbEnd, double dbTarget) {
    const double dbAround = std::max(0.0, std::min(dbRoom, (dbLength - (dbEnd - dbStart)) / 2.0));
    const bool bInSight = dbStart >= dbAround && dbEnd <= dbLength - dbAround;
    return bInSight ? 0.0
                    : dbStart - std::max(dbAround,
                                         std::min(dbTarget, dbLength - dbEnd + dbStart - dbAround));
}

}

ViewSearch::ViewSearch(Parts parts)
    : m_parts(std::move(parts)), m_places(*m_parts.pControl, m_parts.window) {
    connect(&m_search, &DocSearch::FirstFound, this, &ViewSearch::OnFirst);
    connect(&m_search, &DocSearch::Progressed, this, &ViewSearch::OnProgressed);
    connect(&m_search, &DocSearch::Found, this, &ViewSearch::Redraw);
    connect(&m_parts.texts, &PageTexts::Read, this, &ViewSearch::OnTextRead);
    m_openToken = m_parts.pControl->PageLayoutModeChangedEvent.add(
        [this](const auto&, const auto&) { OnDocument(true); });
    m_closeToken = m_parts.pControl->CloseDocEvent.add(
        [this](const auto&, const auto&) { OnDocument(false); });
}

ViewSearch::~ViewSearch() {
    m_parts.pControl->PageLayoutModeChangedEvent.remove(m_openToken);
    m_parts.pControl->CloseDocEvent.remove(m_closeToken);
}

// --- what is searched for ----------------------------------------------------

void ViewSearch::Find(const QString& strText, const SearchOptions& options) {
    if (strText == m_strText && options == m_options) {
        return;
    }
    m_strText = strText;
    m_options = options;
    m_bShowFirst = true;
    const auto hit = m_current ? m_search.At(*m_current) : std::nullopt;
    Begin(hit ? SearchStart{m_current->nPage, {}, hit->nFirst} : StartFromSight());
}

void ViewSearch::Begin(const SearchStart& start) {
    m_step.reset();
    m_bShowWaits = false;
    m_current.reset();
    m_marks.clear();
    m_search.Find(m_parts.pControl->GetPDFDoc(), SearchPattern(m_strText, m_options), start);
    Redraw();
    emit Changed();
}

void ViewSearch::End() {
    m_strText.clear();
    m_before.reset();
    m_bHasLeft = false;
    Begin({});
    m_search.Forget();
    m_pOverlay.reset();
}

// What lies above the window's top of the first page is behind the reader.
SearchStart ViewSearch::StartFromSight() const {
    PDFViewCtrl& control = *m_parts.pControl;
    const auto pages = control.GetVisiblePages();
    SearchStart start;
    start.nPage = pages.empty() ? std::max(0, control.GetCurrentPageIndex()) : pages.front();
    try {
        if (control.GetPageScreenRect(start.nPage)) {
            const auto size = control.GetCanvasSize();
            const auto rc =
                control.DeviceRectToPageRect(start.nPage, {0.0F, 0.0F, size.Width, size.Height});
            start.rcSeen = RectF{rc.X, rc.Y, rc.X + rc.Width, rc.Y + rc.Height};
        }
    } catch (const Platform::Exception&) {
        // The page alone says where the reader is.
    }
    return start;
}

// A document that comes is searched once its pages are laid out.
void ViewSearch::OnDocument(bool bShown) {
    if (m_strText.isEmpty()) {
        return;
    }
    if (!bShown) {
        m_bShowFirst = false;
        const auto hit = m_current ? m_search.At(*m_current) : std::nullopt;
        if (hit) {
            m_before = SearchStart{m_current->nPage, {}, hit->nFirst};
        }
        m_step.reset();
        m_current.reset();
        m_bShowWaits = false;
        m_marks.clear();
        m_search.Forget();
        emit Changed();
    } else if (m_search.PageCount() == 0) {
        Begin(m_before.value_or(StartFromSight()));
    }
}

// --- from hit to hit ---------------------------------------------------------

void ViewSearch::OnFirst(HitPlace place) {
    MakeCurrent(place);
    if (std::exchange(m_bShowFirst, false)) {
        ShowCurrent();
    }
}

void ViewSearch::OnProgressed() {
    TakeStep();
    emit Changed();
}

void ViewSearch::Step(bool bBack) {
    if (m_current) {
        m_step = bBack;
        TakeStep();
    } else {
        m_bShowFirst = true; // the first one comes
    }
}

void ViewSearch::TakeStep() {
    if (!m_step || !m_current) {
        return;
    }
    const auto next = m_search.Next(*m_current, *m_step);
    if (next) {
        const bool bBack = *std::exchange(m_step, std::nullopt);
        Show(next->place);
        if (next->bRound) {
            emit WentRound(bBack);
        }
    } else if (!m_search.IsSearching()) {
        m_step.reset();
        ShowCurrent(); // the only one
    }
}

void ViewSearch::Show(HitPlace place) {
    if (m_search.At(place)) {
        MakeCurrent(place);
        ShowCurrent();
    }
}

void ViewSearch::MakeCurrent(std::optional<HitPlace> place) {
    m_current = place;
    Redraw();
    emit Changed();
}

std::int64_t ViewSearch::CurrentNumber() const {
    const auto before = m_current ? m_search.CountBefore(m_current->nPage) : std::nullopt;
    return before ? *before + m_current->nIndex + 1 : 0;
}

// --- into sight --------------------------------------------------------------

// Only when the page's text is there does anything move: once, to where the hit is.
void ViewSearch::ShowCurrent() {
    const auto hit = m_current ? m_search.At(*m_current) : std::nullopt;
    if (!hit) {
        return;
    }
    const std::int32_t nPage = m_current->nPage;
    const auto pText = m_parts.texts.TextOf(nPage);
    m_bShowWaits = !pText;
    if (!pText || hit->nEnd > static_cast<std::int32_t>(pText->chars.size())) {
        return;
    }
    const RectF rc = BoxOf(QuadsOf(*pText, *hit));
    if (!Reveal(nPage, rc)) {
        m_parts.fnGoto(nPage);
        Reveal(nPage, rc);
    }
    Redraw();
}

// False for a page that is not laid out: nothing of it is known then.
bool ViewSearch::Reveal(std::int32_t nPage, const RectF& rc) {
    constexpr double kRoomAcross = 24.0; // Qt's units
    constexpr double kRoomDown = 0.12;   // of the window
    constexpr double kTarget = 0.33;     // of the window's height, from its top
    const auto in = m_places.InWindow(nPage, rc);
    const bool bIsThere = in.has_value();
    const double dbHeight = m_parts.window.height();
    const double dbDown = bIsThere ? WayInto(dbHeight, kRoomDown * dbHeight, in->top(),
                                             in->bottom(), kTarget * dbHeight)
                                   : 0.0;
    const double dbAcross = bIsThere ? WayInto(m_parts.window.width(), kRoomAcross, in->left(),
                                               in->right(), m_parts.window.width() / 2.0)
                                     : 0.0;
    const bool bMoves = !bIsThere || dbDown != 0.0 || dbAcross != 0.0;
    if (bMoves && !std::exchange(m_bHasLeft, true)) {
        m_parts.fnLeave();
    }
    if (bIsThere && bMoves) {
        const double dbRatio = m_parts.window.devicePixelRatioF();
        m_parts.fnScroll(dbAcross * dbRatio, dbDown * dbRatio);
    }
    return bIsThere;
}

void ViewSearch::OnTextRead(int nPage) {
    if (m_bShowWaits && m_current && m_current->nPage == nPage) {
        ShowCurrent();
    }
    if (!m_search.On(nPage).empty()) {
        Redraw();
    }
}

// --- marks -------------------------------------------------------------------

void ViewSearch::Redraw() {
    if (m_search.Count() > 0 && !m_pOverlay) {
        m_pOverlay = std::make_unique<ShapeOverlay>(
            *m_parts.pControl, [this] { return m_parts.window.devicePixelRatioF(); },
            [this](std::int32_t nPage) { return ShapesOn(nPage); },
            PageOverlay::Over::PagesAndText);
    }
    if (m_pOverlay) {
        m_parts.pControl->UpdateViewer();
    }
}

// Empty while the page's text is read.
const ViewSearch::Marks* ViewSearch::MarksOn(std::int32_t nPage) {
    const DocSearch::Hits& hits = m_search.On(nPage);
    const auto pText = hits.empty() ? nullptr : m_parts.texts.TextOf(nPage);
    if (!pText) {
        return nullptr;
    }
    if (m_marks.size() >= kMostMarkedPages && m_marks.find(nPage) == m_marks.end()) {
        m_marks.clear();
    }
    Marks& marks = m_marks[nPage];
    if (marks.pText != pText || marks.quads.size() != hits.size()) {
        marks.pText = pText;
        marks.quads.clear();
        for (const CharRange hit : hits) {
            const bool bMarked = hit.nEnd <= static_cast<std::int32_t>(pText->chars.size());
            marks.quads.push_back(bMarked ? QuadsOf(*pText, hit) : std::vector<TextQuad>());
        }
    }
    return &marks;
}

ViewSearch::Shapes ViewSearch::ShapesOn(std::int32_t nPage) {
    const Marks* const pMarks = MarksOn(nPage);
    if (pMarks == nullptr) {
        return {};
    }
    const QColor all(255, 213, 0, 96);
    const QColor current(255, 120, 0, 110);
    const QColor frame(230, 90, 0);
    const std::int32_t nCurrent = m_current && m_current->nPage == nPage ? m_current->nIndex : -1;
    ShapeOverlay::Shape others{{}, all};
    Shapes shapes;
    for (std::int32_t n = 0; n < static_cast<std::int32_t>(pMarks->quads.size()); ++n) {
        const auto& quads = pMarks->quads[static_cast<std::size_t>(n)];
        if (n == nCurrent) {
            shapes.push_back({quads, current});
            for (const TextQuad& quad : quads) {
                shapes.push_back({{quad}, frame, true, true});
            }
        } else if (n < kMostMarked) {
            others.quads.insert(others.quads.end(), quads.begin(), quads.end());
        }
    }
    shapes.insert(shapes.begin(), std::move(others));
    return shapes;
}

}
