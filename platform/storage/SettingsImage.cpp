#include "platform/storage/SettingsImage_p.h"

#include <algorithm>
#include <random>
#include <utility>

namespace Windows::Storage {

using Foundation::PropertyValue;

namespace {

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

// Of floats and sets only the bits and the members would tell.
bool IsSame(const PropertyValue& one, const PropertyValue& other) {
    const bool bIsPlain = one.Is<bool>() || one.Is<std::int32_t>() || one.Is<std::int64_t>() ||
                          one.Is<std::uint32_t>() || one.Is<std::string>();
    return bIsPlain && one.Value() == other.Value();
}

}

void SettingsChanges::PutUnder(SettingsChanges older) {
    values.merge(older.values);
    std::erase_if(older.recent, [this](const Recent& change) {
        return std::any_of(recent.begin(), recent.end(),
                           [&](const Recent& later) { return later.strToken == change.strToken; });
    });
    recent.insert(recent.begin(), older.recent.begin(), older.recent.end());
}

std::optional<PropertyValue> SettingsImage::Find(const SettingKey& key) const {
    const auto it = m_contents.values.find(key);
    return it == m_contents.values.end() ? std::nullopt : std::optional(it->second);
}

bool SettingsImage::HasContainer(const std::string& strPath) const {
    return std::any_of(m_contents.values.begin(), m_contents.values.end(), [&](const auto& item) {
        const std::string& strContainer = item.first.strContainer;
        return strContainer == strPath || strContainer.starts_with(strPath + "/");
    });
}

void SettingsImage::Insert(const SettingKey& key, PropertyValue value) {
    const auto it = m_contents.values.find(key);
    if (it != m_contents.values.end() && IsSame(it->second, value)) {
        return;
    }
    m_changes.values.insert_or_assign(key, value);
    m_contents.values.insert_or_assign(key, std::move(value));
}

void SettingsImage::Remove(const SettingKey& key) {
    if (m_contents.values.erase(key) > 0) {
        m_changes.values.insert_or_assign(key, std::nullopt);
    }
}

std::string SettingsImage::AddRecent(const std::string& strPath, const std::string& strMetadata) {
    const auto& recent = m_contents.recent;
    const auto it = std::find_if(recent.begin(), recent.end(),
                                 [&](const RecentFile& file) { return file.strPath == strPath; });
    RecentFile file{it == recent.end() ? NewToken() : it->strToken, strPath, strMetadata};
    std::string strToken = file.strToken;
    Note(strToken, file);
    MoveToFront(std::move(file));
    return strToken;
}

void SettingsImage::RemoveRecent(const std::string& strToken) {
    const auto& recent = m_contents.recent;
    if (std::any_of(recent.begin(), recent.end(),
                    [&](const RecentFile& file) { return file.strToken == strToken; })) {
        DropFromList(strToken);
        Note(strToken, std::nullopt);
    }
}

void SettingsImage::Note(const std::string& strToken, std::optional<RecentFile> file) {
    std::erase_if(m_changes.recent,
                  [&](const auto& change) { return change.strToken == strToken; });
    m_changes.recent.push_back({strToken, std::move(file)});
}

// Another entry of the path is one that another process made meanwhile.
void SettingsImage::MoveToFront(RecentFile file) {
    auto& recent = m_contents.recent;
    std::erase_if(recent, [&](const RecentFile& other) { return other.strToken == file.strToken; });
    const auto it = std::find_if(recent.begin(), recent.end(), [&](const RecentFile& other) {
        return other.strPath == file.strPath;
    });
    if (it != recent.end()) {
        DropFromList(std::string(it->strToken));
    }
    recent.insert(recent.begin(), std::move(file));
    if (recent.size() > kMostRecent) {
        DropFromList(std::string(recent.back().strToken));
    }
}

void SettingsImage::DropFromList(const std::string& strToken) {
    std::erase_if(m_contents.recent,
                  [&](const RecentFile& file) { return file.strToken == strToken; });
    Remove({{}, strToken});
}

void SettingsImage::ShowUnderChanges(SettingsContents stored) {
    const SettingsChanges changes = std::exchange(m_changes, {});
    m_contents = std::move(stored);
    for (const auto& change : changes.recent) {
        if (change.file) {
            MoveToFront(*change.file);
        } else {
            DropFromList(change.strToken);
        }
    }
    for (const auto& [key, value] : changes.values) {
        if (value) {
            m_contents.values.insert_or_assign(key, *value);
        } else {
            m_contents.values.erase(key);
        }
    }
    m_changes.PutUnder(changes);
}

SettingsChanges SettingsImage::TakeChanges() {
    return std::exchange(m_changes, {});
}

}
