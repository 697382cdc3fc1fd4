#include "widget/search/SearchTexts.h"

#include <utility>

namespace velko::vkit {

SearchTexts::Text SearchTexts::Find(std::int32_t nPage) const {
    const Lock lock(m_lock);
    const auto it = m_texts.find(nPage);
    return it == m_texts.end() ? nullptr : it->second;
}

void SearchTexts::Keep(std::int32_t nPage, Text pText) {
    const std::size_t nBytes = pText->Bytes();
    const Lock lock(m_lock);
    if (m_nBytes + nBytes <= m_nMostBytes && m_texts.try_emplace(nPage, std::move(pText)).second) {
        m_nBytes += nBytes;
    }
}

}
