#include "tests/replay/ReplayProcess.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>

#include <QJsonDocument>

extern char** environ;

namespace velko::testing {

namespace {

std::string Text(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

struct Pipe {
    Pipe() { EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0); }
    int Reader() const { return ends[0]; }
    int Writer() const { return ends[1]; }
    std::array<int, 2> ends{-1, -1};
};

pid_t Spawn(const std::vector<std::string>& arguments, int nIn, int nOut, int nErr) {
    std::vector<std::string> words{VELKO_REPLAY};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& strWord : words) {
        pointers.push_back(strWord.data());
    }
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, nIn, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, nOut, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, nErr, STDERR_FILENO);
    pid_t nPid = -1;
    EXPECT_EQ(posix_spawn(&nPid, pointers[0], &actions, nullptr, pointers.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    return nPid;
}

}

ReplayProcess::ReplayProcess(const std::vector<std::string>& arguments, Limit limit)
    : m_limit(limit), m_nErr(memfd_create("velko-replay errors", MFD_CLOEXEC)) {
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN)); // a process that ended early shows otherwise
    const Pipe in;
    const Pipe out;
    m_nPid = Spawn(arguments, in.Reader(), out.Writer(), m_nErr);
    close(in.Reader());
    close(out.Writer());
    m_nIn = in.Writer();
    m_nOut = out.Reader();
}

ReplayProcess::~ReplayProcess() {
    if (m_nPid > 0) {
        Kill();
        waitpid(m_nPid, nullptr, 0);
    }
    for (const int nFd : {m_nIn, m_nOut, m_nErr}) {
        if (nFd >= 0) {
            close(nFd);
        }
    }
}

void ReplayProcess::Kill() {
    kill(m_nPid, SIGKILL);
}

void ReplayProcess::Send(const std::string& strLine) {
    const std::string strWhole = strLine + '\n';
    EXPECT_EQ(write(m_nIn, strWhole.data(), strWhole.size()),
              static_cast<ssize_t>(strWhole.size()));
}

// False at the end of the output, or when the process takes too long.
bool ReplayProcess::FillBuffer() {
    pollfd ready{m_nOut, POLLIN, 0};
    const auto limit = std::chrono::duration_cast<std::chrono::milliseconds>(m_limit);
    if (poll(&ready, 1, static_cast<int>(limit.count())) == 0) {
        m_bTimedOut = true;
        Kill();
        return false;
    }
    std::array<char, 65536> bytes{};
    const ssize_t nRead = read(m_nOut, bytes.data(), bytes.size());
    if (nRead <= 0) {
        return false;
    }
    m_strBuffer.append(bytes.data(), static_cast<std::size_t>(nRead));
    return true;
}

std::optional<std::string> ReplayProcess::ReadLine() {
    std::size_t nEnd = m_strBuffer.find('\n');
    while (nEnd == std::string::npos) {
        if (!FillBuffer()) {
            return std::nullopt;
        }
        nEnd = m_strBuffer.find('\n');
    }
    std::string strLine = m_strBuffer.substr(0, nEnd);
    m_strBuffer.erase(0, nEnd + 1);
    return strLine;
}

QJsonObject ReplayProcess::Run(const QJsonObject& command) {
    Send(Text(command));
    while (const std::optional<std::string> strLine = ReadLine()) {
        const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(*strLine));
        EXPECT_TRUE(document.isObject()) << "no JSON object: " << *strLine;
        if (document.object().contains("op")) {
            return document.object();
        }
        m_events.push_back(document.object());
    }
    ADD_FAILURE() << (m_bTimedOut ? "no answer in time to " : "the process ended at ")
                  << Text(command) << "\n"
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
    close(std::exchange(m_nIn, -1));
    while (const std::optional<std::string> strLine = ReadLine()) {
        m_rest.push_back(*strLine);
    }
    int nStatus = 0;
    waitpid(m_nPid, &nStatus, 0);
    m_nPid = -1;
    return WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1;
}

std::string ReplayProcess::Errors() const {
    std::string strText(static_cast<std::size_t>(lseek(m_nErr, 0, SEEK_END)), '\0');
    EXPECT_EQ(pread(m_nErr, strText.data(), strText.size(), 0),
              static_cast<ssize_t>(strText.size()));
    return strText;
}

}
