// The application's own folder and its settings.
//
// Settings live in one SQLite file in the local folder, which the first write
// makes. A value is stored when `Insert` returns. Two processes may have the store open. A store
// that cannot be read is set aside (its name gets ".corrupt" and a number), a line goes to the
// debug output, and a new one is begun. Threads: any.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/foundation/PropertyValue.h"

namespace Windows::Storage {

class StorageFolder;

// The values of one settings container. Failures of the store are raised as
// platform exceptions.
class ISettingsValues {
public:
    virtual ~ISettingsValues() = default;
    virtual bool HasKey(const std::string& strKey) const = 0;
    virtual std::optional<Foundation::PropertyValue> TryLookup(const std::string& strKey) const = 0;
    virtual void Insert(const std::string& strKey, const Foundation::PropertyValue& value) = 0;
    virtual void Remove(const std::string& strKey) = 0;
};

enum class ApplicationDataCreateDisposition { Always = 0, Existing = 1 };

class ApplicationDataContainer {
public:
    virtual ~ApplicationDataContainer() = default;
    virtual std::shared_ptr<ISettingsValues> Values() = 0;
    // `Existing` raises `FileNotFoundException` when there is none of the name.
    virtual std::shared_ptr<ApplicationDataContainer> CreateContainer(
        const std::string& strName, ApplicationDataCreateDisposition eDisposition) = 0;
};

namespace AccessCache {

struct AccessListEntry {
    std::string Token;
    std::string Metadata;
};

// The recently used list, latest first, at most 25 entries.
class StorageItemMostRecentlyUsedList {
public:
    virtual ~StorageItemMostRecentlyUsedList() = default;
    virtual std::vector<AccessListEntry> Entries() const = 0;
    // Adds the file, or moves its entry to the front and renews the metadata;
    // gives the entry's token, which stays the same for the same path.
    virtual std::string Add(const std::string& strPath, const std::string& strMetadata) = 0;
    virtual void Remove(const std::string& strToken) = 0;
};

}

class ApplicationData {
public:
    virtual ~ApplicationData() = default;

    virtual std::string LocalFolder() const = 0; // an existing folder, absolute
    // The same folder, to make and find files in.
    virtual std::shared_ptr<StorageFolder> LocalStorageFolder();
    virtual std::shared_ptr<ApplicationDataContainer> LocalSettings() = 0;
    virtual std::shared_ptr<AccessCache::StorageItemMostRecentlyUsedList>
    MostRecentlyUsedList() = 0;

    // Runs `fnBody`; all that it inserts and removes is stored together, or
    // nothing when it raises. Other threads and processes wait meanwhile. One
    // inside another is a part of the outer one, undone by itself when it raises.
    virtual void InTransaction(const std::function<void()>& fnBody) = 0;

    // The process's application data. Raises until one is set.
    static std::shared_ptr<ApplicationData> Current();
    static void SetCurrent(std::shared_ptr<ApplicationData> pCurrent);
};

// The real one: `strFolder` is made if it is missing, the store is opened at
// the first use and made at the first write. Settings are kept exactly: floats with every bit,
// texts with every byte.
std::shared_ptr<ApplicationData> OpenApplicationData(const std::string& strFolder);

}
