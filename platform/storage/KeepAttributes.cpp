#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/storage/KeepAttributes_p.h"
#include "platform/storage/PosixCalls_p.h"

namespace Windows::Storage::Posix {

namespace {

constexpr const char* kAccessList = "system.posix_acl_access";
constexpr std::size_t kMostBytes = 65536; // of a value and of all names, by the system

// Rights and seals of the old bytes, which the new ones must not inherit.
bool BelongsToTheBytes(std::string_view strName) {
    constexpr std::array<std::string_view, 3> kNames = {"security.capability", "security.evm",
                                                        "security.ima"};
    return std::find(kNames.begin(), kNames.end(), strName) != kNames.end();
}

bool MeansNone(int nError) {
    return nError == ENODATA || nError == ENOTSUP;
}

bool MeansNotAllowed(int nError) {
    return nError == EPERM || nError == EACCES || nError == ENOTSUP || nError == EINVAL;
}

std::vector<std::string> AttributeNames(const std::string& strPath) {
    std::vector<char> list(kMostBytes);
    const ssize_t nLength =
        Call("listxattr", [&] { return ::listxattr(strPath.c_str(), list.data(), list.size()); });
    if (nLength < 0 && !MeansNone(errno)) {
        RaiseError(errno, Direction::Read, strPath);
    }
    std::vector<std::string> names;
    for (ssize_t n = 0; n < nLength; n += static_cast<ssize_t>(names.back().size()) + 1) {
        names.emplace_back(list.data() + n);
    }
    return names;
}

// Empty when there is none of the name.
std::optional<std::vector<char>> AttributeOf(const std::string& strPath, const char* pszName) {
    std::vector<char> value(kMostBytes);
    const ssize_t nLength = Call("getxattr", [&] {
        return ::getxattr(strPath.c_str(), pszName, value.data(), value.size());
    });
    if (nLength < 0) {
        if (!MeansNone(errno)) {
            RaiseError(errno, Direction::Read, strPath);
        }
        return std::nullopt;
    }
    value.resize(static_cast<std::size_t>(nLength));
    return value;
}

// False when this process may not; raises when the system could not.
bool SetAttribute(int nFd, const char* pszName, const std::vector<char>& value) {
    if (Call("fsetxattr",
             [&] { return ::fsetxattr(nFd, pszName, value.data(), value.size(), 0); }) == 0) {
        return true;
    }
    if (!MeansNotAllowed(errno)) {
        RaiseError(errno, Direction::Write, pszName);
    }
    return false;
}

void KeepAttribute(int nFd, const std::string& strOld, const std::string& strName) {
    const bool bUsersOwn = strName.starts_with("user.");
    const auto value = AttributeOf(strOld, strName.c_str());
    if (value && !SetAttribute(nFd, strName.c_str(), *value) && bUsersOwn) {
        RaiseError(EACCES, Direction::Write, strOld + ": " + strName);
    }
}

enum class AccessList { None, Kept, Lost };

AccessList KeepAccessList(int nFd, const std::string& strOld) {
    if (const auto list = AttributeOf(strOld, kAccessList)) {
        return SetAttribute(nFd, kAccessList, *list) ? AccessList::Kept : AccessList::Lost;
    }
    // The folder may have given the new file a list of its own.
    if (Call("fremovexattr", [&] { return ::fremovexattr(nFd, kAccessList); }) == 0 ||
        MeansNone(errno)) {
        return AccessList::None;
    }
    if (!MeansNotAllowed(errno)) {
        RaiseError(errno, Direction::Write, strOld);
    }
    return AccessList::Lost;
}

struct KeptOwner {
    bool bUser;
    bool bGroup;
};

bool ChangeOwner(int nFd, uid_t nUser, gid_t nGroup) {
    if (Call("fchown", [&] { return ::fchown(nFd, nUser, nGroup); }) == 0) {
        return true;
    }
    if (!MeansNotAllowed(errno)) {
        RaiseError(errno, Direction::Write, "owner");
    }
    return false;
}

KeptOwner KeepOwner(int nFd, const struct stat& old) {
    constexpr auto kSameUser = static_cast<uid_t>(-1);
    const struct stat status = Status(nFd, "owner");
    const bool bGroup = status.st_gid == old.st_gid || ChangeOwner(nFd, kSameUser, old.st_gid);
    const bool bUser =
        status.st_uid == old.st_uid || ChangeOwner(nFd, old.st_uid, static_cast<gid_t>(-1));
    return {bUser, bGroup};
}

// The permissions of the old group that everybody has too, for the new group.
mode_t ForAnotherGroup(mode_t nMode) {
    const mode_t nBoth = (nMode >> 3U) & nMode & mode_t{S_IRWXO};
    return (nMode & mode_t{S_IRWXU | S_ISUID | S_ISVTX}) | nBoth << 3U | nBoth;
}

mode_t KeptMode(mode_t nOld, KeptOwner owner, AccessList eList) {
    constexpr mode_t kPermissions = 07777;
    mode_t nMode = nOld & kPermissions;
    if (!owner.bUser) {
        nMode &= ~mode_t{S_ISUID};
    }
    if (!owner.bGroup) {
        nMode = ForAnotherGroup(nMode);
    }
    // A list's entry for the owning group must not serve another one.
    const bool bListFits = eList == AccessList::None || (eList == AccessList::Kept && owner.bGroup);
    return bListFits ? nMode : nMode & mode_t{S_IRWXU};
}

// Some file systems have one mode for all their files, and let none be set.
void SetMode(int nFd, mode_t nMode, const std::string& strOld) {
    if (Call("fchmod", [&] { return ::fchmod(nFd, nMode); }) == 0) {
        return;
    }
    const int nError = errno;
    constexpr mode_t kAccess = S_IRWXU | S_IRWXG | S_IRWXO;
    if (!MeansNotAllowed(nError) || (Status(nFd, strOld).st_mode & kAccess & ~nMode) != 0) {
        RaiseError(nError, Direction::Write, strOld);
    }
}

}

void KeepAttributes(int nFd, const std::string& strOld, const struct stat& old) {
    for (const std::string& strName : AttributeNames(strOld)) {
        if (strName != kAccessList && !BelongsToTheBytes(strName)) {
            KeepAttribute(nFd, strOld, strName);
        }
    }
    const KeptOwner owner = KeepOwner(nFd, old);
    const AccessList eList = KeepAccessList(nFd, strOld);
    // Last: a change of the owner drops bits.
    SetMode(nFd, KeptMode(old.st_mode, owner, eList), strOld);
}

}
