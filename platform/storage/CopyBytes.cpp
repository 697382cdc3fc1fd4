#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "platform/storage/CopyBytes_p.h"
#include "platform/storage/FileChangedException.h"
#include "platform/storage/PosixCalls_p.h"

namespace Windows::Storage::Posix {

namespace {

// Half-open, in bytes.
struct Run {
    std::uint64_t nFrom;
    std::uint64_t nEnd;
};

// The run of data at or after `nFrom`; empty when only a hole is left.
std::optional<Run> NextData(int nFd, std::uint64_t nFrom, std::uint64_t nSize) {
    const off_t nData = ::lseek(nFd, static_cast<off_t>(nFrom), SEEK_DATA);
    if (nData < 0) {
        if (errno == ENXIO) {
            return std::nullopt;
        }
        return Run{nFrom, nSize}; // the file system knows no holes
    }
    const off_t nHole = ::lseek(nFd, nData, SEEK_HOLE);
    const std::uint64_t nEnd = nHole < 0 ? nSize : static_cast<std::uint64_t>(nHole);
    return Run{static_cast<std::uint64_t>(nData), std::min(nEnd, nSize)};
}

// What a file system answers that cannot copy between these two itself.
bool MeansUnable(int nError) {
    return nError == EXDEV || nError == EINVAL || nError == ENOSYS || nError == EOPNOTSUPP ||
           nError == EPERM;
}

// Lets the file system copy; gives what it leaves to be copied. In steps, so
// that a process that is told to end does.
Run CopyWithin(int nSource, int nTarget, Run run) {
    constexpr std::uint64_t kStep = std::uint64_t{64} << 20U;
    while (run.nFrom < run.nEnd) {
        auto nIn = static_cast<off_t>(run.nFrom);
        off_t nOut = nIn;
        const ssize_t nCopied = Call("copy_file_range", [&] {
            return ::copy_file_range(nSource, &nIn, nTarget, &nOut,
                                     std::min(kStep, run.nEnd - run.nFrom), 0);
        });
        if (nCopied < 0 && !MeansUnable(errno)) {
            RaiseError(errno, Direction::Write, "copy");
        }
        if (nCopied <= 0) {
            break;
        }
        run.nFrom += static_cast<std::uint64_t>(nCopied);
    }
    return run;
}

void CopyThrough(int nSource, int nTarget, Run run) {
    constexpr std::uint64_t kChunk = std::uint64_t{1} << 20U;
    std::vector<std::uint8_t> bytes(std::min(kChunk, run.nEnd - run.nFrom));
    while (run.nFrom < run.nEnd) {
        const std::span wanted = std::span(bytes).first(std::min(kChunk, run.nEnd - run.nFrom));
        const std::size_t nRead = ReadAt(nSource, run.nFrom, wanted);
        if (nRead == 0) {
            throw Platform::FileChangedException("the source became shorter");
        }
        WriteAt(nTarget, run.nFrom, wanted.first(nRead));
        run.nFrom += nRead;
    }
}

}

void CopyBytes(int nSource, int nTarget) {
    const auto nSize = static_cast<std::uint64_t>(Status(nSource, "source").st_size);
    std::uint64_t nFrom = 0;
    while (nFrom < nSize) {
        const std::optional<Run> run = NextData(nSource, nFrom, nSize);
        if (!run) {
            break;
        }
        CopyThrough(nSource, nTarget, CopyWithin(nSource, nTarget, *run));
        nFrom = run->nEnd;
    }
    SetLength(nTarget, nSize);
}

}
