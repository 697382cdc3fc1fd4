// A buffer that a read fills.
#pragma once

#include <sys/mman.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <span>

#include "platform/storage/Buffer.h"

namespace Windows::Storage::Streams {

// Bytes not written to yet are zeros of the system's, which cost nothing until
// they are touched. Raises `std::bad_alloc`. Threads: one at a time until it is
// handed over.
class FillBuffer final : public IBuffer {
public:
    explicit FillBuffer(std::size_t nCapacity)
        : m_nCapacity(nCapacity),
          m_pBytes(
              static_cast<std::uint8_t*>(std::calloc(std::max<std::size_t>(nCapacity, 1), 1))) {
        if (!m_pBytes) {
            throw std::bad_alloc();
        }
        AskForLargePages();
    }

    std::span<const std::uint8_t> Bytes() const override { return {m_pBytes.get(), m_nFilled}; }

    std::span<std::uint8_t> Storage() { return {m_pBytes.get(), m_nCapacity}; }
    void SetFilled(std::size_t nFilled) { m_nFilled = nFilled; } // at most the capacity

private:
    // A fault for each 4 KiB costs a large read more than its copying does. Only
    // asked for, on the whole pages within; where there are none it is the same.
    void AskForLargePages() {
        constexpr std::size_t kPage = 4096;
        constexpr std::size_t kWorthIt = std::size_t{4} << 20;
        void* pFirst = m_pBytes.get();
        std::size_t nLength = m_nCapacity;
        if (nLength >= kWorthIt && std::align(kPage, kWorthIt / 2, pFirst, nLength) != nullptr) {
            ::madvise(pFirst, nLength / kPage * kPage, MADV_HUGEPAGE);
        }
    }

    struct Free {
        void operator()(std::uint8_t* pBytes) const { std::free(pBytes); }
    };

    std::size_t m_nCapacity;
    std::unique_ptr<std::uint8_t, Free> m_pBytes;
    std::size_t m_nFilled = 0;
};

}
