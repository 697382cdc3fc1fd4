#include "app/viewer/instance/InstanceAsker.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <utility>

namespace velko::viewer {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

InstanceAsker::InstanceAsker(const InstanceCall& call) : m_asked(steady_clock::now()) {
    for (const std::string& strSocket : InstanceFolder::Sockets()) {
        if (Descriptor socket = InstanceFolder::Connect(strSocket); socket.IsOpen()) {
            m_asking.push_back(std::move(socket));
        }
    }
    if (m_asking.empty()) {
        return;
    }
    InstanceCall full = call;
    struct stat status {};
    if (::stat(call.strPath.c_str(), &status) == 0) {
        full.nDevice = status.st_dev;
        full.nFile = status.st_ino;
    }
    const QByteArray bytes = full.Bytes();
    std::erase_if(m_asking, [&](const Descriptor& socket) {
        return ::send(socket.Get(), bytes.data(), static_cast<std::size_t>(bytes.size()),
                      MSG_NOSIGNAL) != bytes.size();
    });
}

bool InstanceAsker::IsTaken() {
    while (!m_bTaken && !m_asking.empty()) {
        const auto left =
            kLongest - std::chrono::duration_cast<milliseconds>(steady_clock::now() - m_asked);
        if (!WaitForAnswer(std::max(left, milliseconds(0)))) {
            break;
        }
    }
    m_asking.clear(); // who has not answered is not to act on it any more
    return m_bTaken;
}

// False when none has come in time.
bool InstanceAsker::WaitForAnswer(milliseconds left) {
    std::vector<pollfd> waiting;
    for (const Descriptor& socket : m_asking) {
        waiting.push_back({socket.Get(), POLLIN, 0});
    }
    if (::poll(waiting.data(), waiting.size(), static_cast<int>(left.count())) <= 0) {
        return false;
    }
    for (std::size_t n = waiting.size(); n-- > 0;) {
        char chAnswer = 0;
        if (waiting[n].revents != 0) {
            m_bTaken |= ::recv(waiting[n].fd, &chAnswer, 1, 0) == 1 && chAnswer == 'y';
            m_asking.erase(m_asking.begin() + static_cast<std::ptrdiff_t>(n));
        }
    }
    return true;
}

}
