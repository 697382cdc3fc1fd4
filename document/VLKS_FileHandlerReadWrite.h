// Turns the asynchronous reads of a file into blocking ones, with the head of
// the file held in memory.
//
// The file is pinned when it is set: every read sees the bytes of that moment,
// also when the path is replaced later, or fails. `SetFile` and `PreloadFile`
// come first, once each, on one thread; reads may then run on any threads,
// several at a time, but never on the UI thread while it must stay responsive:
// a read that goes to the file blocks until the file answers, until `EndWaits`,
// or until the task pool that the calling thread belongs to ends.
// Units: bytes.
// Errors: a file that does not answer gives nothing and a line in the debug
// output. A file that was written to since it was set, which is no fault of a
// disk and heals with no second try, raises `Platform::FileChangedException`.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/concurrency/CriticalSection.h"
#include "platform/foundation/Collections.h"
#include "platform/storage/Buffer.h"
#include "platform/storage/StorageFile.h"

namespace velko::vkit {

class VLKS_FileHandlerReadWrite {
public:
    using BufferPtr = std::shared_ptr<Windows::Storage::Streams::IBuffer>;

    // How much of the head is held at most, 30 MiB.
    static constexpr std::uint32_t kCacheLimit = 0x1E00000;

    VLKS_FileHandlerReadWrite();
    virtual ~VLKS_FileHandlerReadWrite();
    VLKS_FileHandlerReadWrite(const VLKS_FileHandlerReadWrite&) = delete;
    VLKS_FileHandlerReadWrite& operator=(const VLKS_FileHandlerReadWrite&) = delete;

    // `nFileSize` is not negative. An empty file serves no reads.
    void SetFile(const std::shared_ptr<Windows::Storage::StorageFile>& pFile,
                 std::int32_t nFileSize);

    // Reads the head. False when the file did not answer. The head that is held
    // ends where the read ended; what lies behind it is read when it is asked for.
    bool PreloadFile();

    // Fills `destination` with the bytes at `nOffset`. False when nothing came,
    // and for a span that ends beyond the size told; raises
    // `OutOfBoundsException` when fewer came. A span that lies within the held
    // head comes from memory, any other whole from the file.
    bool ReadInto(std::span<std::uint8_t> destination, std::uint64_t nOffset);

    // The same, as a buffer of what came, up to `nSize`; empty when nothing did.
    BufferPtr ReadBytes(std::uint64_t nOffset, std::uint32_t nSize);

    // Ends the waits of all reads that are under way, as if the file had not
    // answered, and of those that come. Any thread.
    void EndWaits();

    std::int32_t Size() const { return m_nFileSize; }

    // What is read: the file as it was when it was set, pinned; empty without one.
    const std::shared_ptr<Windows::Storage::StorageFile>& File() const { return m_pFile; }

    // The file's own size as its stream told it last, which can be above the
    // size told to `SetFile` when that one was cut to 32 bits; 0 before.
    std::uint64_t StreamSize() const { return m_nStreamSize; }

private:
    struct PendingRead;
    using BlockList = Windows::Foundation::Collections::ObservableVector<BufferPtr>;

    bool IsWithinFile(std::uint64_t nOffset, std::uint64_t nSize) const;
    bool IsHeld(std::uint64_t nOffset, std::uint64_t nSize) const;
    std::shared_ptr<PendingRead> ReadFile(std::uint64_t nOffset, std::uint32_t nSize);
    bool BeginWait(const std::shared_ptr<PendingRead>& pRead); // false once waits are ended
    void EndWait(const std::shared_ptr<PendingRead>& pRead);

    std::shared_ptr<Windows::Storage::StorageFile> m_pFile; // pinned
    std::int32_t m_nFileSize = 0;
    std::uint64_t m_nStreamSize = 0;
    std::shared_ptr<BlockList> m_pBlocks;
    BufferPtr m_pCache; // the head that is held; empty before the preload

    concurrency::critical_section m_waitsLock; // a leaf
    std::vector<std::shared_ptr<PendingRead>> m_waits VLK_GUARDED_BY(m_waitsLock);
    bool m_bWaitsEnded VLK_GUARDED_BY(m_waitsLock) = false;
};

}
