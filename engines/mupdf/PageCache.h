// What was made of pages, kept within a bound: their content and annotations
// interpreted, their text as it is read, and that text set for a width.
//
// An item holds what it needs, so an entry may leave the cache at any time;
// whoever needs it again makes it once more. The least recently used entries
// leave first. An item that alone exceeds the bound stays until the next one
// comes. An item that keeps others alive counts only its own bytes: whoever
// uses it uses those afterwards, so that they leave the cache after it does.
//
// Threads: any. One leaf lock; entries are dropped outside of it.
#pragma once

#include <atomic>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <vector>

#include "platform/concurrency/CriticalSection.h"

namespace velko::engines::mupdf {

struct CacheItem {
    virtual ~CacheItem() = default;

    std::size_t nBytes = 1; // above 0
    bool bCutShort = false; // made in part: time or room ran out
};

class PageCache {
public:
    // Each is an item of one type: `Drawing` twice, `reflow::PageModel`,
    // `reflow::Layout`, `text::CachedText`. Those from `Annots` on, before `Text`, show
    // the annotations.
    enum class Kind { Content, Annots, Model, Layout, Text };

    struct Key {
        std::uint64_t nDocument = 0;
        std::int32_t nPage = 0;
        Kind eKind = Kind::Content;
        std::uint64_t nVariant = 0;                   // of those that a page has of the kind
        auto operator<=>(const Key&) const = default; // NOLINT(modernize-use-nullptr): it has none
    };

    struct Limits {
        std::size_t nBytes = std::size_t{48} << 20; // of all documents
        std::size_t nBytesPerDocument = std::size_t{16} << 20;
    };

    // The one of the process.
    static PageCache& Instance();

    // A number for a document's keys, never used twice.
    std::uint64_t NewDocument();

    // `T` is the type of the key's kind.
    template <class T>
    std::shared_ptr<const T> Find(const Key& key) {
        return std::static_pointer_cast<const T>(FindItem(key));
    }
    // For whoever passes by: it makes the entry no more recent.
    template <class T>
    std::shared_ptr<const T> Peek(const Key& key) const {
        return std::static_pointer_cast<const T>(PeekItem(key));
    }
    void Touch(const Key& key) { FindItem(key); }
    void Put(const Key& key, std::shared_ptr<const CacheItem> pItem);
    void DropDocument(std::uint64_t nDocument);
    // All but its content.
    void DropWithAnnots(std::uint64_t nDocument, std::int32_t nPage);
    // Of a kind, on all pages, what `fnIsDropped` names; it takes no lock.
    void DropOfKind(std::uint64_t nDocument, Kind eKind,
                    const std::function<bool(const CacheItem&)>& fnIsDropped);
    void DropCutShort(std::uint64_t nDocument, std::int32_t nPage);

    void SetLimits(const Limits& limits);
    std::size_t Bytes() const;
    std::size_t Count() const;

private:
    struct Entry {
        Key key;
        std::shared_ptr<const CacheItem> pItem;
    };
    using Entries = std::list<Entry>;
    using Dropped = std::vector<std::shared_ptr<const CacheItem>>;

    std::shared_ptr<const CacheItem> FindItem(const Key& key);
    std::shared_ptr<const CacheItem> PeekItem(const Key& key) const;
    template <class IsDropped>
    void Drop(const Key& first, const Key& last, IsDropped&& fnIsDropped);
    Entries::iterator Remove(Entries::iterator it, Dropped& dropped) VLK_REQUIRES(m_lock);
    std::size_t BytesOf(std::uint64_t nDocument) const VLK_REQUIRES(m_lock);
    void Trim(std::uint64_t nDocument, Dropped& dropped) VLK_REQUIRES(m_lock);

    std::atomic<std::uint64_t> m_nNextDocument = 1;
    mutable concurrency::critical_section m_lock;
    Limits m_limits VLK_GUARDED_BY(m_lock);
    Entries m_entries VLK_GUARDED_BY(m_lock); // the most recently used first
    std::map<Key, Entries::iterator> m_index VLK_GUARDED_BY(m_lock);
    std::map<std::uint64_t, std::size_t> m_bytes VLK_GUARDED_BY(m_lock); // per document
    std::size_t m_nBytes VLK_GUARDED_BY(m_lock) = 0;
};

}
