#include "widget/LinkTarget.h"

#include <QFile>
#include <QUrlQuery>
#include <algorithm>
#include <array>
#include <filesystem>
#include <utility>

#include "document/engine/PDFDoc.h"
#include "widget/ShownText.h"

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

const QString kMailScheme = QStringLiteral("mailto");

// A letter is begun by its address and words; some mail programs would attach files of
// the reader's that a document names.
QUrl OnlyWords(QUrl letter) {
    const QUrlQuery asked(letter);
    QUrlQuery kept;
    for (const char* szKey : {"to", "cc", "subject", "body"}) {
        if (asked.hasQueryItem(szKey)) {
            kept.addQueryItem(szKey, asked.queryItemValue(szKey, QUrl::FullyEncoded));
        }
    }
    letter.setQuery(kept.isEmpty() ? QString() : kept.query(QUrl::FullyEncoded));
    return letter;
}

// What stands before the site looks like one, and may be a secret.
QUrl Harmless(const QUrl& address) {
    return address.scheme() == kMailScheme ? OnlyWords(address)
                                           : address.adjusted(QUrl::RemoveUserInfo);
}

// Folders are parted by strokes, also by programs of systems that do it otherwise.
LinkTarget TargetOfFile(QString strNamed, const FilePath& document) {
    if (!strNamed.contains('/')) {
        strNamed.replace('\\', '/');
    }
    if (!strNamed.endsWith(".pdf", Qt::CaseInsensitive) || strNamed.contains(QChar(0))) {
        return RefusedLink{QStringLiteral("This link wants to open the file “%1”, which is not "
                                          "done from a document.")
                               .arg(ShownText(strNamed))};
    }
    const std::filesystem::path folder =
        std::filesystem::path(document.Absolute().Bytes()).parent_path();
    return LinkToFile{
        FilePath((folder / QFile::encodeName(strNamed).toStdString()).string()).Absolute()};
}

// An address without a scheme is one beside the document.
LinkTarget TargetOfFileUri(const QUrl& address, const QString& strUri, const FilePath& document) {
    const bool bHere = address.host().isEmpty() || address.host() == "localhost";
    if (bHere && (address.isLocalFile() || address.scheme().isEmpty())) {
        return TargetOfFile(address.path(QUrl::FullyDecoded), document);
    }
    return RefusedLink{
        QStringLiteral("This link leads to “%1”, which is not opened from a document.")
            .arg(ShownText(strUri))};
}

LinkTarget TargetOfUri(const QString& strUri, const FilePath& document) {
    const QString strPage = QStringLiteral("#page=");
    if (strUri.startsWith(strPage)) {
        return LinkToPage{nullptr, {}, strUri.mid(strPage.size()).toInt() - 1};
    }
    if (strUri.startsWith('#')) {
        return LinkToPage{nullptr, strUri.mid(1), -1};
    }
    const QUrl address(strUri.startsWith("www.", Qt::CaseInsensitive) ? "http://" + strUri
                                                                      : strUri);
    return IsWebAddress(address) ? LinkTarget(LinkToAddress{Harmless(address)})
                                 : TargetOfFileUri(address, strUri, document);
}

LinkTarget TargetOfOther(const QString& strKind, const QString& strValue,
                         const FilePath& document) {
    const auto step = std::find_if(kSteps.begin(), kSteps.end(), [&](const auto& item) {
        return strKind == "Named" && strValue == item.first;
    });
    if (step != kSteps.end()) {
        return step->second;
    }
    if (strKind.isEmpty()) {
        return RefusedLink{LeadsNowhere()};
    }
    if (strKind == "GoToR") {
        return TargetOfFile(strValue, document);
    }
    if (strKind == "Launch") {
        return RefusedLink{QStringLiteral("This link wants to open the file “%1”, which is not "
                                          "done from a document.")
                               .arg(ShownText(strValue))};
    }
    if (strKind == "JavaScript") {
        return RefusedLink{"This link wants to run a script, which is not done here."};
    }
    return RefusedLink{QStringLiteral("This link asks for something that is not done here (%1).")
                           .arg(ShownText(strKind))};
}

}

QString LeadsNowhere() {
    return "This link leads nowhere: the place that it names is not in the document.";
}

bool IsWebAddress(const QUrl& address) {
    const QString strScheme = address.scheme();
    const bool bSite = (strScheme == "http" || strScheme == "https") && !address.host().isEmpty();
    return address.isValid() && (bSite || strScheme == kMailScheme);
}

LinkTarget TargetOf(const LinkGoal& goal, const FilePath& document) {
    if (goal.pAction) {
        return LinkToPage{goal.pAction, {}, -1};
    }
    if (!goal.strUri.empty()) {
        return TargetOfUri(QString::fromStdString(goal.strUri), document);
    }
    return TargetOfOther(QString::fromStdString(goal.strOtherKind),
                         QString::fromStdString(goal.strOtherValue), document);
}

QString TextOf(const LinkGoal& goal, velko::pdf::PDFDoc& document) {
    const auto pDestination = goal.pAction ? goal.pAction->GetDestination() : nullptr;
    if (pDestination) {
        return QStringLiteral("Page %1").arg(pDestination->GetPageIndex(document) + 1);
    }
    const LinkTarget target = TargetOf(goal, {});
    if (const auto* const pAddress = std::get_if<LinkToAddress>(&target)) {
        return pAddress->address.toString(QUrl::FullyEncoded);
    }
    for (const std::string& strText : {goal.strUri, goal.strOtherValue, goal.strOtherKind}) {
        if (!strText.empty()) {
            return ShownText(QString::fromStdString(strText));
        }
    }
    return "Leads nowhere";
}

}
