// Repeated measurements and how they are told: minimum, median, spread.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace velko::bench {

// A moment: wall clock, and what all threads of this process have computed.
class Stopwatch {
public:
    Stopwatch();
    double WallSeconds() const; // since construction
    double CpuSeconds() const;

private:
    static double CpuNow();

    std::chrono::steady_clock::time_point m_wall;
    double m_dbCpu;
};

class Series {
public:
    void Add(double dbValue) { m_values.push_back(dbValue); }
    double Min() const;
    double Median() const;
    double Max() const;

    // "min 1.2, median 1.3, max 2.0 ms (5 runs)"
    std::string Text(const char* szUnit) const;

private:
    std::vector<double> m_values;
};

// One comparison with the floor, by the minima and by the medians.
void PrintRatio(const std::string& strWhat, const Series& control, const Series& floor,
                const char* szUnit);

}
