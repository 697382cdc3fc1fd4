// Application data in memory: settings, recently used list and local folder.
//
// Every write can be made to fail, and counts. `LocalFolder` makes a real, empty
// temporary folder at its first call and removes it at the end;
// `LocalStorageFolder` is a folder in memory, apart from the real one.
// Threads: any.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "platform/fake/MemoryStorageFolder.h"
#include "platform/storage/ApplicationData.h"

namespace Platform::Fake {

class MemoryApplicationData final : public Windows::Storage::ApplicationData {
public:
    MemoryApplicationData();
    ~MemoryApplicationData() override;

    std::string LocalFolder() const override;
    std::shared_ptr<Windows::Storage::StorageFolder> LocalStorageFolder() override;
    std::shared_ptr<Windows::Storage::ApplicationDataContainer> LocalSettings() override;
    std::shared_ptr<Windows::Storage::AccessCache::StorageItemMostRecentlyUsedList>
    MostRecentlyUsedList() override;
    void InTransaction(const std::function<void()>& fnBody) override;

    // The local folder in memory, as what it is.
    std::shared_ptr<MemoryStorageFolder> MemoryFolder() const { return m_pFolder; }

    // The `nNth` write from now (1 is the next) raises `WriteFaultException`,
    // with `bFromThenOn` all later ones too; 0 ends that.
    void FailWrite(std::size_t nNth, bool bFromThenOn = false);
    std::size_t Writes() const;

private:
    struct Store;
    class Values;
    class Container;
    class RecentList;

    const std::shared_ptr<Store> m_pStore;
    const std::shared_ptr<MemoryStorageFolder> m_pFolder;
};

}
