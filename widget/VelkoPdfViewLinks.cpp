// Links: which one is meant, and following it.
#include <utility>

#include "control/PDFViewCtrl.h"
#include "document/engine/PDFDoc.h"
#include "platform/concurrency/Task.h"
#include "widget/LinkFocus.h"
#include "widget/LinkFollower.h"
#include "widget/LinkTarget.h"
#include "widget/OpenFailure.h"
#include "widget/VelkoPdfView.h"

namespace velko::vkit {

using velko::pdf::IAction;
using velko::pdf::ILinkSource;
using velko::pdf::LinkRecord;
using velko::pdf::PDFDoc;

namespace {

std::shared_ptr<IAction> FindName(const std::shared_ptr<PDFDoc>& pDocument,
                                  const std::string& strName) {
    const auto pSource = std::dynamic_pointer_cast<ILinkSource>(pDocument);
    return pSource ? pSource->FindNamedDestination(strName) : nullptr;
}

template <class... Ts>
struct Cases : Ts... {
    using Ts::operator()...;
};

}

void VelkoPdfView::ConnectLinks() {
    m_pLinks->OnFollow = [this](const LinkRecord& link) { FollowLink(link); };
    m_pLinks->OnHover = [this] { TellLinkTarget(); };
    LinkFocus::Hands hands;
    hands.fnFollow = [this](const LinkRecord& link) { FollowLink(link); };
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

void VelkoPdfView::FollowLink(const LinkRecord& link) {
    std::visit(Cases{[this](const LinkToPage& page) { FollowPage(page); },
                     [this](LinkStep eStep) { FollowStep(eStep); },
                     [this](const LinkToAddress& to) { emit WebLinkWanted(to.address); },
                     [this](const RefusedLink& to) { emit LinkRefused(to.strReason); }},
               TargetOf(link));
}

void VelkoPdfView::FollowPage(const LinkToPage& target) {
    if (target.pAction) {
        FollowAction(target.pAction);
    } else if (!target.strName.isEmpty()) {
        Find(target.strName,
             QStringLiteral("This link leads to a place that the document does not have."));
    } else {
        JumpToPage(target.nPage);
    }
}

void VelkoPdfView::FollowAction(const std::shared_ptr<IAction>& pAction) {
    Command([&] {
        m_history.Leave(*m_pControl);
        m_pControl->GotoDestination(pAction);
        NoteFitLeft();
    });
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
