// The file that a save writes: a transaction's stream, used by offsets, with calls that
// wait for the disk.
//
// Until `Commit` the file is untouched; letting go of this before leaves nothing.
// Threads: one at a time, never the UI thread. Units: bytes.
// Errors: the platform's exceptions of the stream, `task_canceled` when the pool that the
// thread belongs to ends while it waits.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "document/engine/IFileReaderCallback.h"
#include "platform/storage/StorageFile.h"
#include "platform/storage/StorageStreamTransaction.h"

namespace velko::engines::mupdf {

class SaveTarget {
public:
    explicit SaveTarget(const std::shared_ptr<Windows::Storage::StorageFile>& pFile);

    std::uint64_t Size() const { return m_nSize; }

    // At most one byte beyond the end is where it may begin.
    void Write(std::uint64_t nOffset, std::span<const std::uint8_t> bytes);

    void Cut(std::uint64_t nSize); // at most the size

    // Raises `ReadFaultException` when fewer bytes come.
    void Read(std::uint64_t nOffset, std::span<std::uint8_t> destination);

    void Commit();

private:
    std::shared_ptr<Windows::Storage::StorageStreamTransaction> m_pTransaction;
    std::shared_ptr<Windows::Storage::Streams::IRandomAccessStream> m_pStream;
    std::uint64_t m_nSize = 0;
};

// What was written so far, for the engine to open. It holds the target.
class SavedReader final : public common::vxbase::IFileReaderCallback {
public:
    // Raises `EngineException` (e_ErrFile) for a file that is too large to be opened again.
    explicit SavedReader(std::shared_ptr<SaveTarget> pTarget);

    std::uint32_t GetSize() override;
    bool ReadBlock(std::span<std::uint8_t> destination, std::uint64_t nOffset,
                   std::uint32_t nSize) override;
    bool Release() override { return true; }

private:
    std::shared_ptr<SaveTarget> m_pTarget;
};

}
