// The settings and the recently used list as this process shows them, together
// with what of it is not stored yet.
//
// Threads: a value; its owner locks.
#pragma once

#include <compare>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/PropertyValue.h"

namespace Windows::Storage {

struct SettingKey {
    std::string strContainer; // the path of names, empty for the root
    std::string strKey;
    friend auto operator<=>(const SettingKey&, const SettingKey&) =
        default; // NOLINT(modernize-use-nullptr): it has none
};

struct RecentFile {
    std::string strToken;
    std::string strPath;
    std::string strMetadata;
};

// How many files the recently used list holds. One that leaves it takes along
// what the root container keeps under its token, which nobody could find again.
inline constexpr std::size_t kMostRecent = 25;

struct SettingsContents {
    std::map<SettingKey, Foundation::PropertyValue> values;
    std::vector<RecentFile> recent; // latest first
};

// What differs from the store. Later changes take the place of earlier ones, so
// it never outgrows the settings, however long the store cannot be written.
struct SettingsChanges {
    struct Recent {
        std::string strToken;
        std::optional<RecentFile> file; // empty: left the list
    };
    std::map<SettingKey, std::optional<Foundation::PropertyValue>> values; // empty: removed
    std::vector<Recent> recent; // in their order, each token once

    bool IsEmpty() const { return values.empty() && recent.empty(); }
    // Puts these, which are older, under what there is.
    void PutUnder(SettingsChanges older);
};

class SettingsImage {
public:
    const SettingsContents& Contents() const { return m_contents; }
    std::optional<Foundation::PropertyValue> Find(const SettingKey& key) const;
    // True when the container or one within it holds a value.
    bool HasContainer(const std::string& strPath) const;

    void Insert(const SettingKey& key, Foundation::PropertyValue value);
    void Remove(const SettingKey& key);
    // Gives the token, which stays the same for the same path.
    std::string AddRecent(const std::string& strPath, const std::string& strMetadata);
    void RemoveRecent(const std::string& strToken);

    // Takes what the store holds as what is shown, except for what differs.
    void ShowUnderChanges(SettingsContents stored);

    bool IsStored() const { return m_changes.IsEmpty(); }
    SettingsChanges TakeChanges(); // nothing differs then
    void PutBack(SettingsChanges failed) { m_changes.PutUnder(std::move(failed)); }

private:
    void Note(const std::string& strToken, std::optional<RecentFile> file);
    void MoveToFront(RecentFile file);
    void DropFromList(const std::string& strToken);

    SettingsContents m_contents;
    SettingsChanges m_changes;
};

}
