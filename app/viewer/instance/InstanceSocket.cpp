#include "app/viewer/instance/InstanceSocket.h"

#include <dirent.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDataStream>
#include <QIODevice>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

namespace velko::viewer {

namespace {

constexpr quint32 kMagic = 0x564b4331; // changes with the record
constexpr qsizetype kMostBytes = 16'384;
constexpr qsizetype kHeadBytes = 8;
constexpr mode_t kOwnOnly = 0700;
constexpr int kBacklog = 8;
constexpr const char* kAside = "."; // before the name of a socket that does not listen yet

std::string Variable(const char* szName) {
    const char* const szValue = std::getenv(szName);
    return szValue != nullptr ? szValue : "";
}

bool IsPrivateFolder(const std::string& strPath) {
    struct stat status {};
    return ::lstat(strPath.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == ::geteuid() && (status.st_mode & 0077) == 0;
}

std::optional<sockaddr_un> AddressOf(const std::string& strSocket) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (strSocket.size() >= sizeof address.sun_path) {
        return std::nullopt;
    }
    std::memcpy(address.sun_path, strSocket.c_str(), strSocket.size() + 1);
    return address;
}

Descriptor NewSocket() {
    return Descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

const sockaddr* Plain(const sockaddr_un& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

}

Descriptor::Descriptor(Descriptor&& other) noexcept
    : m_nDescriptor(std::exchange(other.m_nDescriptor, -1)) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    std::swap(m_nDescriptor, other.m_nDescriptor);
    return *this;
}

Descriptor::~Descriptor() {
    if (IsOpen()) {
        ::close(m_nDescriptor);
    }
}

// --- calls -----------------------------------------------------------------

InstanceCall InstanceCall::Of(const std::string& strPath) {
    InstanceCall call;
    const std::string strWayland = Variable("WAYLAND_DISPLAY");
    call.strDisplay = strWayland.empty() ? Variable("DISPLAY") : strWayland;
    call.strPath = strPath;
    const std::string strToken = Variable("XDG_ACTIVATION_TOKEN");
    call.strActivation = strToken.empty() ? Variable("DESKTOP_STARTUP_ID") : strToken;
    return call;
}

QByteArray InstanceCall::Bytes() const {
    QByteArray body;
    QDataStream stream(&body, QIODevice::WriteOnly);
    stream << QByteArray::fromStdString(strDisplay) << QByteArray::fromStdString(strPath)
           << static_cast<quint64>(nDevice) << static_cast<quint64>(nFile)
           << static_cast<qint32>(nPage.value_or(0)) << strFind
           << QByteArray::fromStdString(strActivation);
    QByteArray bytes;
    QDataStream head(&bytes, QIODevice::WriteOnly);
    head << kMagic << static_cast<quint32>(body.size());
    return bytes + body;
}

bool InstanceCall::IsBad(const QByteArray& bytes) {
    quint32 nMagic = kMagic;
    quint32 nSize = 0;
    if (bytes.size() >= kHeadBytes) {
        QDataStream(bytes) >> nMagic >> nSize;
    }
    return nMagic != kMagic || nSize > kMostBytes || bytes.size() > kHeadBytes + kMostBytes;
}

std::optional<InstanceCall> InstanceCall::From(const QByteArray& bytes) {
    QDataStream stream(bytes);
    quint32 nMagic = 0;
    quint32 nSize = 0;
    stream >> nMagic >> nSize;
    if (IsBad(bytes) || bytes.size() < kHeadBytes + static_cast<qsizetype>(nSize)) {
        return std::nullopt;
    }
    InstanceCall call;
    QByteArray display;
    QByteArray path;
    QByteArray activation;
    quint64 nDevice = 0;
    quint64 nFile = 0;
    qint32 nPage = 0;
    stream >> display >> path >> nDevice >> nFile >> nPage >> call.strFind >> activation;
    if (stream.status() != QDataStream::Ok) {
        return std::nullopt;
    }
    call.strDisplay = display.toStdString();
    call.strPath = path.toStdString();
    call.nDevice = nDevice;
    call.nFile = nFile;
    call.nPage = nPage > 0 ? std::optional<int>(nPage) : std::nullopt;
    call.strActivation = activation.toStdString();
    return call;
}

// --- the folder ------------------------------------------------------------

std::string InstanceFolder::Path(bool bMake) {
    const std::string strSession = Variable("XDG_RUNTIME_DIR");
    if (strSession.empty() || strSession[0] != '/' || !IsPrivateFolder(strSession)) {
        return {};
    }
    const std::string strPath = strSession + "/velko-viewer";
    if (bMake) {
        ::mkdir(strPath.c_str(), kOwnOnly);
    }
    return IsPrivateFolder(strPath) ? strPath : std::string();
}

std::vector<std::string> InstanceFolder::Sockets() {
    std::vector<std::string> sockets;
    const std::string strFolder = Path(false);
    const std::unique_ptr<DIR, int (*)(DIR*)> pFolder(
        strFolder.empty() ? nullptr : ::opendir(strFolder.c_str()), &::closedir);
    while (pFolder != nullptr) {
        const dirent* const pEntry = ::readdir(pFolder.get());
        if (pEntry == nullptr) {
            break;
        }
        if (pEntry->d_name[0] != kAside[0]) {
            sockets.push_back(strFolder + '/' + pEntry->d_name);
        }
    }
    return sockets;
}

Descriptor InstanceFolder::Listen(std::string& strSocket) {
    const std::string strFolder = Path(true);
    const std::string strName = std::to_string(::getpid());
    const std::string strAside = strFolder + '/' + kAside + strName;
    const auto address = AddressOf(strAside);
    Descriptor socket = NewSocket();
    if (strFolder.empty() || !address || !socket.IsOpen()) {
        return {};
    }
    strSocket = strFolder + '/' + strName;
    ::unlink(strAside.c_str()); // of a dead process with the same number
    if (::bind(socket.Get(), Plain(*address), sizeof *address) != 0) {
        return {};
    }
    if (::listen(socket.Get(), kBacklog) != 0 ||
        std::rename(strAside.c_str(), strSocket.c_str()) != 0) {
        ::unlink(strAside.c_str());
        return {};
    }
    return socket;
}

Descriptor InstanceFolder::Connect(const std::string& strSocket) {
    const auto address = AddressOf(strSocket);
    Descriptor socket = NewSocket();
    if (!address || !socket.IsOpen()) {
        return {};
    }
    if (::connect(socket.Get(), Plain(*address), sizeof *address) != 0) {
        if (errno == ECONNREFUSED) {
            ::unlink(strSocket.c_str()); // its process has died
        }
        return {};
    }
    return IsOwnUsers(socket.Get()) ? std::move(socket) : Descriptor();
}

bool InstanceFolder::IsOwnUsers(int nConnection) {
    ucred peer{};
    socklen_t nSize = sizeof peer;
    return ::getsockopt(nConnection, SOL_SOCKET, SO_PEERCRED, &peer, &nSize) == 0 &&
           peer.uid == ::geteuid();
}

}
