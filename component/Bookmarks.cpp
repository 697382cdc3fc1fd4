#include "component/Bookmarks.h"

#include <algorithm>
#include <optional>
#include <sstream>
#include <utility>

#include "platform/storage/ApplicationData.h"

namespace velko::vkit {

using Windows::Foundation::PropertyValue;
using Windows::Foundation::Collections::PropertySet;
using Windows::Storage::ApplicationData;
using Windows::Storage::ApplicationDataCreateDisposition;
using Composite = PropertyValue::Composite;

namespace {

constexpr const char* kDocuments = "Documents"; // keys, the one used last first
constexpr const char* kCount = "Count";
constexpr const char* kNext = "Next"; // key

auto Values() {
    return ApplicationData::Current()
        ->LocalSettings()
        ->CreateContainer("Bookmarks", ApplicationDataCreateDisposition::Always)
        ->Values();
}

template <class T>
T ValueOf(const PropertySet& values, const std::string& strKey) {
    return values.HasKey(strKey) && values.Lookup(strKey).Is<T>() ? values.Lookup(strKey).Get<T>()
                                                                  : T();
}

template <class T>
T Read(const std::string& strKey) {
    const auto value = Values()->TryLookup(strKey);
    return value && value->Is<T>() ? value->Get<T>() : T();
}

std::vector<std::string> Keys() {
    std::vector<std::string> keys;
    std::istringstream words(Read<std::string>(kDocuments));
    for (std::string strKey; words >> strKey;) {
        keys.push_back(strKey);
    }
    return keys;
}

void StoreKeys(const std::vector<std::string>& keys) {
    std::string strKeys;
    for (const std::string& strKey : keys) {
        strKeys += (strKeys.empty() ? "" : " ") + strKey;
    }
    Values()->Insert(kDocuments, PropertyValue::Create(strKeys));
}

std::string NewKey() {
    const std::int64_t nKey = Read<std::int64_t>(kNext);
    Values()->Insert(kNext, PropertyValue::Create(nKey + 1));
    return "Document" + std::to_string(nKey);
}

std::string NameOf(std::size_t n, const char* szWhat) {
    return std::to_string(n) + "." + szWhat;
}

Composite ToValues(const KeptBookmarks& kept) {
    auto pValues = std::make_shared<PropertySet>();
    WriteIdentity(*pValues, kept.document);
    const std::size_t nCount = std::min(kept.bookmarks.size(), kMostBookmarks);
    pValues->Insert(kCount, PropertyValue::Create(static_cast<std::int32_t>(nCount)));
    for (std::size_t n = 0; n < nCount; ++n) {
        const Bookmark& bookmark = kept.bookmarks[n];
        pValues->Insert(NameOf(n, "Name"), PropertyValue::Create(bookmark.strName));
        pValues->Insert(NameOf(n, "Page"), PropertyValue::Create(bookmark.nPage));
        pValues->Insert(NameOf(n, "X"), PropertyValue::Create(bookmark.dbX));
        pValues->Insert(NameOf(n, "Y"), PropertyValue::Create(bookmark.dbY));
        WriteSnippet(*pValues, NameOf(n, "Snippet."), bookmark.snippet);
    }
    return pValues;
}

KeptBookmarks FromValues(const std::string& strKey, const PropertySet& values) {
    KeptBookmarks kept{strKey, ReadIdentity(values), {}};
    const std::size_t nCount =
        std::min(static_cast<std::size_t>(std::max(0, ValueOf<std::int32_t>(values, kCount))),
                 kMostBookmarks);
    for (std::size_t n = 0; n < nCount; ++n) {
        kept.bookmarks.push_back({ValueOf<std::string>(values, NameOf(n, "Name")),
                                  ValueOf<std::int32_t>(values, NameOf(n, "Page")),
                                  ValueOf<double>(values, NameOf(n, "X")),
                                  ValueOf<double>(values, NameOf(n, "Y")),
                                  ReadSnippet(values, NameOf(n, "Snippet."))});
    }
    return kept;
}

std::optional<KeptBookmarks> Load(const std::string& strKey) {
    const auto pValues = Read<Composite>(strKey);
    return pValues ? std::optional(FromValues(strKey, *pValues)) : std::nullopt;
}

// The better, the higher; 0: it is another document.
int Likeness(const DocIdentity& kept, const DocIdentity& wanted) {
    if (kept.strPath == wanted.strPath) {
        return 3;
    }
    return IsSameFile(kept, wanted) ? 2 : HaveSameBytes(kept, wanted) ? 1 : 0;
}

}

KeptBookmarks FindBookmarks(const DocIdentity& document,
                            const std::function<bool(const std::string& strPath)>& fnIsGone) {
    KeptBookmarks best{{}, document, {}};
    int nBest = 0;
    for (const std::string& strKey : Keys()) {
        const auto kept = Load(strKey);
        const int nLikeness = kept ? Likeness(kept->document, document) : 0;
        const bool bOtherPath = kept && kept->document.strPath != document.strPath;
        if (nLikeness > nBest && (!bOtherPath || fnIsGone(kept->document.strPath))) {
            nBest = nLikeness;
            best = *kept;
            best.bOtherVersion = kept->document.version != document.version &&
                                 !HaveSameBytes(kept->document, document);
            best.document = document;
        }
    }
    return best;
}

std::string StoreBookmarks(const KeptBookmarks& kept) {
    std::string strKey = kept.strKey;
    ApplicationData::Current()->InTransaction([&] {
        std::vector<std::string> keys = Keys();
        std::erase(keys, strKey);
        if (!strKey.empty() && kept.bookmarks.empty()) {
            Values()->Remove(std::exchange(strKey, {}));
        } else if (!kept.bookmarks.empty()) {
            strKey = strKey.empty() ? NewKey() : strKey;
            keys.insert(keys.begin(), strKey);
            Values()->Insert(strKey, PropertyValue::Create(ToValues(kept)));
        }
        for (; keys.size() > kMostDocuments; keys.pop_back()) {
            Values()->Remove(keys.back());
        }
        StoreKeys(keys);
    });
    return strKey;
}

}
