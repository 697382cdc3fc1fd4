#include "tests/replay/ReplayProcess.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <QJsonDocument>

namespace velko::testing {

namespace {

constexpr int kLimit = 60'000; // milliseconds

}

ReplayProcess::ReplayProcess(const std::vector<std::string>& arguments) {
    QStringList words;
    for (const std::string& strWord : arguments) {
        words.push_back(QString::fromStdString(strWord));
    }
    m_process.start(VELKO_REPLAY, words);
    EXPECT_TRUE(m_process.waitForStarted(kLimit));
}

ReplayProcess::~ReplayProcess() {
    m_process.kill();
    m_process.waitForFinished(kLimit);
}

void ReplayProcess::Send(const std::string& strLine) {
    m_process.write((strLine + '\n').c_str());
}

// None at the end of the output, or when the process takes too long.
std::optional<std::string> ReplayProcess::ReadLine() {
    while (!m_process.canReadLine()) {
        if (!m_process.waitForReadyRead(kLimit)) {
            m_process.kill();
            return std::nullopt;
        }
    }
    return m_process.readLine().chopped(1).toStdString();
}

QJsonObject ReplayProcess::Run(const QJsonObject& command) {
    const QByteArray text = QJsonDocument(command).toJson(QJsonDocument::Compact);
    Send(text.toStdString());
    while (const std::optional<std::string> strLine = ReadLine()) {
        const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(*strLine));
        EXPECT_TRUE(document.isObject()) << "no JSON object: " << *strLine;
        if (document.object().contains("op")) {
            return document.object();
        }
        m_events.push_back(document.object());
    }
    ADD_FAILURE() << "no answer in time, or none at all, to " << text.constData() << "\n"
                  << Errors();
    return {};
}

std::vector<std::string> ReplayProcess::EventNames(const std::vector<std::string>& wanted) const {
    std::vector<std::string> names;
    for (const QJsonObject& event : m_events) {
        std::string strName = event.value("event").toString().toStdString();
        if (std::find(wanted.begin(), wanted.end(), strName) == wanted.end()) {
            continue;
        }
        if (event.contains("page")) {
            strName += ' ' + std::to_string(event.value("page").toInt());
        }
        names.push_back(std::move(strName));
    }
    return names;
}

int ReplayProcess::Finish() {
    m_process.closeWriteChannel();
    while (const std::optional<std::string> strLine = ReadLine()) {
        m_rest.push_back(*strLine);
    }
    m_process.waitForFinished(kLimit);
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

std::string ReplayProcess::Errors() {
    return m_strErrors += m_process.readAllStandardError().toStdString();
}

}
