#include "widget/facts/AttachmentModel.h"

#include <QDateTime>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>
#include <utility>

#include "widget/ShownText.h"

namespace velko::vkit {

namespace {

// Without what is not seen, or changes how the rest is seen, such as marks that turn the
// letters after them around: a file is better without them than with signs in their place.
QString OnlyVisible(const QString& strText) {
    QString strVisible;
    for (const QChar c : strText) {
        const auto eKind = c.category();
        if (eKind != QChar::Other_Control && eKind != QChar::Other_Format) {
            strVisible += c;
        }
    }
    return strVisible;
}

// The end of a name says what the file is.
QString Shortened(const QString& strName, int nMostBytes) {
    QString strShort = strName;
    const QString strSuffix = '.' + QFileInfo(strName).suffix().left(16);
    while (strShort.toUtf8().size() > nMostBytes) {
        strShort.chop(strSuffix.size() + 1);
        if (!strShort.isEmpty() && strShort.back().isHighSurrogate()) {
            strShort.chop(1);
        }
        strShort += strSuffix;
    }
    return strShort;
}

}

QString SafeFileName(const QString& strName) {
    constexpr int kMostBytes = 200;
    QString strSafe = OnlyVisible(strName);
    strSafe = strSafe.mid(strSafe.lastIndexOf(QRegularExpression("[/\\\\]")) + 1).simplified();
    while (strSafe.startsWith('.') || strSafe.startsWith(' ')) {
        strSafe.remove(0, 1);
    }
    return strSafe.isEmpty() ? QStringLiteral("attachment") : Shortened(strSafe, kMostBytes);
}

void AttachmentModel::Show(std::shared_ptr<const DocFacts::Files> pFiles) {
    beginResetModel();
    m_pFiles = std::move(pFiles);
    endResetModel();
}

QString AttachmentModel::NameOf(int nFile) const {
    return SafeFileName(
        QString::fromStdString((*m_pFiles)[static_cast<std::size_t>(nFile)].strName));
}

QString AttachmentModel::DetailsOf(int nFile) const {
    constexpr int kLongest = 300;
    const velko::pdf::AttachedFile& file = (*m_pFiles)[static_cast<std::size_t>(nFile)];
    const QLocale locale;
    QStringList facts;
    if (file.nSize > 0) { // none at all is what careless programs write
        facts << locale.formattedDataSize(file.nSize);
    }
    if (const auto nTime = file.nModified != 0 ? file.nModified : file.nCreated; nTime != 0) {
        facts << locale.toString(QDateTime::fromSecsSinceEpoch(nTime).date(), QLocale::ShortFormat);
    }
    for (const std::string& strText : {file.strMimeType, file.strDescription}) {
        const QString strShown = ShownText(QString::fromStdString(strText).left(kLongest));
        if (!strShown.isEmpty()) {
            facts << strShown;
        }
    }
    return facts.join(QStringLiteral(" · "));
}

QVariant AttachmentModel::data(const QModelIndex& index, int nRole) const {
    if (!index.isValid()) {
        return {};
    }
    if (nRole == Qt::DisplayRole || nRole == Qt::ToolTipRole) {
        const QString strDetails = DetailsOf(index.row());
        return strDetails.isEmpty() ? NameOf(index.row())
                                    : QString(NameOf(index.row()) + '\n' + strDetails);
    }
    return nRole == Qt::AccessibleTextRole
               ? QVariant(NameOf(index.row()) + ", " + DetailsOf(index.row()))
               : QVariant();
}

int AttachmentModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_pFiles->size());
}

}
