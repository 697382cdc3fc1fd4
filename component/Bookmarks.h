// The places in documents that a reader has marked, kept apart from the recently used list:
// of a document that is known by its path, else as the file that it was, else by its bytes.
//
// Kept of `kMostDocuments` documents, those used last, and of each `kMostBookmarks`.
// Threads: any. Errors: the store raises none; see `ApplicationData`.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "component/DocIdentity.h"
#include "component/PlaceSnippet.h"

namespace velko::vkit {

struct Bookmark {
    std::string strName;
    std::int32_t nPage = 0;
    double dbX = 0.0; // a point of the page, at the window's top left
    double dbY = 0.0;
    PlaceSnippet snippet{}; // by which it is found when the document has changed
    friend bool operator==(const Bookmark&, const Bookmark&) = default;
};

inline constexpr std::size_t kMostDocuments = 200;
inline constexpr std::size_t kMostBookmarks = 500;

struct KeptBookmarks {
    std::string strKey; // of the document in the store; empty: nothing is kept of it
    DocIdentity document;
    std::vector<Bookmark> bookmarks; // in the order of the document
    bool bOtherVersion = false;      // the pages are those of another version of it
};

// Those kept for the document; a file of another path takes part only where `fnIsGone`
// says so of that path: a copy has its own.
KeptBookmarks FindBookmarks(const DocIdentity& document,
                            const std::function<bool(const std::string& strPath)>& fnIsGone);

// Keeps them under the key, or a new one, which is given back; without bookmarks the
// document is forgotten.
std::string StoreBookmarks(const KeptBookmarks& kept);

}
