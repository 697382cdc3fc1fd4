// Turns the asynchronous reads of a file into blocking ones, with the head of
// the file held in memory.
//
// The file is pinned when it is set: every read sees the bytes of that moment,
// also when the path is replaced later. `SetFile` and `PreloadFile` come first,
// once each, on one thread; reads may then run on any threads, several at a
// time, but never on the UI thread while it must stay responsive: a read that
// goes to the file blocks until the file answers.
// Units: bytes.
// Errors: a file that does not answer gives an empty result and a line in the
// debug output; nothing is raised.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "platform/foundation/Collections.h"
#include "platform/storage/Buffer.h"
#include "platform/storage/StorageFile.h"

namespace Windows::Storage::Streams {
class DataReader;
}

namespace velko::vkit {

class VLKS_FileHandlerReadWrite {
public:
    using BufferPtr = std::shared_ptr<Windows::Storage::Streams::IBuffer>;

    // How much of the head is held, 30 MiB.
    static constexpr std::uint32_t kCacheLimit = 0x1E00000;

    VLKS_FileHandlerReadWrite();
    virtual ~VLKS_FileHandlerReadWrite();
    VLKS_FileHandlerReadWrite(const VLKS_FileHandlerReadWrite&) = delete;
    VLKS_FileHandlerReadWrite& operator=(const VLKS_FileHandlerReadWrite&) = delete;

    // `nFileSize` is not negative. An empty file serves no reads.
    void SetFile(const std::shared_ptr<Windows::Storage::StorageFile>& pFile,
                 std::int32_t nFileSize);

    // Reads the head. False when the file did not answer; what could not be
    // read is then served as zeros.
    bool PreloadFile();

    // Up to `nSize` bytes at `nOffset`; empty when nothing came, and for a
    // span that ends beyond the size told. A span that ends within the cache
    // limit comes from memory, any other whole from the file.
    BufferPtr ReadBytes(std::uint64_t nOffset, std::uint32_t nSize);

    std::int32_t Size() const { return m_nFileSize; }

    // The file's own size as its stream told it last, which can be above the
    // size told to `SetFile` when that one was cut to 32 bits; 0 before.
    std::uint64_t StreamSize() const { return m_nStreamSize; }

private:
    struct PendingRead;
    // Gets the bytes that came out of the reader; called when there are any.
    using Take = std::function<void(Windows::Storage::Streams::DataReader&, std::uint32_t nLoaded)>;
    using BlockList = Windows::Foundation::Collections::ObservableVector<BufferPtr>;

    bool IsHeld(std::uint64_t nOffset, std::uint32_t nSize) const;
    std::shared_ptr<PendingRead> ReadFile(std::uint64_t nOffset, std::uint32_t nSize,
                                          Take fnTake) const;

    std::shared_ptr<Windows::Storage::StorageFile> m_pFile; // pinned
    std::int32_t m_nFileSize = 0;
    std::uint64_t m_nStreamSize = 0;
    std::shared_ptr<BlockList> m_pBlocks;
    std::unique_ptr<std::uint8_t[]> m_pCache; // empty before the preload
};

}
