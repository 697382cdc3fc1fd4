#include "platform/fake/MemoryApplicationData.h"

#include <stdlib.h> // mkdtemp

#include <filesystem>
#include <list>
#include <map>
#include <utility>

#include "platform/concurrency/CriticalSection.h"

namespace Platform::Fake {

using concurrency::critical_section;
using Windows::Foundation::PropertyValue;
using Windows::Storage::ApplicationDataContainer;
using Windows::Storage::ApplicationDataCreateDisposition;
using Windows::Storage::ISettingsValues;
using Windows::Storage::AccessCache::AccessListEntry;
using Windows::Storage::AccessCache::StorageItemMostRecentlyUsedList;

namespace {

struct RecentEntry {
    AccessListEntry entry;
    std::string strPath;
};

// What a transaction puts back when it fails.
struct Contents {
    std::map<std::string, std::map<std::string, PropertyValue>> containers;
    std::list<RecentEntry> recent;
};

}

struct MemoryApplicationData::Store {
    critical_section lock; // guards everything; held while a transaction's body runs
    Contents contents;
    std::size_t nWrites = 0;
    std::size_t nWritesUntilFailure = 0;
    bool bWritesKeepFailing = false;
    int nLastToken = 0;
    std::string strFolder;

    void CountWrite() {
        ++nWrites;
        if (nWritesUntilFailure == 0 || (nWritesUntilFailure > 1 && nWritesUntilFailure-- > 1)) {
            return;
        }
        nWritesUntilFailure = bWritesKeepFailing ? 1 : 0;
        throw WriteFaultException();
    }
};

class MemoryApplicationData::Values final : public ISettingsValues {
public:
    Values(std::shared_ptr<Store> pStore, std::string strContainer)
        : m_pStore(std::move(pStore)), m_strContainer(std::move(strContainer)) {}

    bool HasKey(const std::string& strKey) const override { return TryLookup(strKey).has_value(); }

    std::optional<PropertyValue> TryLookup(const std::string& strKey) const override {
        const critical_section::scoped_lock lock(m_pStore->lock);
        const auto& values = m_pStore->contents.containers[m_strContainer];
        const auto it = values.find(strKey);
        return it == values.end() ? std::nullopt : std::optional<PropertyValue>(it->second);
    }

    void Insert(const std::string& strKey, const PropertyValue& value) override {
        const critical_section::scoped_lock lock(m_pStore->lock);
        m_pStore->CountWrite();
        m_pStore->contents.containers[m_strContainer].insert_or_assign(strKey, value);
    }

    void Remove(const std::string& strKey) override {
        const critical_section::scoped_lock lock(m_pStore->lock);
        m_pStore->CountWrite();
        m_pStore->contents.containers[m_strContainer].erase(strKey);
    }

private:
    const std::shared_ptr<Store> m_pStore;
    const std::string m_strContainer;
};

class MemoryApplicationData::Container final : public ApplicationDataContainer {
public:
    Container(std::shared_ptr<Store> pStore, std::string strPath)
        : m_pStore(std::move(pStore)), m_strPath(std::move(strPath)) {}

    std::shared_ptr<ISettingsValues> Values() override {
        return std::make_shared<MemoryApplicationData::Values>(m_pStore, m_strPath);
    }

    std::shared_ptr<ApplicationDataContainer> CreateContainer(
        const std::string& strName, ApplicationDataCreateDisposition eDisposition) override {
        const critical_section::scoped_lock lock(m_pStore->lock);
        const std::string strPath = m_strPath + "/" + strName;
        auto& containers = m_pStore->contents.containers;
        if (containers.count(strPath) == 0) {
            if (eDisposition == ApplicationDataCreateDisposition::Existing) {
                throw FileNotFoundException("no container " + strName);
            }
            m_pStore->CountWrite();
            containers[strPath];
        }
        return std::make_shared<Container>(m_pStore, strPath);
    }

private:
    const std::shared_ptr<Store> m_pStore;
    const std::string m_strPath;
};

class MemoryApplicationData::RecentList final : public StorageItemMostRecentlyUsedList {
public:
    explicit RecentList(std::shared_ptr<Store> pStore) : m_pStore(std::move(pStore)) {}

    std::vector<AccessListEntry> Entries() const override {
        const critical_section::scoped_lock lock(m_pStore->lock);
        std::vector<AccessListEntry> entries;
        for (const RecentEntry& item : m_pStore->contents.recent) {
            entries.push_back(item.entry);
        }
        return entries;
    }

    std::string Add(const std::string& strPath, const std::string& strMetadata) override {
        constexpr std::size_t kMostEntries = 25;
        const critical_section::scoped_lock lock(m_pStore->lock);
        m_pStore->CountWrite();
        auto& recent = m_pStore->contents.recent;
        auto it = recent.begin();
        while (it != recent.end() && it->strPath != strPath) {
            ++it;
        }
        RecentEntry item{{"token-" + std::to_string(m_pStore->nLastToken + 1), strMetadata},
                         strPath};
        if (it != recent.end()) {
            item.entry.Token = it->entry.Token;
            recent.erase(it);
        } else {
            ++m_pStore->nLastToken;
        }
        recent.push_front(item);
        if (recent.size() > kMostEntries) {
            recent.pop_back();
        }
        return item.entry.Token;
    }

    void Remove(const std::string& strToken) override {
        const critical_section::scoped_lock lock(m_pStore->lock);
        m_pStore->CountWrite();
        m_pStore->contents.recent.remove_if(
            [&](const RecentEntry& item) { return item.entry.Token == strToken; });
    }

private:
    const std::shared_ptr<Store> m_pStore;
};

MemoryApplicationData::MemoryApplicationData()
    : m_pStore(std::make_shared<Store>()),
      m_pFolder(std::make_shared<MemoryStorageFolder>("/memory/local")) {}

MemoryApplicationData::~MemoryApplicationData() {
    if (!m_pStore->strFolder.empty()) {
        std::error_code ignored; // a folder that stays is no fault of the test
        std::filesystem::remove_all(m_pStore->strFolder, ignored);
    }
}

std::string MemoryApplicationData::LocalFolder() const {
    const critical_section::scoped_lock lock(m_pStore->lock);
    if (m_pStore->strFolder.empty()) {
        std::string strName = (std::filesystem::temp_directory_path() / "velko-XXXXXX").string();
        if (::mkdtemp(strName.data()) == nullptr) {
            throw WriteFaultException("no temporary folder could be made");
        }
        m_pStore->strFolder = strName;
    }
    return m_pStore->strFolder;
}

std::shared_ptr<Windows::Storage::StorageFolder> MemoryApplicationData::LocalStorageFolder() {
    return m_pFolder;
}

std::shared_ptr<ApplicationDataContainer> MemoryApplicationData::LocalSettings() {
    return std::make_shared<Container>(m_pStore, "");
}

std::shared_ptr<StorageItemMostRecentlyUsedList> MemoryApplicationData::MostRecentlyUsedList() {
    return std::make_shared<RecentList>(m_pStore);
}

void MemoryApplicationData::InTransaction(const std::function<void()>& fnBody) {
    const critical_section::scoped_lock lock(m_pStore->lock);
    Contents before = m_pStore->contents;
    try {
        fnBody();
    } catch (...) {
        m_pStore->contents = std::move(before);
        throw;
    }
}

void MemoryApplicationData::FailWrite(std::size_t nNth, bool bFromThenOn) {
    const critical_section::scoped_lock lock(m_pStore->lock);
    m_pStore->nWritesUntilFailure = nNth;
    m_pStore->bWritesKeepFailing = bFromThenOn;
}

std::size_t MemoryApplicationData::Writes() const {
    const critical_section::scoped_lock lock(m_pStore->lock);
    return m_pStore->nWrites;
}

}
