#include "widget/reload/FileEvents.h"

#include <sys/inotify.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <utility>

namespace velko::vkit {

namespace {

constexpr std::uint32_t kInFolder =
    IN_MOVED_TO | IN_MOVED_FROM | IN_CREATE | IN_DELETE | IN_DELETE_SELF | IN_MOVE_SELF;
constexpr std::uint32_t kOfFile =
    IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF;

// Disks whose files other machines change, of which the system here hears nothing.
bool IsFarAway(const std::string& strFolder) {
    constexpr std::array<std::uint32_t, 6> kFar{
        0x6969,     // NFS
        0xff534d42, // CIFS
        0xfe534d42, // SMB2
        0x65735546, // FUSE
        0x01021997, // 9P
        0x00c36400, // Ceph
    };
    struct statfs status {};
    return ::statfs(strFolder.c_str(), &status) != 0 ||
           std::find(kFar.begin(), kFar.end(), static_cast<std::uint32_t>(status.f_type)) !=
               kFar.end();
}

std::pair<std::string, std::string> Split(const std::string& strPath) {
    const std::size_t nName = strPath.rfind('/') + 1;
    return {strPath.substr(0, std::max<std::size_t>(nName, 1)), strPath.substr(nName)};
}

std::optional<std::string> Resolve(const std::string& strPath) {
    const std::unique_ptr<char, decltype(&std::free)> szReal(::realpath(strPath.c_str(), nullptr),
                                                             &std::free);
    return szReal ? std::optional<std::string>(szReal.get()) : std::nullopt;
}

}

FileEvents::Watches::~Watches() {
    if (nDescriptor >= 0) {
        ::close(nDescriptor);
    }
}

FileEvents::FileEvents(std::function<void(Kind)> fnTell) : m_fnTell(std::move(fnTell)) {}

FileEvents::~FileEvents() = default;

void FileEvents::Watch(const FilePath& path) {
    Begin(this, path.Bytes(), ++m_nWatching);
}

void FileEvents::Stop() {
    ++m_nWatching;
    m_pNotifier.reset();
    m_pWatches.reset();
}

// The folder tells of names, the file of its bytes, so that what goes on beside it in a
// busy folder wakes nobody.
FileEvents::WatchesPtr FileEvents::Arm(const std::string& strPath) {
    auto pWatches = std::make_shared<Watches>();
    pWatches->nDescriptor = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (pWatches->nDescriptor < 0) {
        return pWatches;
    }
    bool bComplete = true;
    const auto fnAdd = [&](const std::string& strWhat, std::uint32_t nMask, std::string strName) {
        const int nWatch = ::inotify_add_watch(pWatches->nDescriptor, strWhat.c_str(), nMask);
        if (nWatch >= 0) {
            pWatches->names.emplace(nWatch, std::move(strName));
        }
        bComplete = bComplete && nWatch >= 0;
    };
    const auto [strFolder, strName] = Split(strPath);
    fnAdd(strFolder, kInFolder | IN_ONLYDIR, strName);
    if (const auto strReal = Resolve(strPath)) {
        const auto [strRealFolder, strRealName] = Split(*strReal);
        fnAdd(strRealFolder, kInFolder | IN_ONLYDIR, strRealName);
        fnAdd(*strReal, kOfFile, {});
    }
    pWatches->bComplete = bComplete && !IsFarAway(strFolder);
    return pWatches;
}

concurrency::task<void> FileEvents::Begin(QPointer<FileEvents> pSelf, std::string strPath,
                                          int nWatching) {
    const auto arming = concurrency::create_task([strPath] { return Arm(strPath); });
    WatchesPtr pWatches = co_await arming;
    if (pSelf && pSelf->m_nWatching == nWatching) {
        pSelf->Take(std::move(pWatches));
    }
}

// What happened before the watches stood is found by a look.
void FileEvents::Take(WatchesPtr pWatches) {
    m_pNotifier.reset();
    m_pWatches = std::move(pWatches);
    if (m_pWatches->nDescriptor >= 0) {
        m_pNotifier =
            std::make_unique<QSocketNotifier>(m_pWatches->nDescriptor, QSocketNotifier::Read);
        connect(m_pNotifier.get(), &QSocketNotifier::activated, this, &FileEvents::Read);
    }
    m_fnTell(Kind::Written);
}

void FileEvents::Read() {
    constexpr std::size_t kRoom = 16'384;
    alignas(inotify_event) std::array<char, kRoom> room;
    const WatchesPtr pWatches = m_pWatches;
    const ssize_t nRead = ::read(pWatches->nDescriptor, room.data(), room.size());
    bool bHit = false;
    bool bDone = false;
    for (ssize_t nAt = 0; nAt + static_cast<ssize_t>(sizeof(inotify_event)) <= nRead;) {
        inotify_event event{};
        std::memcpy(&event, room.data() + nAt, sizeof event);
        const std::string strName =
            event.len > 0 ? std::string(room.data() + nAt + sizeof event) : std::string();
        nAt += static_cast<ssize_t>(sizeof event + event.len);
        const auto [first, end] = pWatches->names.equal_range(event.wd);
        const bool bOurs =
            event.wd < 0 || strName.empty() ||
            std::any_of(first, end, [&](const auto& item) { return item.second == strName; });
        bHit = bHit || bOurs;
        if (bOurs) {
            bDone = (event.mask & (IN_CLOSE_WRITE | IN_MOVED_TO)) != 0 ||
                    (bDone && (event.mask & IN_MODIFY) == 0);
        }
    }
    if (bHit) {
        m_fnTell(bDone ? Kind::WriterDone : Kind::Written);
    }
}

}
