// Every file of the shared corpus through velko-replay: it ends as its index
// says, within a minute, and leaves no process dead or stuck.
//
// Where the corpus is not at hand the test is skipped.
#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>

#include <QFile>
#include <QJsonArray>
#include <QRegularExpression>

#include "tests/replay/ReplayProcess.h"

namespace velko::testing {

namespace {

constexpr int kWorkers = 2;

struct Row {
    QString path;
    QString password; // the first of those that the index names
    QString expected;
    int nPages = 0;
};

std::vector<Row> RowsOf(const QString& folder) {
    QFile file(folder + "/INDEX.tsv");
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const auto fnFields = [&] { return QString::fromUtf8(file.readLine()).chopped(1).split('\t'); };
    const QStringList header = fnFields();
    std::vector<Row> rows;
    while (!file.atEnd()) {
        const QStringList fields = fnFields();
        // The column of that name, or one whose name begins with it.
        const auto fnField = [&](const char* szName) {
            return fields.value(header.indexOf(QRegularExpression(QString("^%1.*").arg(szName))));
        };
        const QString first = fnField("password").section(" / ", 0, 0);
        const Row row{folder + '/' + fnField("file"), first == "(none)" ? QString() : first,
                      fnField("expected"), fnField("pages").toInt()};
        if (QFile::exists(row.path)) { // some are only made when they are needed
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
    const bool bSlow = row.expected.contains("over 30 s");
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
    const bool bPartly = row.expected.contains("partly");
    for (const QJsonValue& block : items[0]["blocks"].toArray()) {
        if (block["display"].toBool() && !block["bitmap"].isArray() && !bPartly && !bSlow) {
            return "a block of its first page stays blank";
        }
    }
    return {};
}

// What is wrong with how the file ends; empty when it ends as it should.
std::string Check(ReplayProcess& replay, const Row& row) {
    const QJsonObject open{{"op", "open"}, {"path", row.path}};
    QJsonObject answer = replay.Run(open);
    if (row.expected == "format error") {
        const QJsonValue error = answer.value("error");
        return error == QJsonValue(2) || error == QJsonValue(1)
                   ? std::string()
                   : "no format error but " + Describe(answer);
    }
    if (row.expected == "password") {
        if (answer.value("error") != QJsonValue(3)) {
            return "asks for no password but ends with " + Describe(answer);
        }
        QJsonObject withPassword = open;
        withPassword["password"] = row.password;
        answer = replay.Run(withPassword);
    }
    return answer.value("error") == QJsonValue(0) ? CheckShown(replay, row)
                                                  : "does not open: " + Describe(answer);
}

// The same of a process for it alone, which has to end well too.
std::string Check(const Row& row) {
    ReplayProcess replay({"--size", "600x800"});
    const std::string strProblem = Check(replay, row);
    const int nStatus = replay.Finish();
    return nStatus == 0 ? strProblem
                        : strProblem + " ends with status " + std::to_string(nStatus) + "\n" +
                              replay.Errors();
}

// Runs the rows on several threads; the problems, each with its file's name.
std::vector<std::string> CheckAll(const std::vector<Row>& rows) {
    std::atomic<std::size_t> nNext{0};
    std::mutex lock;
    std::vector<std::string> problems;
    const auto fnWork = [&] {
        for (std::size_t n = nNext++; n < rows.size(); n = nNext++) {
            const std::string strProblem = Check(rows[n]);
            const std::lock_guard<std::mutex> guard(lock);
            if (!strProblem.empty()) {
                problems.push_back(rows[n].path.toStdString() + ": " + strProblem);
            }
        }
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
    const QString folder = QString(VELKO_CORPUS) + '/' + GetParam();
    if (!QFile::exists(folder + "/INDEX.tsv")) {
        GTEST_SKIP() << "no corpus at " << folder.toStdString();
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
