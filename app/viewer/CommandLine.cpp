#include "app/viewer/CommandLine.h"

#include <QUrl>
#include <algorithm>
#include <array>
#include <cctype>

namespace velko::viewer {

namespace {

constexpr int kSmallestEdge = 64;
constexpr int kLargestEdge = 16384;

// Qt takes these, with one value each.
constexpr std::array kQtOptions{"platform", "style", "display", "geometry", "stylesheet"};

bool IsQtOption(const QString& strArgument) {
    for (const char* szOption : kQtOptions) {
        const QString strName = QString::fromLatin1(szOption);
        if (strArgument == "-" + strName || strArgument == "--" + strName) {
            return true;
        }
    }
    return false;
}

std::optional<QSize> ParseSize(const QString& strText) {
    const QStringList edges = strText.split('x');
    if (edges.size() != 2) {
        return std::nullopt;
    }
    bool bWidth = false;
    bool bHeight = false;
    const QSize size(edges[0].toInt(&bWidth), edges[1].toInt(&bHeight));
    const auto fits = [](int nEdge) { return nEdge >= kSmallestEdge && nEdge <= kLargestEdge; };
    if (!bWidth || !bHeight || !fits(size.width()) || !fits(size.height())) {
        return std::nullopt;
    }
    return size;
}

// "https://...", "file:///..."; a file of such a name is given as "./https:".
bool IsAddress(const QByteArray& word) {
    const qsizetype nScheme = word.indexOf("://");
    return word.startsWith("file:/") ||
           (nScheme > 0 && std::all_of(word.begin(), word.begin() + nScheme, [](char ch) {
                return std::isalnum(static_cast<unsigned char>(ch)) != 0;
            }));
}

class Parser {
public:
    Parser(const QByteArrayList& arguments, QString& strComplaint)
        : m_arguments(arguments), m_strComplaint(strComplaint) {}

    std::optional<CommandLine> Parse() {
        while (m_strComplaint.isEmpty() && m_nNext < m_arguments.size()) {
            Take(m_arguments[m_nNext++]);
        }
        if (m_strComplaint.isEmpty() && m_result.nPasswordFd && m_result.files.empty()) {
            m_strComplaint = "A password is given, but no file";
        }
        if (m_strComplaint.isEmpty() && !m_result.strScreenshot.isEmpty()) {
            CheckPicture();
        }
        return m_strComplaint.isEmpty() ? std::optional(m_result) : std::nullopt;
    }

private:
    void Take(const QByteArray& word) {
        const QString strArgument = QString::fromLocal8Bit(word);
        if (m_bFilesOnly || !word.startsWith('-') || word == "-") {
            TakeFile(word);
        } else if (strArgument == "--") {
            m_bFilesOnly = true;
        } else if (IsQtOption(strArgument)) {
            Value(strArgument);
        } else {
            TakeOption(strArgument);
        }
    }

    void TakeFile(const QByteArray& word) {
        if (!IsAddress(word)) {
            m_result.files.emplace_back(word.toStdString());
        } else if (auto file = vkit::FilePath::FromUrl(QUrl::fromEncoded(word)); !file.IsEmpty()) {
            m_result.files.push_back(std::move(file));
        } else {
            m_result.foreign << QString::fromLocal8Bit(word);
        }
    }

    void CheckPicture() {
        if (m_result.files.size() > 1) {
            m_strComplaint = "A picture shows one file: " + m_result.files[1].Text();
        } else if (!m_result.foreign.isEmpty()) {
            m_strComplaint = "Not a file of this machine: " + m_result.foreign[0];
        }
    }

    void TakeOption(const QString& strArgument) {
        if (strArgument == "--help" || strArgument == "-h") {
            m_result.bHelp = true;
        } else if (strArgument == "--version") {
            m_result.bVersion = true;
        } else if (strArgument == "--screenshot") {
            m_result.strScreenshot = Value(strArgument);
        } else if (strArgument == "--page") {
            TakePage(Value(strArgument));
        } else if (strArgument == "--find") {
            m_result.strFind = Value(strArgument);
        } else if (strArgument == "--new-window") {
            m_result.bNewWindow = true;
        } else if (strArgument == "--password-fd") {
            TakePasswordFd(Value(strArgument));
        } else if (strArgument == "--family") {
            m_result.strFamily = Value(strArgument);
        } else if (strArgument == "--size") {
            TakeSize(Value(strArgument));
        } else if (strArgument.section('=', 0, 0) == "--time-to-ink") {
            TakeTimeToInk(strArgument);
        } else {
            m_strComplaint = "Unknown option: " + strArgument;
        }
    }

    QString Value(const QString& strOption) {
        if (m_nNext >= m_arguments.size()) {
            m_strComplaint = "A value is missing after " + strOption;
            return {};
        }
        return QString::fromLocal8Bit(m_arguments[m_nNext++]);
    }

    void TakePage(const QString& strValue) {
        bool bGood = false;
        m_result.nPage = strValue.toInt(&bGood);
        if (m_strComplaint.isEmpty() && (!bGood || *m_result.nPage < 1)) {
            m_strComplaint = "Not a page number: " + strValue;
        }
    }

    void TakePasswordFd(const QString& strValue) {
        bool bGood = false;
        m_result.nPasswordFd = strValue.toInt(&bGood);
        if (m_strComplaint.isEmpty() && (!bGood || *m_result.nPasswordFd < 0)) {
            m_strComplaint = "Not the number of a descriptor: " + strValue;
        }
    }

    void TakeSize(const QString& strValue) {
        const auto size = ParseSize(strValue);
        if (m_strComplaint.isEmpty() && !size) {
            m_strComplaint = "Not a size such as 980x1040: " + strValue;
        }
        m_result.size = size;
    }

    void TakeTimeToInk(const QString& strArgument) {
        m_result.bTimeToInk = true;
        const QString strStart = strArgument.section('=', 1);
        bool bGood = false;
        const qint64 nStart = strStart.toLongLong(&bGood);
        if (bGood) {
            m_result.nStartedAt = nStart;
        } else if (!strStart.isEmpty()) {
            m_strComplaint = "Not a time in nanoseconds: " + strStart;
        }
    }

    const QByteArrayList& m_arguments;
    QString& m_strComplaint;
    CommandLine m_result;
    qsizetype m_nNext = 0;
    bool m_bFilesOnly = false;
};

}

std::optional<CommandLine> ParseCommandLine(const QByteArrayList& arguments,
                                            QString& strComplaint) {
    strComplaint.clear();
    return Parser(arguments, strComplaint).Parse();
}

QString UsageText() {
    return QStringLiteral(
        "Usage: velko-viewer [options] [FILE.pdf ...]\n"
        "\n"
        "Each file has a window of its own. One that is open already comes to the front\n"
        "instead.\n"
        "\n"
        "  --screenshot OUT.png  write a picture of the window and end\n"
        "  --page N              begin at page N of the first file\n"
        "  --find TEXT           look for TEXT in the first file\n"
        "  --new-window          show the file here also when it is open already\n"
        "  --size WxH            size of the first window; else as it was left\n"
        "  --password-fd N       read the first file's password from descriptor N\n"
        "  --version             print the version\n"
        "  --help                print this\n");
}

}
