// Where links lead.
#include <array>
#include <utility>

#include "control/PDFViewCtrl.h"
#include "document/engine/PDFDoc.h"
#include "platform/concurrency/Task.h"
#include "widget/VelkoPdfView.h"

namespace velko::vkit {

using velko::pdf::IAction;
using velko::pdf::ILinkSource;
using velko::pdf::LinkRecord;
using velko::pdf::PDFDoc;

namespace {

// Schemes that a browser or a mail program is trusted with.
bool IsWebScheme(const QString& strScheme) {
    return strScheme == "http" || strScheme == "https" || strScheme == "mailto";
}

QUrl ToAddress(const QString& strUri) {
    return strUri.startsWith("www.", Qt::CaseInsensitive) ? QUrl("http://" + strUri) : QUrl(strUri);
}

std::shared_ptr<IAction> FindName(const std::shared_ptr<PDFDoc>& pDocument,
                                  const std::string& strName) {
    const auto pSource = std::dynamic_pointer_cast<ILinkSource>(pDocument);
    return pSource ? pSource->FindNamedDestination(strName) : nullptr;
}

}

void VelkoPdfView::FollowLink(const LinkRecord& link) {
    if (link.pAction) {
        FollowAction(link.pAction);
    } else if (!link.strUri.empty()) {
        FollowUri(QString::fromStdString(link.strUri));
    } else {
        FollowOther(QString::fromStdString(link.strOtherKind),
                    QString::fromStdString(link.strOtherValue));
    }
}

void VelkoPdfView::FollowAction(const std::shared_ptr<IAction>& pAction) {
    Command([&] {
        m_history.Leave(*m_pControl);
        m_pControl->GotoDestination(pAction);
        NoteFitLeft();
    });
}

void VelkoPdfView::FollowUri(const QString& strUri) {
    constexpr int kFragment = 1;
    if (strUri.startsWith("#page=")) {
        JumpToPage(strUri.section('=', 1).toInt() - 1);
    } else if (strUri.startsWith('#')) {
        JumpToName(strUri.mid(kFragment));
    } else if (const QUrl address = ToAddress(strUri);
               address.isValid() && IsWebScheme(address.scheme())) {
        emit WebLinkWanted(address);
    } else {
        emit LinkRefused(
            QStringLiteral("This link leads to “%1”, which is not opened from a document.")
                .arg(strUri));
    }
}

bool VelkoPdfView::FollowNamed(const QString& strCommand) {
    const std::array<std::pair<const char*, void (VelkoPdfView::*)()>, 6> commands{
        {{"NextPage", &VelkoPdfView::GotoNextPage},
         {"PrevPage", &VelkoPdfView::GotoPrevPage},
         {"FirstPage", &VelkoPdfView::GotoFirstPage},
         {"LastPage", &VelkoPdfView::GotoLastPage},
         {"GoBack", &VelkoPdfView::GoBack},
         {"GoForward", &VelkoPdfView::GoForward}}};
    for (const auto& [szName, fnCommand] : commands) {
        if (strCommand == szName) {
            (this->*fnCommand)();
            return true;
        }
    }
    return false;
}

void VelkoPdfView::FollowOther(const QString& strKind, const QString& strValue) {
    if (strKind == "Named" && FollowNamed(strValue)) {
        return;
    }
    if (strKind == "Launch" || strKind == "GoToR") {
        emit LinkRefused(
            QStringLiteral("This link wants to open the file “%1”, which is not done from a "
                           "document.")
                .arg(strValue));
    } else if (strKind == "JavaScript") {
        emit LinkRefused("This link wants to run a script, which is not done here.");
    } else {
        emit LinkRefused(QStringLiteral("This link asks for something that is not done here (%1).")
                             .arg(strKind));
    }
}

void VelkoPdfView::JumpToName(const QString& strName) {
    const auto pDocument = HasDocument() ? m_pControl->GetPDFDoc() : nullptr;
    if (!pDocument) {
        return;
    }
    const auto fnFind = [pDocument, strUtf8 = strName.toStdString()] {
        return FindName(pDocument, strUtf8);
    };
    concurrency::create_task(fnFind).then(
        [pView = QPointer<VelkoPdfView>(this), strName,
         pDocument](const concurrency::task<std::shared_ptr<IAction>>& finding) {
            const auto pAction = finding.is_value() ? finding.get() : nullptr;
            if (!pView || pView->m_pControl->GetPDFDoc() != pDocument) {
                return;
            }
            if (pAction) {
                pView->FollowAction(pAction);
            } else {
                emit pView->LinkRefused(
                    QStringLiteral("This document has no place named “%1”.").arg(strName));
            }
        });
}

QString VelkoPdfView::TargetOf(const LinkRecord& link) const {
    const auto pDestination = link.pAction ? link.pAction->GetDestination() : nullptr;
    if (pDestination) {
        return QStringLiteral("Page %1").arg(pDestination->GetPageIndex(*m_pControl->GetPDFDoc()) +
                                             1);
    }
    if (!link.strUri.empty()) {
        return QString::fromStdString(link.strUri);
    }
    return link.strOtherValue.empty() ? QString::fromStdString(link.strOtherKind)
                                      : QString::fromStdString(link.strOtherValue);
}

}
