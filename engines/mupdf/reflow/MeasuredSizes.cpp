#include "engines/mupdf/reflow/MeasuredSizes.h"

#include <algorithm>

namespace velko::engines::mupdf::reflow {

namespace {

using Lock = concurrency::critical_section::scoped_lock;

}

std::uint64_t MeasuredSizes::Generation() const {
    const Lock lock(m_lock);
    return m_nGeneration;
}

std::uint64_t MeasuredSizes::NumberOf(const SetParameters& parameters) {
    const Lock lock(m_lock);
    const auto it = std::find_if(m_shelves.begin(), m_shelves.end(), [&](const Shelf& shelf) {
        return shelf.parameters == parameters;
    });
    if (it != m_shelves.end()) {
        m_shelves.splice(m_shelves.begin(), m_shelves, it);
    } else {
        m_shelves.push_front({parameters, ++m_nLastNumber, {}});
    }
    if (m_shelves.size() > kMostParameters) {
        m_shelves.pop_back();
    }
    return m_shelves.front().nNumber;
}

std::optional<MeasuredSizes::Numbered> MeasuredSizes::Latest() const {
    const Lock lock(m_lock);
    return m_shelves.empty()
               ? std::nullopt
               : std::optional(Numbered{m_shelves.front().nNumber, m_shelves.front().parameters});
}

MeasuredSizes::Shelf* MeasuredSizes::FindShelf(std::uint64_t nNumber) {
    const auto it = std::find_if(m_shelves.begin(), m_shelves.end(),
                                 [&](const Shelf& shelf) { return shelf.nNumber == nNumber; });
    return it == m_shelves.end() ? nullptr : &*it;
}

std::optional<MeasuredSize> MeasuredSizes::Find(std::uint64_t nNumber, std::int32_t nPage) {
    const Lock lock(m_lock);
    if (const Shelf* const pShelf = FindShelf(nNumber)) {
        const auto it = pShelf->sizes.find(nPage);
        return it == pShelf->sizes.end() ? std::nullopt : std::optional(it->second);
    }
    return std::nullopt;
}

void MeasuredSizes::Put(std::uint64_t nNumber, std::int32_t nPage, const MeasuredSize& size) {
    const Lock lock(m_lock);
    if (Shelf* const pShelf = FindShelf(nNumber)) {
        if (pShelf->sizes.size() >= kMostPages) {
            pShelf->sizes.clear();
        }
        pShelf->sizes[nPage] = size;
    }
}

bool MeasuredSizes::Knows(std::int32_t nPage) const {
    const Lock lock(m_lock);
    return std::any_of(m_shelves.begin(), m_shelves.end(), [&](const Shelf& shelf) {
        const auto it = shelf.sizes.find(nPage);
        return it != shelf.sizes.end() && !it->second.bCutShort;
    });
}

void MeasuredSizes::ForgetCutShort(std::int32_t nPage) {
    const Lock lock(m_lock);
    for (Shelf& shelf : m_shelves) {
        const auto it = shelf.sizes.find(nPage);
        if (it != shelf.sizes.end() && it->second.bCutShort) {
            shelf.sizes.erase(it);
        }
    }
}

void MeasuredSizes::Clear() {
    const Lock lock(m_lock);
    m_shelves.clear();
    ++m_nGeneration;
}

}
