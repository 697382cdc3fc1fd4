#include "engines/mupdf/DisplayListCache.h"

#include <iterator>
#include <utility>

namespace velko::engines::mupdf {

namespace {

using Lock = concurrency::critical_section::scoped_lock;

}

DisplayListCache& DisplayListCache::Instance() {
    // Never destroyed: documents may end after the statics of this file.
    static auto* const pCache = new DisplayListCache;
    return *pCache;
}

std::uint64_t DisplayListCache::NewDocument() {
    return m_nNextDocument++;
}

std::shared_ptr<const Drawing> DisplayListCache::Find(const Key& key) {
    const Lock lock(m_lock);
    const auto it = m_index.find(key);
    if (it == m_index.end()) {
        return nullptr;
    }
    m_entries.splice(m_entries.begin(), m_entries, it->second);
    return it->second->pDrawing;
}

void DisplayListCache::Put(const Key& key, std::shared_ptr<const Drawing> pDrawing) {
    Dropped dropped; // outlives the lock
    const Lock lock(m_lock);
    if (const auto it = m_index.find(key); it != m_index.end()) {
        Remove(it->second, dropped);
    }
    m_nBytes += pDrawing->nBytes;
    m_bytes[key.nDocument] += pDrawing->nBytes;
    m_entries.push_front({key, std::move(pDrawing)});
    m_index[key] = m_entries.begin();
    Trim(key.nDocument, dropped);
}

void DisplayListCache::DropDocument(std::uint64_t nDocument) {
    Dropped dropped;
    const Lock lock(m_lock);
    auto it = m_index.lower_bound({nDocument, 0, Kind::Content});
    while (it != m_index.end() && it->first.nDocument == nDocument) {
        const auto itEntry = it->second;
        ++it;
        Remove(itEntry, dropped);
    }
}

void DisplayListCache::DropCutShort(std::uint64_t nDocument, std::int32_t nPage) {
    Dropped dropped;
    const Lock lock(m_lock);
    for (const Kind eKind : {Kind::Content, Kind::Annots}) {
        const auto it = m_index.find({nDocument, nPage, eKind});
        if (it != m_index.end() && it->second->pDrawing->bCutShort) {
            Remove(it->second, dropped);
        }
    }
}

void DisplayListCache::SetLimits(const Limits& limits) {
    Dropped dropped;
    const Lock lock(m_lock);
    m_limits = limits;
    Trim(0, dropped);
}

std::size_t DisplayListCache::Bytes() const {
    const Lock lock(m_lock);
    return m_nBytes;
}

std::size_t DisplayListCache::Count() const {
    const Lock lock(m_lock);
    return m_entries.size();
}

DisplayListCache::Entries::iterator DisplayListCache::Remove(Entries::iterator it,
                                                             Dropped& dropped) {
    const std::size_t nBytes = it->pDrawing->nBytes;
    m_nBytes -= nBytes;
    const auto itBytes = m_bytes.find(it->key.nDocument);
    itBytes->second -= nBytes;
    if (itBytes->second == 0) {
        m_bytes.erase(itBytes);
    }
    m_index.erase(it->key);
    dropped.push_back(std::move(it->pDrawing));
    return m_entries.erase(it);
}

std::size_t DisplayListCache::BytesOf(std::uint64_t nDocument) const {
    const auto it = m_bytes.find(nDocument);
    return it == m_bytes.end() ? 0 : it->second;
}

void DisplayListCache::Trim(std::uint64_t nDocument, Dropped& dropped) {
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
