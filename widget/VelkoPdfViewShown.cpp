// What the view shows: the facts that hosts are told, and changes of size.
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <utility>

#include "document/engine/PDFDoc.h"
#include "platform/qt/QtElementWindow.h"
#include "widget/PlaceKeeper.h"
#include "widget/PointerShape.h"
#include "widget/VelkoPdfView.h"
#include "widget/edit/ViewEdits.h"
#include "widget/places/PlaceFollower.h"
#include "widget/text/PageTexts.h"
#include "widget/text/ViewSelection.h"

namespace velko::vkit {

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
        if (m_pPlace || m_pReloader) {
            m_pFollower->Changed();
        }
        LookForPlace();
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

}
