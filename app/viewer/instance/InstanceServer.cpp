#include "app/viewer/instance/InstanceServer.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

namespace velko::viewer {

namespace {

constexpr int kMostCallers = 16;
constexpr int kPatienceMs = 1'000;

// Which of them is the caller's file, by whatever path; empty when none is.
std::string SameFile(const std::vector<std::string>& shown, const InstanceCall& call) {
    for (const std::string& strPath : shown) {
        struct stat status {};
        if (call.nFile != 0 && ::stat(strPath.c_str(), &status) == 0 &&
            status.st_ino == call.nFile && status.st_dev == call.nDevice) {
            return strPath;
        }
    }
    return {};
}

}

// One call, from its coming to its answer.
class InstanceServer::Caller : public QObject {
public:
    Caller(Descriptor socket, InstanceServer& server)
        : QObject(&server),
          m_server(server),
          m_socket(std::move(socket)),
          m_notifier(m_socket.Get(), QSocketNotifier::Read) {
        ++m_server.m_nCallers;
        connect(&m_notifier, &QSocketNotifier::activated, this, &Caller::Read);
        QTimer::singleShot(kPatienceMs, this, &QObject::deleteLater);
    }
    ~Caller() override { --m_server.m_nCallers; }

    InstanceServer& Server() const { return m_server; }

    // A caller that has gone has opened the file itself.
    bool IsThere() const {
        char chAny = 0;
        const ssize_t nPeeked = ::recv(m_socket.Get(), &chAny, 1, MSG_PEEK);
        return nPeeked < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
    }
    // False when it has gone meanwhile.
    bool End(bool bShown) {
        const char chAnswer = bShown ? 'y' : 'n';
        deleteLater();
        return ::send(m_socket.Get(), &chAnswer, 1, MSG_NOSIGNAL) == 1;
    }
    // The answer goes first: the pages may take their time.
    void Take(const std::string& strPath, const InstanceCall& call) {
        if (End(true)) {
            m_server.m_hands.fnShow(strPath, call);
        }
    }

private:
    void Read() {
        std::array<char, 4096> room{};
        const ssize_t nRead = ::recv(m_socket.Get(), room.data(), room.size(), 0);
        if (nRead <= 0) {
            m_notifier.setEnabled(false);
            deleteLater();
            return;
        }
        m_bytes.append(room.data(), nRead);
        if (InstanceCall::IsBad(m_bytes)) {
            m_notifier.setEnabled(false);
            End(false);
        } else if (const auto call = InstanceCall::From(m_bytes)) {
            m_notifier.setEnabled(false);
            m_server.Answer(*this, *call);
        }
    }

    InstanceServer& m_server;
    const Descriptor m_socket;
    QSocketNotifier m_notifier;
    QByteArray m_bytes;
};

InstanceServer::InstanceServer(Hands hands, QObject* pParent)
    : QObject(pParent), m_hands(std::move(hands)), m_socket(InstanceFolder::Listen(m_strSocket)) {
    if (m_socket.IsOpen()) {
        m_pNotifier = std::make_unique<QSocketNotifier>(m_socket.Get(), QSocketNotifier::Read);
        connect(m_pNotifier.get(), &QSocketNotifier::activated, this, &InstanceServer::Accept);
    }
}

InstanceServer::~InstanceServer() {
    qDeleteAll(findChildren<Caller*>(QString(), Qt::FindDirectChildrenOnly));
    if (m_socket.IsOpen()) {
        ::unlink(m_strSocket.c_str());
    }
}

void InstanceServer::Accept() {
    Descriptor socket(::accept4(m_socket.Get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (socket.IsOpen() && m_nCallers < kMostCallers && InstanceFolder::IsOwnUsers(socket.Get())) {
        new Caller(std::move(socket), *this);
    }
}

void InstanceServer::Answer(Caller& caller, const InstanceCall& call) {
    const std::vector<std::string> shown = m_hands.fnShown();
    if (!caller.IsThere() || call.strDisplay != InstanceCall::Of({}).strDisplay || shown.empty()) {
        caller.End(false);
    } else if (std::find(shown.begin(), shown.end(), call.strPath) != shown.end()) {
        caller.Take(call.strPath, call);
    } else {
        AnswerAside(&caller, call, shown);
    }
}

// A disk may take its time to say which file a path names.
concurrency::task<void> InstanceServer::AnswerAside(QPointer<Caller> pCaller, InstanceCall call,
                                                    std::vector<std::string> shown) {
    const auto looking = concurrency::create_task([shown, call] { return SameFile(shown, call); });
    const std::string strPath = co_await looking;
    if (pCaller && pCaller->IsThere()) {
        strPath.empty() ? static_cast<void>(pCaller->End(false)) : pCaller->Take(strPath, call);
    }
}

}
