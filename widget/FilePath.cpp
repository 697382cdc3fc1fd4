#include "widget/FilePath.h"

#include <QFile>
#include <QFileInfo>
#include <QUrl>
#include <filesystem>
#include <system_error>

namespace velko::vkit {

FilePath::FilePath(const QString& strText) : m_strBytes(QFile::encodeName(strText).toStdString()) {}

FilePath FilePath::FromUrl(const QUrl& url) {
    const bool bHere = url.host().isEmpty() || url.host() == QStringLiteral("localhost");
    if (!url.isLocalFile() || !bHere) {
        return {};
    }
    return QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()).toStdString();
}

FilePath FilePath::Absolute() const {
    std::error_code error;
    const auto path = std::filesystem::absolute(m_strBytes, error);
    return IsEmpty() || error ? *this : FilePath(path.lexically_normal().string());
}

QString FilePath::Text() const {
    return QFile::decodeName(QByteArray::fromStdString(m_strBytes));
}

QString FilePath::Name() const {
    return QFileInfo(Text()).fileName();
}

QString FilePath::Folder() const {
    return QFileInfo(Text()).path();
}

}
