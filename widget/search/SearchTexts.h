// What has been read of a document's pages for searching them, kept so that what is
// typed next is found quickly.
//
// Bounded: a search goes through all pages in turn, so pages that find no room any more
// are read anew each time, and those that are kept stay.
// Threads: any. One leaf lock.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>

#include "platform/concurrency/CriticalSection.h"
#include "widget/search/SearchText.h"

namespace velko::vkit {

class SearchTexts {
public:
    using Text = std::shared_ptr<const SearchText>;
    static constexpr std::size_t kMostBytes = std::size_t{32} << 20;

    explicit SearchTexts(std::size_t nMostBytes = kMostBytes) : m_nMostBytes(nMostBytes) {}

    Text Find(std::int32_t nPage) const; // empty: not kept
    void Keep(std::int32_t nPage, Text pText);

private:
    using Lock = concurrency::critical_section::scoped_lock;

    const std::size_t m_nMostBytes;
    mutable concurrency::critical_section m_lock;
    std::unordered_map<std::int32_t, Text> m_texts VLK_GUARDED_BY(m_lock);
    std::size_t m_nBytes VLK_GUARDED_BY(m_lock) = 0;
};

}
