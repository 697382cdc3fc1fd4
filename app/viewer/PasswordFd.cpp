#include "app/viewer/PasswordFd.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>

namespace velko::viewer {

namespace {

constexpr std::size_t kMostBytes = std::size_t{64} << 10;

// The number of bytes that came; empty when reading failed.
std::optional<std::size_t> ReadAll(int nDescriptor, char* pBytes, std::size_t nSize) {
    std::size_t nRead = 0;
    while (nRead < nSize) {
        const ssize_t nNow = ::read(nDescriptor, pBytes + nRead, nSize - nRead);
        if (nNow == 0) {
            break;
        }
        if (nNow > 0) {
            nRead += static_cast<std::size_t>(nNow);
        } else if (errno != EINTR) {
            return std::nullopt;
        }
    }
    return nRead;
}

std::string_view WithoutLineEnd(std::string_view text) {
    for (const char chEnd : {'\n', '\r'}) {
        if (!text.empty() && text.back() == chEnd) {
            text.remove_suffix(1);
        }
    }
    return text;
}

}

std::optional<Platform::SecretText> ReadPassword(int nDescriptor) {
    std::array<char, kMostBytes + 1> bytes;
    const auto nRead = ReadAll(nDescriptor, bytes.data(), bytes.size());
    ::close(nDescriptor);
    std::optional<Platform::SecretText> password;
    if (nRead && *nRead <= kMostBytes) {
        password = WithoutLineEnd({bytes.data(), *nRead});
    }
    Platform::Wipe(bytes.data(), bytes.size());
    return password;
}

}
