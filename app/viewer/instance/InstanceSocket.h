// How the viewer's processes of one user find each other: a folder of the session with a
// socket for each, and calls over it.
//
// A process of another user is refused on both ends; a folder that others may write to, or
// a session without one, means that nobody is found.
// Threads: any; nothing waits. Errors: none; what fails gives nothing.
#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velko::viewer {

class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int nDescriptor) : m_nDescriptor(nDescriptor) {}
    Descriptor(Descriptor&& other) noexcept;
    Descriptor& operator=(Descriptor&& other) noexcept;
    ~Descriptor();

    bool IsOpen() const { return m_nDescriptor >= 0; }
    int Get() const { return m_nDescriptor; }

private:
    int m_nDescriptor = -1;
};

// What one process asks of another.
struct InstanceCall {
    std::string strDisplay; // where the window is to be seen
    std::string strPath;    // absolute
    std::uint64_t nDevice = 0;
    std::uint64_t nFile = 0;  // with the device: which file it is, by whatever path
    std::optional<int> nPage; // as the reader counts
    QString strFind;
    std::string strActivation; // the desktop's leave to take the keys; may be empty

    // Without the file's own numbers, which cost a look at it.
    static InstanceCall Of(const std::string& strPath);
    QByteArray Bytes() const;
    // Empty as long as bytes are missing, and for what is no call: see `IsBad`.
    static std::optional<InstanceCall> From(const QByteArray& bytes);
    static bool IsBad(const QByteArray& bytes);
};

namespace InstanceFolder {

// Made if need be; empty where there can be none.
std::string Path(bool bMake);
std::vector<std::string> Sockets();

// A socket that others find only once it listens.
Descriptor Listen(std::string& strSocket);
// Not open when nobody listens there any more, which removes the socket, or when it is
// somebody else's.
Descriptor Connect(const std::string& strSocket);
bool IsOwnUsers(int nConnection);

}

}
