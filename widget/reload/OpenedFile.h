// The file of a document as a view gives it to the control: it remembers what was pinned
// for the document, so that the view knows which version it shows.
//
// Threads: any. Errors: as those of the file it stands for.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/concurrency/Task.h"
#include "platform/storage/StorageFile.h"

namespace velko::vkit {

class OpenedFile final : public Windows::Storage::StorageFile {
public:
    using StorageFile = Windows::Storage::StorageFile;
    using FilePtr = std::shared_ptr<StorageFile>;

    explicit OpenedFile(const std::string& strPath);
    // Its pinning gives `pPinned`, which has been looked at already, whatever the path
    // names by then.
    explicit OpenedFile(FilePtr pPinned);

    // What the document reads; empty before it is opened, and after it has gone.
    FilePtr Pinned() const;
    // What its pinning will give, where that is settled already.
    FilePtr Judged() const;
    // Of what was pinned; empty until it is known, which is before the first bytes are read.
    std::optional<Windows::Storage::FileVersion> Version() const;

    std::string Path() const override { return m_pFile->Path(); }
    std::string Name() const override { return m_pFile->Name(); }
    std::uint32_t Attributes() const override { return m_pFile->Attributes(); }
    bool HasOtherNames() const override { return m_pFile->HasOtherNames(); }
    Windows::Foundation::AsyncOperation<Windows::Storage::BasicProperties> GetBasicPropertiesAsync()
        override;
    Windows::Foundation::AsyncOperation<Windows::Storage::FileVersion> GetVersionAsync() override;
    Windows::Foundation::AsyncOperation<
        std::shared_ptr<Windows::Storage::Streams::IRandomAccessStream>>
    OpenAsync(Windows::Storage::FileAccessMode eMode) override;
    FilePtr PinForReading() override;
    Windows::Foundation::AsyncAction CopyAndReplaceAsync(FilePtr pTarget) override;
    Windows::Foundation::AsyncOperation<Windows::Storage::FileVersion> ReplaceUnchangedAsync(
        FilePtr pTarget, const Windows::Storage::FileVersion& expected) override;
    Windows::Foundation::AsyncOperation<std::shared_ptr<Windows::Storage::StorageStreamTransaction>>
    OpenTransactedWriteAsync() override;
    Windows::Foundation::AsyncAction DeleteAsync() override;

private:
    FilePtr Source() const; // of the sizes that the opening asks for

    const FilePtr m_pFile; // by its path
    mutable std::mutex m_lock;
    FilePtr m_pJudged; // held until it is pinned
    std::weak_ptr<StorageFile> m_wkPinned;
    std::optional<concurrency::task<Windows::Storage::FileVersion>> m_version;
};

}
