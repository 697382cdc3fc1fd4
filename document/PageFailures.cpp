#include "document/PageFailures.h"

#include <utility>

namespace velko::vkit {

using concurrency::critical_section;

bool PageFailures::Note(const Part& part, PageFailure failure) {
    const critical_section::scoped_lock lock(m_lock);
    Parts& parts = m_pages[failure.nPageIndex];
    const bool bNew = parts.empty() || parts.begin()->second.eCode != failure.eCode;
    parts.insert_or_assign(part, std::move(failure));
    return bNew;
}

bool PageFailures::Heal(std::int32_t nPageIndex, const Part& part) {
    const critical_section::scoped_lock lock(m_lock);
    const auto itPage = m_pages.find(nPageIndex);
    if (itPage == m_pages.end()) {
        return false;
    }
    std::erase_if(itPage->second, [&](const auto& entry) {
        return entry.first == Part() || entry.first == part ||
               (part != Part() && entry.first.view != part.view);
    });
    if (!itPage->second.empty()) {
        return false;
    }
    m_pages.erase(itPage);
    return true;
}

std::optional<PageFailure> PageFailures::Find(std::int32_t nPageIndex) const {
    const critical_section::scoped_lock lock(m_lock);
    const auto itPage = m_pages.find(nPageIndex);
    return itPage == m_pages.end() ? std::nullopt : std::optional(itPage->second.begin()->second);
}

}
