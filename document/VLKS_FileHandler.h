// The reader that the engine is given: its blocking callback over
// `VLKS_FileHandlerReadWrite`.
//
// Two classes, because their lives differ: the engine may hold the handler for
// as long as it likes, while the other, with the file and the memory of its
// head, goes when the engine or the document says that it is done.
//
// Lifetime: whoever opens gives it its read-write object with `SetReadWrite`;
// the engine's `Release`, or `Dispose`, ends it. After that every operation
// raises `ObjectDisposedException`, `Release` and `Dispose` excepted. A read in
// flight ends undisturbed.
// Threads: any, several calls at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "document/VLKS_FileHandlerReadWrite.h"
#include "document/engine/IFileReaderCallback.h"
#include "platform/concurrency/CriticalSection.h"

namespace velko::vkit {

class VLKS_FileHandler final : public velko::common::vxbase::IFileReaderCallback {
public:
    void SetReadWrite(std::shared_ptr<VLKS_FileHandlerReadWrite> pReadWrite);

    std::uint32_t GetSize() override;

    // Reads as many bytes as `destination` holds; `nSize` says the same once
    // more. False, and zeros, when nothing came. Raises `OutOfBoundsException`
    // when less came, and what `VLKS_FileHandlerReadWrite` raises.
    bool ReadBlock(std::span<std::uint8_t> destination, std::uint64_t nOffset,
                   std::uint32_t nSize) override;

    bool Release() override; // always true

    // Empty when nothing came.
    VLKS_FileHandlerReadWrite::BufferPtr ReadBytes(std::uint64_t nOffset, std::uint32_t nSize);

    void Dispose();

private:
    // The read-write object, or empty while there is none.
    std::shared_ptr<VLKS_FileHandlerReadWrite> ReadWrite() const;

    mutable concurrency::critical_section m_lock; // a leaf, held for a copy only
    std::shared_ptr<VLKS_FileHandlerReadWrite> m_pReadWrite VLK_GUARDED_BY(m_lock);
    bool m_bDisposed VLK_GUARDED_BY(m_lock) = false;
};

}
