// A folder in memory, of files in memory.
//
// Its own operations end inside the call. Threads: any.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "platform/fake/MemoryStorageFile.h"
#include "platform/storage/StorageFolder.h"

namespace Platform::Fake {

class MemoryStorageFolder final : public Windows::Storage::StorageFolder {
public:
    explicit MemoryStorageFolder(std::string strPath);

    std::string Path() const override { return m_strPath; }
    FileOperation TryGetItemAsync(const std::string& strName) override;
    FileOperation GetFileAsync(const std::string& strName) override;
    FileOperation CreateFileAsync(const std::string& strName,
                                  Windows::Storage::CreationCollisionOption eOption) override;

    // The next and all later creations fail so, until `None` is set.
    void FailCreate(FileFailure eFailure);

    // The file of that name, or empty when there is none or it is deleted.
    std::shared_ptr<MemoryStorageFile> File(const std::string& strName) const;
    void Put(const std::shared_ptr<MemoryStorageFile>& pFile);

private:
    std::shared_ptr<MemoryStorageFile> FindLocked(const std::string& strName) const;

    const std::string m_strPath;
    mutable std::mutex m_lock;
    std::map<std::string, std::shared_ptr<MemoryStorageFile>> m_files;
    FileFailure m_eCreate = FileFailure::None;
};

}
