#include "platform/storage/ApplicationData.h"

#include <array>
#include <filesystem>
#include <mutex>
#include <random>
#include <system_error>

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
using Statement = SqliteConnection::Statement;

StoredValue ValueIn(const Statement& row, int nType, int nValue) {
    StoredValue stored;
    stored.nType = row.Number(nType);
    if (row.IsNumber(nValue)) {
        stored.payload = row.Number(nValue);
    } else {
        stored.payload = row.Text(nValue);
    }
    return stored;
}

class Values final : public ISettingsValues {
public:
    Values(StorePtr pStore, std::string strContainer)
        : m_pStore(std::move(pStore)), m_strContainer(std::move(strContainer)) {}

    bool HasKey(const std::string& strKey) const override {
        bool bThere = false;
        m_pStore->Read([&](SqliteConnection& connection) {
            auto select = connection.Prepare("SELECT 1 FROM setting WHERE container=?1 AND key=?2");
            bThere = select.Bind(1, m_strContainer).Bind(2, strKey).Step();
        });
        return bThere;
    }

    std::optional<PropertyValue> TryLookup(const std::string& strKey) const override {
        std::optional<PropertyValue> value;
        m_pStore->Read([&](SqliteConnection& connection) {
            auto select =
                connection.Prepare("SELECT type, value FROM setting WHERE container=?1 AND key=?2");
            if (select.Bind(1, m_strContainer).Bind(2, strKey).Step()) {
                value = Decode(ValueIn(select, 0, 1));
            }
        });
        return value;
    }

    void Insert(const std::string& strKey, const PropertyValue& value) override {
        const StoredValue stored = Encode(value);
        m_pStore->Use([&](SqliteConnection& connection) {
            auto insert = connection.Prepare(
                "INSERT INTO setting(container, key, type, value) VALUES(?1, ?2, ?3, ?4) "
                "ON CONFLICT(container, key) DO UPDATE SET type=excluded.type, "
                "value=excluded.value");
            insert.Bind(1, m_strContainer).Bind(2, strKey).Bind(3, stored.nType);
            if (const auto* pNumber = std::get_if<std::int64_t>(&stored.payload)) {
                insert.Bind(4, *pNumber);
            } else {
                insert.BindBlob(4, std::get<std::string>(stored.payload));
            }
            insert.Run();
        });
    }

    void Remove(const std::string& strKey) override {
        m_pStore->Read([&](SqliteConnection& connection) {
            auto remove = connection.Prepare("DELETE FROM setting WHERE container=?1 AND key=?2");
            remove.Bind(1, m_strContainer).Bind(2, strKey).Run();
        });
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
        const std::string strPath = m_strPath + "/" + Escaped(strName);
        if (eDisposition == ApplicationDataCreateDisposition::Always) {
            m_pStore->AddContainer(strPath);
        } else if (!m_pStore->HasContainer(strPath)) {
            throw Platform::FileNotFoundException("no container " + strName);
        }
        return std::make_shared<Container>(m_pStore, strPath);
    }

private:
    // A name may hold the character that stands between names.
    static std::string Escaped(const std::string& strName) {
        std::string strEscaped;
        for (const char c : strName) {
            strEscaped += c == '/' ? "%2F" : c == '%' ? "%25" : std::string(1, c);
        }
        return strEscaped;
    }

    const StorePtr m_pStore;
    const std::string m_strPath;
};

std::string NewToken() {
    constexpr const char* kDigits = "0123456789abcdef";
    constexpr int kLength = 32;
    std::random_device random;
    std::uniform_int_distribution<int> digit(0, 15);
    std::string strToken;
    for (int n = 0; n < kLength; ++n) {
        strToken += kDigits[digit(random)];
    }
    return strToken;
}

class RecentList final : public StorageItemMostRecentlyUsedList {
public:
    explicit RecentList(StorePtr pStore) : m_pStore(std::move(pStore)) {}

    std::vector<AccessListEntry> Entries() const override {
        std::vector<AccessListEntry> entries;
        m_pStore->Read([&](SqliteConnection& connection) {
            entries.clear();
            auto select =
                connection.Prepare("SELECT token, metadata FROM recent ORDER BY rank DESC");
            while (select.Step()) {
                entries.push_back({select.Text(0), select.Text(1)});
            }
        });
        return entries;
    }

    std::string Add(const std::string& strPath, const std::string& strMetadata) override {
        std::string strToken;
        m_pStore->InTransaction([&] {
            m_pStore->Use([&](SqliteConnection& connection) {
                strToken = AddWith(connection, strPath, strMetadata);
            });
        });
        return strToken;
    }

    void Remove(const std::string& strToken) override {
        m_pStore->Read([&](SqliteConnection& connection) {
            connection.Prepare("DELETE FROM recent WHERE token=?1").Bind(1, strToken).Run();
        });
    }

private:
    static std::string AddWith(SqliteConnection& connection, const std::string& strPath,
                               const std::string& strMetadata) {
        std::string strToken = NewToken();
        {
            auto select = connection.Prepare("SELECT token FROM recent WHERE path=?1");
            if (select.Bind(1, strPath).Step()) {
                strToken = select.Text(0);
            }
        }
        connection
            .Prepare(
                "INSERT INTO recent(token, path, metadata, rank) VALUES(?1, ?2, ?3, "
                "(SELECT coalesce(max(rank), 0) + 1 FROM recent)) ON CONFLICT(token) DO UPDATE "
                "SET metadata=excluded.metadata, rank=excluded.rank")
            .Bind(1, strToken)
            .Bind(2, strPath)
            .Bind(3, strMetadata)
            .Run();
        connection
            .Prepare(
                "DELETE FROM recent WHERE token NOT IN "
                "(SELECT token FROM recent ORDER BY rank DESC LIMIT 25)")
            .Run();
        return strToken;
    }

    const StorePtr m_pStore;
};

class StoredApplicationData final : public ApplicationData {
public:
    explicit StoredApplicationData(const std::string& strFolder)
        : m_pStore(std::make_shared<SettingsStore>(strFolder)) {}

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

private:
    const StorePtr m_pStore;
};

// Makes what is missing of the path, for the user's eyes alone.
void MakeFolder(const std::string& strFolder) {
    namespace fs = std::filesystem;
    if (fs::is_directory(strFolder)) {
        return;
    }
    std::error_code error;
    fs::create_directories(strFolder, error);
    if (!error) {
        fs::permissions(strFolder, fs::perms::owner_all, error);
    }
    if (error) {
        Posix::RaiseError(error.value(), Posix::Direction::Write, strFolder);
    }
}

}

std::shared_ptr<StorageFolder> ApplicationData::LocalStorageFolder() {
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
    const std::string strAbsolute = Posix::MakeAbsolute(strFolder);
    MakeFolder(strAbsolute);
    return std::make_shared<StoredApplicationData>(strAbsolute);
}

}
