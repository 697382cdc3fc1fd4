#include "app/viewer/StartClock.h"

#include <time.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <string>

namespace velko::viewer {

namespace {

constexpr double kNanosecondsPerMillisecond = 1e6;
constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

std::int64_t Now(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return now.tv_sec * kNanosecondsPerSecond + now.tv_nsec;
}

// The time of the process's start in the kernel's ticks since boot.
std::optional<std::int64_t> StartTicks() {
    constexpr int kFieldAfterName = 3;
    constexpr int kStartField = 22;
    std::ifstream file("/proc/self/stat");
    std::string strLine;
    std::getline(file, strLine);
    const auto nName = strLine.rfind(')'); // the name may hold anything
    if (nName == std::string::npos) {
        return std::nullopt;
    }
    std::istringstream fields(strLine.substr(nName + 1));
    std::string strField;
    for (int nField = kFieldAfterName; nField < kStartField; ++nField) {
        fields >> strField;
    }
    std::int64_t nTicks = 0;
    return fields >> nTicks ? std::optional(nTicks) : std::nullopt;
}

}

std::optional<double> MillisecondsSinceStart(std::optional<std::int64_t> nStartedAt) {
    if (nStartedAt) {
        return static_cast<double>(Now(CLOCK_REALTIME) - *nStartedAt) / kNanosecondsPerMillisecond;
    }
    const auto nTicks = StartTicks();
    if (!nTicks) {
        return std::nullopt;
    }
    const std::int64_t nStart = *nTicks * (kNanosecondsPerSecond / sysconf(_SC_CLK_TCK));
    return static_cast<double>(Now(CLOCK_BOOTTIME) - nStart) / kNanosecondsPerMillisecond;
}

}
