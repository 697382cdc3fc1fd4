#include "engines/mupdf/PageCache.h"

#include <iterator>
#include <utility>

namespace velko::engines::mupdf {

namespace {

using Lock = concurrency::critical_section::scoped_lock;

}

PageCache& PageCache::Instance() {
    // Never destroyed: documents may end after the statics of this file.
    static auto* const pCache = new PageCache;
    return *pCache;
}

std::uint64_t PageCache::NewDocument() {
    return m_nNextDocument++;
}

std::shared_ptr<const CacheItem> PageCache::FindItem(const Key& key) {
    const Lock lock(m_lock);
    const auto it = m_index.find(key);
    if (it == m_index.end()) {
        return nullptr;
    }
    m_entries.splice(m_entries.begin(), m_entries, it->second);
    return it->second->pItem;
}

std::shared_ptr<const CacheItem> PageCache::PeekItem(const Key& key) const {
    const Lock lock(m_lock);
    const auto it = m_index.find(key);
    return it == m_index.end() ? nullptr : it->second->pItem;
}

void PageCache::Put(const Key& key, std::shared_ptr<const CacheItem> pItem) {
    Dropped dropped; // outlives the lock
    const Lock lock(m_lock);
    if (const auto it = m_index.find(key); it != m_index.end()) {
        Remove(it->second, dropped);
    }
    m_nBytes += pItem->nBytes;
    m_bytes[key.nDocument] += pItem->nBytes;
    m_entries.push_front({key, std::move(pItem)});
    m_index[key] = m_entries.begin();
    Trim(key.nDocument, dropped);
}

template <class IsDropped>
void PageCache::Drop(const Key& first, const Key& last, IsDropped&& fnIsDropped) {
    Dropped dropped;
    const Lock lock(m_lock);
    auto it = m_index.lower_bound(first);
    while (it != m_index.end() && it->first < last) {
        const auto itEntry = it->second;
        ++it;
        if (fnIsDropped(*itEntry)) {
            Remove(itEntry, dropped);
        }
    }
}

void PageCache::DropDocument(std::uint64_t nDocument) {
    Drop({nDocument, 0}, {nDocument + 1, 0}, [](const Entry&) { return true; });
}

void PageCache::DropWithAnnots(std::uint64_t nDocument, std::int32_t nPage) {
    Drop({nDocument, nPage, Kind::Annots}, {nDocument, nPage, Kind::Text},
         [](const Entry&) { return true; });
}

void PageCache::DropOfKind(std::uint64_t nDocument, Kind eKind,
                           const std::function<bool(const CacheItem&)>& fnIsDropped) {
    Drop({nDocument, 0}, {nDocument + 1, 0},
         [&](const Entry& entry) { return entry.key.eKind == eKind && fnIsDropped(*entry.pItem); });
}

void PageCache::DropCutShort(std::uint64_t nDocument, std::int32_t nPage) {
    Drop({nDocument, nPage}, {nDocument, nPage + 1},
         [](const Entry& entry) { return entry.pItem->bCutShort; });
}

void PageCache::SetLimits(const Limits& limits) {
    Dropped dropped;
    const Lock lock(m_lock);
    m_limits = limits;
    Trim(0, dropped);
}

std::size_t PageCache::Bytes() const {
    const Lock lock(m_lock);
    return m_nBytes;
}

std::size_t PageCache::Count() const {
    const Lock lock(m_lock);
    return m_entries.size();
}

PageCache::Entries::iterator PageCache::Remove(Entries::iterator it, Dropped& dropped) {
    const std::size_t nBytes = it->pItem->nBytes;
    m_nBytes -= nBytes;
    const auto itBytes = m_bytes.find(it->key.nDocument);
    itBytes->second -= nBytes;
    if (itBytes->second == 0) {
        m_bytes.erase(itBytes);
    }
    m_index.erase(it->key);
    dropped.push_back(std::move(it->pItem));
    return m_entries.erase(it);
}

std::size_t PageCache::BytesOf(std::uint64_t nDocument) const {
    const auto it = m_bytes.find(nDocument);
    return it == m_bytes.end() ? 0 : it->second;
}

void PageCache::Trim(std::uint64_t nDocument, Dropped& dropped) {
    auto it = m_entries.end();
    while (it != m_entries.begin() && std::prev(it) != m_entries.begin() &&
           (m_nBytes > m_limits.nBytes || BytesOf(nDocument) > m_limits.nBytesPerDocument)) {
        --it;
        const bool bOwn = it->key.nDocument == nDocument;
        if (m_nBytes > m_limits.nBytes || bOwn) {
            it = Remove(it, dropped);
        }
    }
}

}
