#include "widget/LinkTarget.h"

#include <algorithm>
#include <array>
#include <utility>

#include "document/engine/PDFDoc.h"

namespace velko::vkit {

using velko::pdf::LinkGoal;

namespace {

constexpr std::array<std::pair<const char*, LinkStep>, 6> kSteps{
    {{"NextPage", LinkStep::NextPage},
     {"PrevPage", LinkStep::PreviousPage},
     {"FirstPage", LinkStep::FirstPage},
     {"LastPage", LinkStep::LastPage},
     {"GoBack", LinkStep::Back},
     {"GoForward", LinkStep::Forward}}};

// Schemes that a browser or a mail program is trusted with.
bool IsWebScheme(const QString& strScheme) {
    return strScheme == "http" || strScheme == "https" || strScheme == "mailto";
}

LinkTarget TargetOfUri(const QString& strUri) {
    const QString strPage = QStringLiteral("#page=");
    if (strUri.startsWith(strPage)) {
        return LinkToPage{nullptr, {}, strUri.mid(strPage.size()).toInt() - 1};
    }
    if (strUri.startsWith('#')) {
        return LinkToPage{nullptr, strUri.mid(1), -1};
    }
    const QUrl address(strUri.startsWith("www.", Qt::CaseInsensitive) ? "http://" + strUri
                                                                      : strUri);
    if (address.isValid() && IsWebScheme(address.scheme())) {
        return LinkToAddress{address};
    }
    return RefusedLink{
        QStringLiteral("This link leads to “%1”, which is not opened from a document.")
            .arg(strUri)};
}

LinkTarget TargetOfOther(const QString& strKind, const QString& strValue) {
    const auto step = std::find_if(kSteps.begin(), kSteps.end(), [&](const auto& item) {
        return strKind == "Named" && strValue == item.first;
    });
    if (step != kSteps.end()) {
        return step->second;
    }
    if (strKind.isEmpty()) {
        return RefusedLink{LeadsNowhere()};
    }
    if (strKind == "Launch" || strKind == "GoToR") {
        return RefusedLink{QStringLiteral("This link wants to open the file “%1”, which is not "
                                          "done from a document.")
                               .arg(strValue)};
    }
    if (strKind == "JavaScript") {
        return RefusedLink{"This link wants to run a script, which is not done here."};
    }
    return RefusedLink{
        QStringLiteral("This link asks for something that is not done here (%1).").arg(strKind)};
}

}

QString LeadsNowhere() {
    return "This link leads nowhere: the place that it names is not in the document.";
}

LinkTarget TargetOf(const LinkGoal& goal) {
    if (goal.pAction) {
        return LinkToPage{goal.pAction, {}, -1};
    }
    if (!goal.strUri.empty()) {
        return TargetOfUri(QString::fromStdString(goal.strUri));
    }
    return TargetOfOther(QString::fromStdString(goal.strOtherKind),
                         QString::fromStdString(goal.strOtherValue));
}

QString TextOf(const LinkGoal& goal, velko::pdf::PDFDoc& document) {
    const auto pDestination = goal.pAction ? goal.pAction->GetDestination() : nullptr;
    if (pDestination) {
        return QStringLiteral("Page %1").arg(pDestination->GetPageIndex(document) + 1);
    }
    for (const std::string& strText : {goal.strUri, goal.strOtherValue, goal.strOtherKind}) {
        if (!strText.empty()) {
            return QString::fromStdString(strText);
        }
    }
    return "Leads nowhere";
}

}
