#include "widget/text/ViewSelection.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPalette>
#include <algorithm>
#include <utility>

#include "control/PDFViewCtrl.h"
#include "document/engine/PDFDoc.h"
#include "platform/qt/QtElementWindow.h"
#include "widget/PageColors.h"
#include "widget/text/PlainText.h"

namespace velko::vkit {

using velko::common::vxbase::RectF;
using velko::pdf::TextQuad;

namespace {

constexpr std::uint32_t kMayCopy = 1U << 4U; // of `PDFDoc::GetUserPermissions`
constexpr int kAlphaOnLight = 90;            // of 255: letters under it are read
constexpr int kAlphaOnDark = 120;
constexpr std::int32_t kMostOffered = 4; // pages, for a paste with the middle button
constexpr std::int32_t kMostMarked = 32; // pages
constexpr std::size_t kMostShown = 64;   // pages

RectF BoxOf(const TextQuad& quad) {
    const auto [left, right] = std::minmax(
        {quad.ptTopLeft.X, quad.ptTopRight.X, quad.ptBottomLeft.X, quad.ptBottomRight.X});
    const auto [bottom, top] = std::minmax(
        {quad.ptTopLeft.Y, quad.ptTopRight.Y, quad.ptBottomLeft.Y, quad.ptBottomRight.Y});
    return {left, bottom, right, top};
}

}

ViewSelection::ViewSelection(Parts parts)
    : m_pControl(std::move(parts.pControl)),
      m_window(parts.window),
      m_texts(parts.texts),
      m_places(*m_pControl, m_window),
      m_pointer({m_window, m_places, m_texts, m_selection, parts.shape, parts.fnScroll}),
      m_touch({m_window, m_places, m_texts, m_selection,
               [this](Windows::Foundation::Point pt) { return InWindow(pt); }, parts.fnScroll}),
      m_keys({*m_pControl, m_window, m_places, m_texts, m_selection, std::move(parts.fnGotoPage),
              parts.fnScroll}) {
    m_window.installEventFilter(this);
    connect(&m_selection, &TextSelection::Changed, this, &ViewSelection::OnChanged);
    connect(&m_pointer, &SelectionPointer::Selected, this, &ViewSelection::OfferForPaste);
    connect(&m_touch, &SelectionTouch::Selected, this, &ViewSelection::OfferForPaste);
    connect(&m_touch, &SelectionTouch::Selected, this, &ViewSelection::Touched);
    connect(&m_copier, &TextCopier::Gathered, this, &ViewSelection::OnGathered);
    connect(&m_copier, &TextCopier::Ended, this, &ViewSelection::CopyingChanged);
    connect(&m_texts, &PageTexts::Read, this, [this] {
        m_keys.OnRead();
        GiveMarks();
        if (!IsEmpty()) {
            m_pControl->UpdateViewer();
        }
    });
    m_pOverlay = std::make_unique<ShapeOverlay>(
        *m_pControl, [this] { return m_window.devicePixelRatioF(); },
        [this](std::int32_t nPage) { return ShapesOn(nPage); }, PageOverlay::Over::PagesAndText);
    m_tapToken = m_window.Panel()->Tapped.add([this](auto&) { Clear(); });
}

ViewSelection::~ViewSelection() {
    m_window.Panel()->Tapped.remove(m_tapToken);
}

// --- what is selected ------------------------------------------------------

void ViewSelection::SelectAll() {
    FollowDocument();
    const std::int32_t nPages = m_pControl->GetPageCount();
    if (nPages > 0) {
        m_selection.Set({{}, {nPages - 1, TextSelection::kPageEnd}});
    }
}

void ViewSelection::Clear() {
    m_pointer.GiveUp();
    m_selection.Clear();
}

void ViewSelection::Restore(const Places& places) {
    m_wkDocument = m_pControl->GetPDFDoc();
    m_selection.Set(places);
}

void ViewSelection::OnChanged() {
    m_fnTakeMarks = nullptr;
    m_pControl->UpdateViewer();
    if (std::exchange(m_bWasEmpty, IsEmpty()) != IsEmpty()) {
        emit EmptyChanged();
    }
    emit Changed();
}

void ViewSelection::Update() {
    FollowDocument();
    m_pointer.Update();
    m_touch.Update();
}

QPointF ViewSelection::InWindow(Windows::Foundation::Point ptCanvas) const {
    const double dbRatio = m_window.devicePixelRatioF();
    return {ptCanvas.X * m_pControl->CompositionScaleX() / dbRatio,
            ptCanvas.Y * m_pControl->CompositionScaleY() / dbRatio};
}

void ViewSelection::FollowDocument() {
    const auto pDocument = m_pControl->GetPDFDoc();
    m_texts.IsSameDocument();
    if (!pDocument || m_wkDocument.lock() != pDocument) {
        m_wkDocument = pDocument;
        m_keys.Forget();
        m_copier.Cancel();
        m_shown.clear();
        Clear();
    }
}

// --- drawing ---------------------------------------------------------------

const ViewSelection::Quads& ViewSelection::QuadsOn(std::int32_t nPage) {
    static const Quads s_none;
    const TextSpan span = Span();
    if (IsEmpty() || nPage < span.first.nPage || nPage > span.last.nPage) {
        return s_none;
    }
    const auto pText = m_texts.TextOf(nPage);
    if (!pText) {
        return s_none;
    }
    const CharRange range = m_selection.On(nPage, static_cast<std::int32_t>(pText->chars.size()));
    if (m_shown.size() >= kMostShown) {
        m_shown.clear();
    }
    Shown& shown = m_shown[nPage];
    if (shown.pText != pText || shown.range != range) {
        shown = {pText, range, QuadsOf(*pText, range)};
    }
    return shown.quads;
}

std::vector<ShapeOverlay::Shape> ViewSelection::ShapesOn(std::int32_t nPage) {
    const Quads& quads = QuadsOn(nPage);
    if (quads.empty()) {
        return {};
    }
    QColor color = m_window.palette().color(QPalette::Active, QPalette::Highlight);
    const bool bDark = ToQColor(m_pControl->PageBgColor()).lightness() < 128;
    color.setAlpha(bDark ? kAlphaOnDark : kAlphaOnLight);
    return {{quads, color, false}};
}

QRectF ViewSelection::InSight() const {
    QRectF rc;
    for (const auto& [nPage, shown] : m_shown) {
        for (const TextQuad& quad : shown.quads) {
            const auto place = m_places.InWindow(nPage, BoxOf(quad));
            const QRectF rcSeen = place.value_or(QRectF()).intersected(m_window.rect());
            rc |= rcSeen;
        }
    }
    return IsEmpty() ? QRectF() : rc;
}

void ViewSelection::TakeMarks(std::function<void(const Marks&)> fnTake) {
    const TextSpan span = Span();
    if (IsEmpty()) {
        return;
    }
    if (std::min(span.last.nPage, m_pControl->GetPageCount() - 1) - span.first.nPage >=
        kMostMarked) {
        emit Refused(
            QStringLiteral("%1 pages can be highlighted at once, and not more.").arg(kMostMarked));
        return;
    }
    m_fnTakeMarks = std::move(fnTake);
    GiveMarks();
}

void ViewSelection::GiveMarks() {
    if (!m_fnTakeMarks) {
        return;
    }
    const TextSpan span = Span();
    const std::int32_t nLast = std::min(span.last.nPage, m_pControl->GetPageCount() - 1);
    bool bAll = true;
    Marks marks;
    for (std::int32_t nPage = span.first.nPage; nPage <= nLast; ++nPage) {
        bAll = m_texts.TextOf(nPage) != nullptr && bAll;
        if (const Quads& quads = QuadsOn(nPage); !quads.empty()) {
            marks[nPage] = quads;
        }
    }
    if (bAll) {
        std::exchange(m_fnTakeMarks, nullptr)(marks);
    }
}

// --- copying ---------------------------------------------------------------

QString ViewSelection::WhyNotCopy() const {
    const auto pDocument = m_pControl->GetPDFDoc();
    if (pDocument && (pDocument->GetUserPermissions() & kMayCopy) == 0) {
        return QStringLiteral(
            "Whoever made this document does not allow copying from it: open it with the owner's "
            "password to copy text.");
    }
    return {};
}

void ViewSelection::Copy() {
    const auto pDocument = m_pControl->GetPDFDoc();
    if (IsEmpty() || !pDocument) {
        return;
    }
    if (const QString strWhyNot = WhyNotCopy(); !strWhyNot.isEmpty()) {
        emit Refused(strWhyNot);
        return;
    }
    m_copier.Begin(*pDocument, Span());
    emit CopyingChanged();
}

void ViewSelection::OnGathered(const QString& strText, int nUnreadPages) {
    if (strText.isEmpty()) {
        emit Refused(QStringLiteral("There is no text in what is selected."));
        return;
    }
    QGuiApplication::clipboard()->setText(strText);
    if (nUnreadPages > 0) {
        emit Refused(nUnreadPages == 1
                         ? QStringLiteral("One page could not be read: its text is not copied.")
                         : QStringLiteral("%1 pages could not be read: their text is not copied.")
                               .arg(nUnreadPages));
    }
    emit Copied();
}

// What is small enough, as the pointer selected it, for desktops that paste such.
void ViewSelection::OfferForPaste() {
    const TextSpan span = Span();
    if (IsEmpty() || !QGuiApplication::clipboard()->supportsSelection() ||
        span.last.nPage - span.first.nPage >= kMostOffered || !WhyNotCopy().isEmpty()) {
        return;
    }
    QString strText;
    for (std::int32_t nPage = span.first.nPage; nPage <= span.last.nPage; ++nPage) {
        if (const auto pText = m_texts.OwnTextOf(nPage)) {
            const auto nChars = static_cast<std::int32_t>(pText->chars.size());
            AppendPage(strText, PlainTextOf(*pText, m_selection.On(nPage, nChars)));
        }
    }
    if (!strText.isEmpty()) {
        QGuiApplication::clipboard()->setText(strText, QClipboard::Selection);
    }
}

// --- input -----------------------------------------------------------------

bool ViewSelection::eventFilter(QObject* /*pWatched*/, QEvent* pEvent) {
    return pEvent->type() == QEvent::KeyPress && OnKey(*static_cast<QKeyEvent*>(pEvent));
}

bool ViewSelection::OnKey(const QKeyEvent& event) {
    FollowDocument();
    if (event.key() == Qt::Key_Escape) {
        return OnEscape();
    }
    if (event.matches(QKeySequence::Copy)) {
        Copy();
        return true;
    }
    if (event.matches(QKeySequence::SelectAll)) {
        SelectAll();
        return true;
    }
    return !m_pointer.IsSelecting() && m_keys.OnKey(event);
}

bool ViewSelection::OnEscape() {
    if (IsCopying()) {
        CancelCopy();
        return true;
    }
    if (IsEmpty() && !m_pointer.IsSelecting()) {
        return false;
    }
    Clear();
    return true;
}

}
