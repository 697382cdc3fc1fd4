// Answers the viewers that are started later: a file that is shown here is theirs to call.
//
// Threads: UI thread only. Errors: none; a process that cannot listen is not found.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QSocketNotifier>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/viewer/instance/InstanceSocket.h"
#include "platform/concurrency/Task.h"

namespace velko::viewer {

class InstanceServer : public QObject {
public:
    struct Hands {
        // The files that are shown, absolute.
        std::function<std::vector<std::string>()> fnShown;
        // Brings the window with that one, if it is there yet, to the front.
        std::function<void(const std::string& strPath, const InstanceCall& call)> fnShow;
    };

    InstanceServer(Hands hands, QObject* pParent);
    ~InstanceServer() override;

private:
    class Caller;

    void Accept();
    void Answer(Caller& caller, const InstanceCall& call);
    static concurrency::task<void> AnswerAside(QPointer<Caller> pCaller, InstanceCall call,
                                               std::vector<std::string> shown);

    const Hands m_hands;
    std::string m_strSocket;
    Descriptor m_socket;
    std::unique_ptr<QSocketNotifier> m_pNotifier;
    int m_nCallers = 0;
};

}
