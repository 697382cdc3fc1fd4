#include "bench/Measured.h"

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>

namespace velko::bench {

namespace {

double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

}

Stopwatch::Stopwatch() : m_wall(std::chrono::steady_clock::now()), m_dbCpu(CpuNow()) {}

double Stopwatch::WallSeconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_wall).count();
}

double Stopwatch::CpuSeconds() const {
    return CpuNow() - m_dbCpu;
}

double Stopwatch::CpuNow() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
}

double Series::Min() const {
    return *std::min_element(m_values.begin(), m_values.end());
}

double Series::Max() const {
    return *std::max_element(m_values.begin(), m_values.end());
}

double Series::Median() const {
    std::vector<double> sorted = m_values;
    std::sort(sorted.begin(), sorted.end());
    return sorted[sorted.size() / 2];
}

std::string Series::Text(const char* szUnit) const {
    char szText[160];
    std::snprintf(szText, sizeof szText, "min %.3f, median %.3f, max %.3f %s (%zu runs)", Min(),
                  Median(), Max(), szUnit, m_values.size());
    return szText;
}

void PrintRatio(const std::string& strWhat, const Series& control, const Series& floor,
                const char* szUnit) {
    std::printf(
        "%s\n  control  %s\n  floor    %s\n  ratio    %.2f of the minima, %.2f of the medians\n",
        strWhat.c_str(), control.Text(szUnit).c_str(), floor.Text(szUnit).c_str(),
        control.Min() / floor.Min(), control.Median() / floor.Median());
    std::fflush(stdout);
}

}
