#include "tools/replay/Counters.h"

#include <sys/resource.h>

namespace velko::replay {

std::int64_t PeakRssKb() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

}
