// A document's bytes in memory, with reads that fail by script.
//
// Threads: any.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <limits>
#include <span>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include "document/engine/IFileReaderCallback.h"
#include "platform/storage/FileChangedException.h"

namespace velko::testing {

class MemoryReader final : public common::vxbase::IFileReaderCallback {
public:
    enum class Fault { Refuse, Raise, Changed };
    using Clock = std::chrono::steady_clock;
    static constexpr int kNever = std::numeric_limits<int>::max();

    explicit MemoryReader(std::string strBytes) : m_strBytes(std::move(strBytes)) {}

    std::uint32_t GetSize() override { return static_cast<std::uint32_t>(m_strBytes.size()); }

    bool ReadBlock(std::span<std::uint8_t> destination, std::uint64_t nOffset,
                   std::uint32_t nSize) override {
        const int nRead = ++m_nReads;
        if (nOffset + nSize > m_strBytes.size() || nSize != destination.size()) {
            ++m_nBadReads;
            return false;
        }
        if (nRead >= m_nFirstFault && nRead <= m_nLastFault) {
            ++m_nFaults;
            if (m_eFault == Fault::Raise) {
                throw std::runtime_error("scripted read fault");
            }
            if (m_eFault == Fault::Changed) {
                throw Platform::FileChangedException();
            }
            return false;
        }
        while (Clock::now() < m_slowUntil.load()) {
            std::this_thread::yield();
        }
        std::memcpy(destination.data(), m_strBytes.data() + nOffset, nSize);
        return true;
    }

    bool Release() override {
        ++m_nReleases;
        return true;
    }

    // The `nRead`-th read from now (1 is the next) fails, and those after it too
    // when `bForEver` is set.
    void FailRead(int nRead, bool bForEver = false, Fault eFault = Fault::Refuse) {
        m_nFirstFault = m_nReads + nRead;
        m_nLastFault = bForEver ? kNever : m_nFirstFault.load();
        m_eFault = eFault;
    }
    void StopFailing() { m_nFirstFault = kNever; }

    // Until then no read ends.
    void BeSlowUntil(Clock::time_point time) { m_slowUntil = time; }

    int Reads() const { return m_nReads; }
    int Faults() const { return m_nFaults; }
    int BadReads() const { return m_nBadReads; } // beyond the end, or of a wrong length
    int Releases() const { return m_nReleases; }

private:
    std::string m_strBytes;
    std::atomic<int> m_nReads = 0;
    std::atomic<int> m_nFaults = 0;
    std::atomic<int> m_nBadReads = 0;
    std::atomic<int> m_nReleases = 0;
    std::atomic<int> m_nFirstFault = kNever;
    std::atomic<int> m_nLastFault = kNever;
    std::atomic<Fault> m_eFault = Fault::Refuse;
    std::atomic<Clock::time_point> m_slowUntil{};
};

}
