#include "app/viewer/properties/PropertyTexts.h"

#include <QDateTime>
#include <string>
#include <utility>

namespace velko::viewer {

namespace {

constexpr int kLongest = 4000; // letters of a value

constexpr std::pair<std::uint32_t, const char*> kPermissions[] = {
    {1U << 2U, "printing"},           {1U << 4U, "copying text and pictures"},
    {1U << 3U, "changing its pages"}, {1U << 5U, "notes and marks"},
    {1U << 8U, "filling in forms"},   {1U << 10U, "inserting and turning pages"}};

void AddText(PropertyRows& rows, const QString& strName, const std::string& strValue) {
    const QString strText = QString::fromStdString(strValue).left(kLongest).trimmed();
    if (!strText.isEmpty()) {
        rows.push_back({strName, strText});
    }
}

void AddTime(PropertyRows& rows, const QString& strName, std::int64_t nTime,
             const QLocale& locale) {
    if (nTime != 0) {
        rows.push_back({strName, locale.toString(QDateTime::fromSecsSinceEpoch(nTime))});
    }
}

}

PropertyRows RowsOf(const velko::pdf::DocumentProperties& properties, const QLocale& locale) {
    PropertyRows rows;
    AddText(rows, "Title", properties.strTitle);
    AddText(rows, "Author", properties.strAuthor);
    AddText(rows, "Subject", properties.strSubject);
    AddText(rows, "Keywords", properties.strKeywords);
    AddTime(rows, "Created", properties.nCreated, locale);
    AddTime(rows, "Changed", properties.nModified, locale);
    AddText(rows, "Written with", properties.strCreator);
    AddText(rows, "Made by", properties.strProducer);
    AddText(rows, "PDF version", properties.strVersion);
    rows.push_back({"Tagged", properties.bTagged ? "yes" : "no"});
    return rows;
}

QString EncryptionText(std::int32_t nType) {
    switch (nType) {
        case 0:
            return "none";
        case 1:
            return "RC4, 40 bits";
        case 2:
            return "RC4, 128 bits";
        case 3:
            return "AES, 128 bits";
        case 5:
            return "AES, 256 bits";
        default:
            return "of an unknown kind";
    }
}

PropertyRows PermissionRows(std::uint32_t nPermissions) {
    QStringList allowed;
    QStringList forbidden;
    for (const auto& [nBit, szWhat] : kPermissions) {
        ((nPermissions & nBit) != 0 ? allowed : forbidden) << szWhat;
    }
    PropertyRows rows;
    if (!allowed.isEmpty()) {
        rows.push_back({"Allowed", forbidden.isEmpty() ? "everything" : allowed.join(", ")});
    }
    if (!forbidden.isEmpty()) {
        rows.push_back({"Not allowed", forbidden.join(", ")});
    }
    return rows;
}

QString HtmlOf(const PropertyRows& rows) {
    QString strHtml;
    for (const PropertyRow& row : rows) {
        strHtml += QStringLiteral(
                       "<tr><td style=\"padding: 2px 14px 2px 0\" align=\"right\">"
                       "%1</td><td style=\"padding: 2px 0\">%2</td></tr>")
                       .arg(row.strName.toHtmlEscaped(),
                            row.strValue.toHtmlEscaped().replace('\n', "<br>"));
    }
    return QStringLiteral("<table>%1</table>").arg(strHtml);
}

}
