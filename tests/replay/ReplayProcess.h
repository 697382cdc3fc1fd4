// A running velko-replay: send it a command, get its answer.
//
//     ReplayProcess replay({"--size", "400x600"});
//     const QJsonObject opened = replay.Run({{"op", "open"}, {"path", strPath}});
//     EXPECT_EQ(replay.Finish(), 0);
//
// A command that does not answer within a minute fails the test and ends the
// process. Threads: one at a time.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <QJsonObject>
#include <QProcess>

namespace velko::testing {

class ReplayProcess {
public:
    explicit ReplayProcess(const std::vector<std::string>& arguments = {});
    ~ReplayProcess();
    ReplayProcess(const ReplayProcess&) = delete;
    ReplayProcess& operator=(const ReplayProcess&) = delete;

    // Sends a command and waits for its line; the events before it go to `Events`.
    QJsonObject Run(const QJsonObject& command);

    // Sends a line as it stands and waits for nothing.
    void Send(const std::string& strLine);

    // The events of all commands so far, or since `ClearEvents`.
    const std::vector<QJsonObject>& Events() const { return m_events; }
    void ClearEvents() { m_events.clear(); }

    // The events of these names, as "Name" or "Name page", in their order.
    std::vector<std::string> EventNames(const std::vector<std::string>& wanted) const;

    // Ends the input and waits; the exit status, or -1 for a death by signal.
    int Finish();
    // Lines that nobody asked for; after `Finish`.
    const std::vector<std::string>& RestOfOutput() const { return m_rest; }
    std::string Errors(); // standard error so far

private:
    std::optional<std::string> ReadLine();

    QProcess m_process;
    std::string m_strErrors;
    std::vector<QJsonObject> m_events;
    std::vector<std::string> m_rest;
};

}
