// Links: which one is meant, and following it.
#include <algorithm>
#include <cmath>
#include <utility>

#include "control/PDFViewCtrl.h"
#include "document/engine/PDFDoc.h"
#include "platform/concurrency/Task.h"
#include "viewers/core/Destinations.h"
#include "viewers/core/Modes.h"
#include "widget/LinkFocus.h"
#include "widget/LinkFollower.h"
#include "widget/LinkTarget.h"
#include "widget/OpenFailure.h"
#include "widget/VelkoPdfView.h"

namespace velko::vkit {

using velko::pdf::IAction;
using velko::pdf::IDestination;
using velko::pdf::ILinkSource;
using velko::pdf::LinkGoal;
using velko::pdf::LinkRecord;
using velko::pdf::PDFDoc;
using Windows::Foundation::Point;

namespace {

std::shared_ptr<IAction> FindName(const std::shared_ptr<PDFDoc>& pDocument,
                                  const std::string& strName) {
    const auto pSource = std::dynamic_pointer_cast<ILinkSource>(pDocument);
    return pSource ? pSource->FindNamedDestination(strName) : nullptr;
}

// What is in force then: a destination with a zoom of its own ends a fit.
std::int32_t FitOf(const IDestination& target, std::int32_t nNow) {
    switch (target.GetZoomMode()) {
        case kFitPage:
            return ZoomMode::kFitPage;
        case kFitWidth:
            return ZoomMode::kFitWidth;
        case kFitHeight:
            return ZoomMode::kFitHeight;
        case kExplicit:
            return target.GetRight() > 0.0F ? ZoomMode::kNone : nNow;
        default:
            return ZoomMode::kNone;
    }
}

template <class... Ts>
struct Cases : Ts... {
    using Ts::operator()...;
};
template <class... Ts>
Cases(Ts...) -> Cases<Ts...>;

}

void VelkoPdfView::ConnectLinks() {
    m_pLinks->OnFollow = [this](const LinkRecord& link) { FollowGoal(link); };
    m_pLinks->OnHover = [this] { TellLinkTarget(); };
    LinkFocus::Hands hands;
    hands.fnFollow = [this](const LinkRecord& link) { FollowGoal(link); };
    hands.fnGotoPage = [this](int nPage) { GotoPage(nPage); };
    hands.fnScroll = [this](double dbX, double dbY) { ScrollBy(dbX, dbY); };
    hands.fnChanged = [this] { TellLinkTarget(); };
    m_pLinkFocus =
        std::make_unique<LinkFocus>(*m_pControl, *m_pWindow, *m_pPageLinks, std::move(hands));
}

void VelkoPdfView::UpdateLinks() {
    if (!m_pPageLinks->IsSameDocument()) {
        m_pLinks->Forget();
        m_pLinkFocus->Forget();
    }
    m_pLinks->Update();
    m_pLinkFocus->Update();
}

// From the event loop: a host may do anything when it hears of it.
void VelkoPdfView::TellLinkTarget() {
    const LinkRecord* const pHovered = m_pLinks->Hovered();
    const auto pDocument = m_pPageLinks->Document();
    const QString strTarget =
        pHovered != nullptr && pDocument ? TextOf(*pHovered, *pDocument) : m_pLinkFocus->Text();
    QMetaObject::invokeMethod(
        this, [this, strTarget] { emit LinkHovered(strTarget); }, Qt::QueuedConnection);
}

void VelkoPdfView::FollowGoal(const LinkGoal& goal) {
    std::visit(Cases{[this](const LinkToPage& page) { FollowPage(page); },
                     [this](LinkStep eStep) { FollowStep(eStep); },
                     [this](const LinkToAddress& to) { emit WebLinkWanted(to.address); },
                     [this](const LinkToFile& to) { emit FileLinkWanted(to.path); },
                     [this](const RefusedLink& to) { emit LinkRefused(to.strReason); }},
               TargetOf(goal, File()));
}

void VelkoPdfView::FollowPage(const LinkToPage& target) {
    if (target.pAction) {
        FollowAction(target.pAction);
    } else if (!target.strName.isEmpty()) {
        Find(target.strName, LeadsNowhere());
    } else if (target.nPage >= 0 && target.nPage < PageCount()) {
        JumpToPage(target.nPage);
    } else {
        emit LinkRefused(LeadsNowhere());
    }
}

void VelkoPdfView::FollowAction(const std::shared_ptr<IAction>& pAction) {
    const auto pTarget = pAction->GetDestination();
    Command([&] {
        LeavePlace();
        if (pTarget && IsShownHere(*pTarget)) {
            ShowDestination(*pTarget);
        } else { // around what is drawn on the page, which the control finds out
            m_zoom.SetFitMode(ZoomMode::kNone);
            m_pControl->GotoDestination(pAction);
        }
        m_zoom.NoteFit();
    });
}

bool VelkoPdfView::IsShownHere(const IDestination& target) {
    const std::int32_t nPage = target.GetPageIndex(*m_pControl->GetPDFDoc());
    return nPage >= 0 && nPage < m_pControl->GetPageCount() && target.GetZoomMode() >= kExplicit &&
           target.GetZoomMode() <= kFitRectangle;
}

// Fits are the reader's commands, and stay in force; a place without a zoom leaves
// the zoom as it is.
void VelkoPdfView::ShowDestination(const IDestination& target) {
    const std::int32_t nPage = target.GetPageIndex(*m_pControl->GetPDFDoc());
    const double dbBefore = m_pControl->GetScale();
    m_zoom.SetFitMode(FitOf(target, m_zoom.FitMode()));
    m_pControl->GotoPage(nPage);
    if (m_zoom.HasFit()) {
        m_zoom.ZoomToFit();
    } else if (const double dbZoom = ZoomOf(target, dbBefore); m_pControl->GetScale() != dbZoom) {
        m_zoom.ZoomTo(dbZoom);
    }
    if (m_zoom.FitMode() != ZoomMode::kFitPage) { // else all of its places are in sight
        ShowPlaceOf(target, nPage);
    }
}

// The one that a destination names, as a number or by a rectangle that is to fill
// the view.
float VelkoPdfView::ZoomOf(const IDestination& target, double dbBefore) {
    if (target.GetZoomMode() == kExplicit && target.GetRight() > 0.0F) {
        return target.GetRight();
    }
    if (target.GetZoomMode() != kFitRectangle) {
        return static_cast<float>(dbBefore);
    }
    const Windows::Foundation::Rect rcPage(std::min(target.GetLeft(), target.GetRight()),
                                           std::min(target.GetBottom(), target.GetTop()),
                                           std::abs(target.GetRight() - target.GetLeft()),
                                           std::abs(target.GetTop() - target.GetBottom()));
    const auto rc =
        m_pControl->PageRectToDeviceRect(target.GetPageIndex(*m_pControl->GetPDFDoc()), rcPage);
    const auto size = m_pControl->GetCanvasSize();
    const bool bEmpty = rc.Width < 1.0F || rc.Height < 1.0F;
    const float fGrow = bEmpty ? 1.0F : std::min(size.Width / rc.Width, size.Height / rc.Height);
    return m_pControl->GetScale() * fGrow;
}

// At the view's top left, as far as the target names it and the document reaches.
void VelkoPdfView::ShowPlaceOf(const IDestination& target, std::int32_t nPage) {
    const Point pt = m_pControl->PagePointToDevicePoint(nPage, {target.GetLeft(), target.GetTop()});
    const bool bExplicit =
        target.GetZoomMode() == kExplicit || target.GetZoomMode() == kFitRectangle;
    const bool bDown = bExplicit || target.GetZoomMode() == kFitWidth;
    const bool bAcross =
        (bExplicit && !target.IsLeftAbsent()) || target.GetZoomMode() == kFitHeight;
    const auto place = m_pControl->GetPageScreenRect(nPage);
    const double dbScreen = m_pControl->GetCanvasSize().Width * m_pControl->CompositionScaleX();
    const bool bWide = place && place->nWidth > dbScreen;
    ScrollAndSettle(*m_pControl, bDown ? pt.Y * m_pControl->CompositionScaleY() : 0.0,
                    bAcross && bWide ? pt.X * m_pControl->CompositionScaleX() : 0.0);
}

void VelkoPdfView::FollowStep(LinkStep eStep) {
    switch (eStep) {
        case LinkStep::NextPage:
            GotoNextPage();
            break;
        case LinkStep::PreviousPage:
            GotoPrevPage();
            break;
        case LinkStep::FirstPage:
            GotoFirstPage();
            break;
        case LinkStep::LastPage:
            GotoLastPage();
            break;
        case LinkStep::Back:
            GoBack();
            break;
        case LinkStep::Forward:
            GoForward();
            break;
    }
}

void VelkoPdfView::JumpToName(const QString& strName) {
    Find(strName, NoSuchPage(strName, PageCount()));
}

// Goes to the place of that name once it is found.
void VelkoPdfView::Find(const QString& strName, const QString& strRefusal) {
    const auto pDocument = HasDocument() ? m_pControl->GetPDFDoc() : nullptr;
    if (!pDocument) {
        return;
    }
    const auto fnFind = [pDocument, strUtf8 = strName.toStdString()] {
        return FindName(pDocument, strUtf8);
    };
    concurrency::create_task(fnFind).then(
        [pView = QPointer<VelkoPdfView>(this), strRefusal,
         pDocument](const concurrency::task<std::shared_ptr<IAction>>& finding) {
            const auto pAction = finding.is_value() ? finding.get() : nullptr;
            if (!pView || pView->m_pControl->GetPDFDoc() != pDocument) {
                return;
            }
            if (pAction) {
                pView->FollowAction(pAction);
            } else {
                emit pView->LinkRefused(strRefusal);
            }
        });
}

}
