// Every file of the shared corpus through velko-replay: it ends as its index
// says, within a minute, and leaves no process dead or stuck.
//
// Where the corpus is not at hand the test is skipped.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <sstream>
#include <thread>

#include <QJsonArray>

#include "tests/replay/ReplayProcess.h"

namespace velko::testing {

namespace {

namespace fs = std::filesystem;

constexpr int kWorkers = 2;

struct Row {
    fs::path path;
    std::string strPassword; // the first of those that the index names
    std::string strExpected;
    int nPages = 0;
};

std::vector<std::string> SplitTabs(const std::string& strLine) {
    std::vector<std::string> fields;
    std::istringstream line(strLine);
    for (std::string strField; std::getline(line, strField, '\t');) {
        fields.push_back(strField);
    }
    return fields;
}

// "user / owner" names two; "(none)" stands for an empty one.
std::string FirstPassword(const std::string& strField) {
    const std::string strFirst = strField.substr(0, strField.find(" / "));
    return strFirst == "(none)" ? "" : strFirst;
}

std::vector<Row> RowsOf(const fs::path& folder) {
    std::ifstream file(folder / "INDEX.tsv");
    std::string strLine;
    std::getline(file, strLine);
    const std::vector<std::string> header = SplitTabs(strLine);
    std::vector<Row> rows;
    while (std::getline(file, strLine)) {
        const std::vector<std::string> fields = SplitTabs(strLine);
        // The column of that name, or one whose name begins with it.
        const auto fnField = [&](const char* szName) {
            const auto it = std::find_if(header.begin(), header.end(), [&](const auto& strColumn) {
                return strColumn.rfind(szName, 0) == 0;
            });
            const auto nColumn = static_cast<std::size_t>(it - header.begin());
            return nColumn < fields.size() ? fields[nColumn] : std::string();
        };
        const Row row{folder / fnField("file"), FirstPassword(fnField("password")),
                      fnField("expected"), std::atoi(fnField("pages").c_str())};
        if (fs::exists(row.path)) { // some are only made when they are needed
            rows.push_back(row);
        }
    }
    return rows;
}

std::string Describe(const QJsonObject& answer) {
    return answer.contains("message") ? answer.value("message").toString().toStdString()
                                      : std::to_string(answer.value("error").toInt(-1));
}

std::string CheckShown(ReplayProcess& replay, const Row& row) {
    const QJsonObject waited = replay.Run({{"op", "wait"}, {"timeout_ms", 40000}});
    const bool bSlow = row.strExpected.find("over 30 s") != std::string::npos;
    if (!waited.value("idle").toBool() && !bSlow) {
        return "still busy after 40 s";
    }
    const QJsonObject state = replay.Run({{"op", "state"}});
    if (row.nPages > 0 && state.value("count").toInt() != row.nPages) {
        return "has " + std::to_string(state.value("count").toInt()) + " pages instead of " +
               std::to_string(row.nPages);
    }
    const QJsonArray items = state.value("items").toArray();
    if (items.isEmpty()) {
        return "shows no page";
    }
    const bool bPartly = row.strExpected.find("partly") != std::string::npos;
    for (const QJsonValue& block : items[0]["blocks"].toArray()) {
        if (block["display"].toBool() && !block["bitmap"].isArray() && !bPartly && !bSlow) {
            return "a block of its first page stays blank";
        }
    }
    return {};
}

// What is wrong with how the file ends; empty when it ends as it should.
std::string Check(ReplayProcess& replay, const Row& row) {
    const QJsonObject open{{"op", "open"}, {"path", QString::fromStdString(row.path.string())}};
    QJsonObject answer = replay.Run(open);
    if (row.strExpected == "format error") {
        const QJsonValue error = answer.value("error");
        return error == QJsonValue(2) || error == QJsonValue(1)
                   ? std::string()
                   : "no format error but " + Describe(answer);
    }
    if (row.strExpected == "password") {
        if (answer.value("error") != QJsonValue(3)) {
            return "asks for no password but ends with " + Describe(answer);
        }
        QJsonObject withPassword = open;
        withPassword["password"] = QString::fromStdString(row.strPassword);
        answer = replay.Run(withPassword);
    }
    return answer.value("error") == QJsonValue(0) ? CheckShown(replay, row)
                                                  : "does not open: " + Describe(answer);
}

// The files one after the other in a process; one that ends is started again
// with the next file.
class Worker {
public:
    std::string Run(const Row& row) {
        if (!m_pReplay) {
            m_pReplay =
                std::make_unique<ReplayProcess>(std::vector<std::string>{"--size", "600x800"});
        }
        std::string strProblem = Check(*m_pReplay, row);
        if (!m_pReplay->Run({{"op", "close"}}).contains("op")) {
            strProblem += Finish();
        }
        return strProblem;
    }
    // What is wrong with the end of the process, if one runs.
    std::string Finish() {
        if (!m_pReplay) {
            return {};
        }
        const int nStatus = m_pReplay->Finish();
        const std::string strErrors = m_pReplay->Errors();
        m_pReplay.reset();
        return nStatus == 0 ? std::string()
                            : " ends with status " + std::to_string(nStatus) + "\n" + strErrors;
    }

private:
    std::unique_ptr<ReplayProcess> m_pReplay;
};

// Runs the rows on several threads; the problems, each with its file's name.
std::vector<std::string> CheckAll(const std::vector<Row>& rows) {
    std::atomic<std::size_t> nNext{0};
    std::mutex lock;
    std::vector<std::string> problems;
    const auto fnTell = [&](const std::string& strWho, const std::string& strProblem) {
        if (!strProblem.empty()) {
            const std::lock_guard<std::mutex> guard(lock);
            problems.push_back(strWho + ": " + strProblem);
        }
    };
    const auto fnWork = [&] {
        Worker worker;
        for (std::size_t n = nNext++; n < rows.size(); n = nNext++) {
            fnTell(rows[n].path.filename().string(), worker.Run(rows[n]));
        }
        fnTell("the process of the last files", worker.Finish());
    };
    std::vector<std::jthread> workers;
    for (int n = 0; n < kWorkers; ++n) {
        workers.emplace_back(fnWork);
    }
    workers.clear(); // joins
    return problems;
}

class CorpusSweep : public ::testing::TestWithParam<const char*> {};

TEST_P(CorpusSweep, EachFileEndsAsItsIndexSays) {
    const fs::path folder = fs::path(VELKO_CORPUS) / GetParam();
    if (!fs::exists(folder / "INDEX.tsv")) {
        GTEST_SKIP() << "no corpus at " << folder;
    }
    const std::vector<Row> rows = RowsOf(folder);
    ASSERT_FALSE(rows.empty());
    RecordProperty("files", static_cast<int>(rows.size()));
    for (const std::string& strProblem : CheckAll(rows)) {
        ADD_FAILURE() << strProblem;
    }
}

INSTANTIATE_TEST_SUITE_P(Shared, CorpusSweep, ::testing::Values("open", "made"));

}

}
