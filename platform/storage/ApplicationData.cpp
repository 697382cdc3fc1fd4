#include "platform/storage/ApplicationData.h"

#include <mutex>
#include <utility>

#include "platform/storage/PosixCalls_p.h"
#include "platform/storage/SettingsCodec_p.h"
#include "platform/storage/SettingsStore_p.h"
#include "platform/storage/StorageFolder.h"

namespace Windows::Storage {

using AccessCache::AccessListEntry;
using AccessCache::StorageItemMostRecentlyUsedList;
using Foundation::PropertyValue;

namespace {

std::mutex g_currentLock;
std::shared_ptr<ApplicationData> g_pCurrent; // guarded by g_currentLock

using StorePtr = std::shared_ptr<SettingsStore>;

class Values final : public ISettingsValues {
public:
    Values(StorePtr pStore, std::string strContainer)
        : m_pStore(std::move(pStore)), m_strContainer(std::move(strContainer)) {}

    bool HasKey(const std::string& strKey) const override { return TryLookup(strKey).has_value(); }

    std::optional<PropertyValue> TryLookup(const std::string& strKey) const override {
        std::optional<PropertyValue> value;
        m_pStore->Look([&](const SettingsImage& image) {
            value = image.Find({m_strContainer, strKey});
        });
        return value;
    }

    void Insert(const std::string& strKey, const PropertyValue& value) override {
        m_pStore->Change([&, copy = Copied(value)](SettingsImage& image) {
            image.Insert({m_strContainer, strKey}, copy);
        });
    }

    void Remove(const std::string& strKey) override {
        m_pStore->Change([&](SettingsImage& image) { image.Remove({m_strContainer, strKey}); });
    }

private:
    const StorePtr m_pStore;
    const std::string m_strContainer;
};

class Container final : public ApplicationDataContainer {
public:
    Container(StorePtr pStore, std::string strPath)
        : m_pStore(std::move(pStore)), m_strPath(std::move(strPath)) {}

    std::shared_ptr<ISettingsValues> Values() override {
        return std::make_shared<Storage::Values>(m_pStore, m_strPath);
    }

    std::shared_ptr<ApplicationDataContainer> CreateContainer(
        const std::string& strName, ApplicationDataCreateDisposition eDisposition) override {
        const std::string strPath = ContainerPath(m_strPath, strName);
        bool bThere = eDisposition == ApplicationDataCreateDisposition::Always;
        if (!bThere) {
            m_pStore->Look(
                [&](const SettingsImage& image) { bThere = image.HasContainer(strPath); });
        }
        if (!bThere) {
            throw Platform::FileNotFoundException("no container " + strName);
        }
        return std::make_shared<Container>(m_pStore, strPath);
    }

private:
    const StorePtr m_pStore;
    const std::string m_strPath;
};

class RecentList final : public StorageItemMostRecentlyUsedList {
public:
    explicit RecentList(StorePtr pStore) : m_pStore(std::move(pStore)) {}

    std::vector<AccessListEntry> Entries() const override {
        std::vector<AccessListEntry> entries;
        m_pStore->Look([&](const SettingsImage& image) {
            for (const RecentFile& file : image.Contents().recent) {
                entries.push_back({file.strToken, file.strMetadata});
            }
        });
        return entries;
    }

    std::string Add(const std::string& strPath, const std::string& strMetadata) override {
        std::string strToken;
        m_pStore->Change(
            [&](SettingsImage& image) { strToken = image.AddRecent(strPath, strMetadata); });
        return strToken;
    }

    void Remove(const std::string& strToken) override {
        m_pStore->Change([&](SettingsImage& image) { image.RemoveRecent(strToken); });
    }

private:
    const StorePtr m_pStore;
};

// A store for users of it: when the last of them goes, what they set is stored.
StorePtr OpenStore(const std::string& strFolder) {
    auto pStore = std::make_shared<SettingsStore>(strFolder);
    SettingsStore* const p = pStore.get();
    return StorePtr(p, [pStore = std::move(pStore)](SettingsStore*) { pStore->Flush(); });
}

class StoredApplicationData final : public ApplicationData {
public:
    explicit StoredApplicationData(const std::string& strFolder) : m_pStore(OpenStore(strFolder)) {}

    std::string LocalFolder() const override { return m_pStore->Folder(); }
    std::shared_ptr<ApplicationDataContainer> LocalSettings() override {
        return std::make_shared<Container>(m_pStore, "");
    }
    std::shared_ptr<StorageItemMostRecentlyUsedList> MostRecentlyUsedList() override {
        return std::make_shared<RecentList>(m_pStore);
    }
    void InTransaction(const std::function<void()>& fnBody) override {
        m_pStore->InTransaction(fnBody);
    }
    void Flush() override { m_pStore->Flush(); }
    Foundation::Event<const StoreFailure&>& StoreFailed() override { return m_pStore->Failed(); }
    std::optional<StoreFailure> Failure() const override { return m_pStore->Failure(); }

private:
    const StorePtr m_pStore;
};

}

std::shared_ptr<StorageFolder> ApplicationData::LocalStorageFolder() {
    Posix::MakeFolders(LocalFolder());
    return StorageFolder::FromPath(LocalFolder());
}

std::shared_ptr<ApplicationData> ApplicationData::Current() {
    const std::lock_guard<std::mutex> lock(g_currentLock);
    if (!g_pCurrent) {
        throw Platform::Exception(Platform::E_FAIL, "no application data is installed");
    }
    return g_pCurrent;
}

void ApplicationData::SetCurrent(std::shared_ptr<ApplicationData> pCurrent) {
    const std::lock_guard<std::mutex> lock(g_currentLock);
    std::swap(g_pCurrent, pCurrent);
}

std::shared_ptr<ApplicationData> OpenApplicationData(const std::string& strFolder) {
    return std::make_shared<StoredApplicationData>(Posix::MakeAbsolute(strFolder));
}

}
