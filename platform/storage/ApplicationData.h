// The application's own folder, its settings, and the recently used list.
//
// All of it lives in one SQLite file in the local folder, is read at the first
// use, and is shown from memory from then on. A change is shown at once and
// stored behind, on a thread of the file operations: nobody who reads or changes
// a setting waits for a disk, except the first, who waits for the file to be
// read, and a tenth of a second at most for a process that is just writing it.
//
// What is promised:
// - Reading makes no file and changes none, and works where nothing can be
//   written. A store that is missing, empty or without tables reads as empty.
// - Changes are stored in their order, those of a transaction together. A process
//   that is killed loses what it changed last, never the store.
// - No failure of the store reaches whoever reads or changes a setting: what
//   cannot be stored is shown all the same, tried again with the next change, and
//   `StoreFailed` tells once. What is left is stored by `Flush`, and when the last
//   reference to the data and to all that came from it goes.
// - Two processes may have the store open. Neither undoes what the other has
//   changed elsewhere; each sees the other's changes at its next start.
// - A store of a later version is neither used nor touched. One that cannot be
//   read counts as empty; the first change sets it aside (its name gets ".corrupt"
//   and a number) and begins a new one.
//
// Threads: any.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/foundation/Event.h"
#include "platform/foundation/PropertyValue.h"

namespace Windows::Storage {

class StorageFolder;

// The values of one settings container.
class ISettingsValues {
public:
    virtual ~ISettingsValues() = default;
    virtual bool HasKey(const std::string& strKey) const = 0;
    virtual std::optional<Foundation::PropertyValue> TryLookup(const std::string& strKey) const = 0;
    // Keeps a copy. Raises `InvalidArgumentException` for a composite value that
    // is nested too deep or absent.
    virtual void Insert(const std::string& strKey, const Foundation::PropertyValue& value) = 0;
    virtual void Remove(const std::string& strKey) = 0;
};

enum class ApplicationDataCreateDisposition { Always = 0, Existing = 1 };

// A container is there as long as it, or one in it, holds a value.
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

// The recently used list, latest first, at most 25 entries. An entry that leaves
// it takes along what the local settings hold under its token.
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

// Why settings are not stored, or could not be read.
struct StoreFailure {
    enum class Cause {
        DiskFull,     // the disk, or the user's share of it
        NotWritable,  // a disk for reading only, a folder or file without the right to write
        Locked,       // another process does not let go of the store
        LaterVersion, // made by a later version of this program
        Damaged,      // could not be read: what it held is lost to the program, see above
        Failed        // anything else
    };
    Cause eCause = Cause::Failed;
    std::string strStore;  // the file's path
    std::string strDetail; // for a log, not for a reader
};

class ApplicationData {
public:
    virtual ~ApplicationData() = default;

    virtual std::string LocalFolder() const = 0; // absolute; made with the first file in it
    // The same folder, to make and find files in; makes it. Raises what that raises.
    std::shared_ptr<StorageFolder> LocalStorageFolder();
    virtual std::shared_ptr<ApplicationDataContainer> LocalSettings() = 0;
    virtual std::shared_ptr<AccessCache::StorageItemMostRecentlyUsedList>
    MostRecentlyUsedList() = 0;

    // Runs `fnBody`; all that it inserts and removes is shown to other threads and
    // stored together, or not at all when it raises. Other threads that ask for a
    // setting wait meanwhile, so wait for none in it. One inside another is a part
    // of the outer one, undone by itself when it raises.
    virtual void InTransaction(const std::function<void()>& fnBody) = 0;

    // Waits until everything is stored, or cannot be: a second or two at most
    // where another process keeps the store locked. For the end of a program.
    virtual void Flush() = 0;

    // Raised once when the store is found damaged, and once when it begins to fail
    // otherwise; again only after it has worked in between. It comes on the thread
    // that met the failure, mostly one of the file operations. An exception of a
    // handler is logged. Whoever comes later asks `Failure`: the failure as it was
    // last met, empty once all is well.
    virtual Foundation::Event<const StoreFailure&>& StoreFailed() = 0;
    virtual std::optional<StoreFailure> Failure() const = 0;

    // The process's application data. Raises until one is set.
    static std::shared_ptr<ApplicationData> Current();
    static void SetCurrent(std::shared_ptr<ApplicationData> pCurrent);
};

// The real one, in `strFolder`, which is made with the first change. Touches no disk yet.
// Settings are kept exactly: floats with every bit, texts with every byte.
std::shared_ptr<ApplicationData> OpenApplicationData(const std::string& strFolder);

}
