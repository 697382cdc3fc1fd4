// A file in memory whose operations end as a test wants: when it says, on the
// thread that it says, and with the failures that it says.
//
// Pins and open streams keep the bytes of their moment and obey the same
// script, so that a document that reads through a pin still meets a failure.
// `CopyAndReplaceAsync` works between memory files only; another target is
// refused with `InvalidArgumentException`. Threads: any.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/storage/StorageFile.h"

namespace Platform::Fake {

enum class FileFailure {
    None,
    FileNotFound,
    AccessDenied,
    ReadFault,
    WriteFault,
    DiskFull,
    Canceled
};

// Where operations end: inside the call, when the test says, or on a thread
// that belongs to the files of this kind.
enum class FileCompletion { Inline, OnDemand, OwnThread };

class MemoryStorageFile final : public Windows::Storage::StorageFile {
public:
    using Data = std::vector<std::uint8_t>;
    struct ReadRecord {
        std::uint64_t Offset = 0;
        std::uint32_t Count = 0;
        friend bool operator==(const ReadRecord&, const ReadRecord&) = default;
    };

    static std::shared_ptr<MemoryStorageFile> Create(const std::string& strPath, Data bytes);

    std::string Path() const override { return m_strPath; }
    std::string Name() const override;
    std::uint32_t Attributes() const override;
    Windows::Foundation::AsyncOperation<Windows::Storage::BasicProperties> GetBasicPropertiesAsync()
        override;
    Windows::Foundation::AsyncOperation<
        std::shared_ptr<Windows::Storage::Streams::IRandomAccessStream>>
    OpenAsync(Windows::Storage::FileAccessMode eMode) override;
    std::shared_ptr<StorageFile> PinForReading() override;
    Windows::Foundation::AsyncAction CopyAndReplaceAsync(
        std::shared_ptr<StorageFile> pTarget) override;
    Windows::Foundation::AsyncAction DeleteAsync() override;

    // The script. A failure stays until it is set to `None`.
    void SetCompletion(FileCompletion eCompletion);
    void SetAttributes(std::uint32_t nAttributes);
    void FailProperties(FileFailure eFailure);
    void FailOpen(FileFailure eFailure);
    // Counted from now: 1 is the next read of any stream of this file. With
    // `bFromThenOn` all later ones fail too.
    void FailRead(std::size_t nNth, FileFailure eFailure, bool bFromThenOn = false);
    void FailReplace(FileFailure eFailure); // of this file's copy over another
    void FailDelete(FileFailure eFailure);
    // The size that the properties and streams tell, whatever there is; for
    // files that shrink or lie. Reads give the bytes that there are.
    void PretendSize(std::uint64_t nSize);

    // With `OnDemand`: ends the oldest waiting operation on the calling thread,
    // which counts as another than the UI's. False when none waits.
    bool CompleteOne();
    std::size_t CompleteAll();
    std::size_t PendingCompletions() const;

    // What happened so far.
    std::vector<ReadRecord> Reads() const;
    std::size_t Opens() const;
    bool IsDeleted() const;
    Data Bytes() const;
    // Puts another content in place, as a replacement of the path would.
    void SetBytes(Data bytes);

private:
    struct Node;
    class Stream;
    MemoryStorageFile(std::string strPath, std::shared_ptr<Node> pNode,
                      std::shared_ptr<const Data> pPinned);

    const std::string m_strPath;
    const std::shared_ptr<Node> m_pNode;
    const std::shared_ptr<const Data> m_pPinned; // empty unless pinned
};

}
