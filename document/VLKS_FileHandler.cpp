#include "document/VLKS_FileHandler.h"

#include <algorithm>
#include <utility>

#include "platform/foundation/Exception.h"

namespace velko::vkit {

using concurrency::critical_section;

void VLKS_FileHandler::SetReadWrite(std::shared_ptr<VLKS_FileHandlerReadWrite> pReadWrite) {
    const critical_section::scoped_lock lock(m_lock);
    if (m_bDisposed) {
        throw Platform::ObjectDisposedException("the file handler is closed");
    }
    m_pReadWrite = std::move(pReadWrite);
}

std::shared_ptr<VLKS_FileHandlerReadWrite> VLKS_FileHandler::ReadWrite() const {
    const critical_section::scoped_lock lock(m_lock);
    if (m_bDisposed) {
        throw Platform::ObjectDisposedException("the file handler is closed");
    }
    return m_pReadWrite;
}

std::uint32_t VLKS_FileHandler::GetSize() {
    const auto pReadWrite = ReadWrite();
    return pReadWrite ? static_cast<std::uint32_t>(pReadWrite->Size()) : 0;
}

bool VLKS_FileHandler::ReadBlock(std::span<std::uint8_t> destination, std::uint64_t nOffset,
                                 std::uint32_t nSize) {
    const auto pReadWrite = ReadWrite();
    if (nSize < destination.size()) {
        throw Platform::OutOfBoundsException("fewer bytes asked for than the destination holds");
    }
    if (pReadWrite && pReadWrite->ReadInto(destination, nOffset)) {
        return true;
    }
    std::fill(destination.begin(), destination.end(), std::uint8_t{0});
    return false;
}

VLKS_FileHandlerReadWrite::BufferPtr VLKS_FileHandler::ReadBytes(std::uint64_t nOffset,
                                                                 std::uint32_t nSize) {
    const auto pReadWrite = ReadWrite();
    return pReadWrite ? pReadWrite->ReadBytes(nOffset, nSize) : nullptr;
}

bool VLKS_FileHandler::Release() {
    Dispose();
    return true;
}

void VLKS_FileHandler::Dispose() {
    std::shared_ptr<VLKS_FileHandlerReadWrite> pLast; // closes its file after the lock
    const critical_section::scoped_lock lock(m_lock);
    m_bDisposed = true;
    pLast.swap(m_pReadWrite);
}

}
