// What the pages of a document measure when their text is set for one screen and
// one size of letters.
//
// Threads: the UI thread only. Units: pixels of the set text.
#pragma once

#include <cstdint>
#include <unordered_map>

#include "document/VLK_ReflowPage.h"

namespace velko::vkit {

class ReflowMeasures {
public:
    struct Content {
        std::int32_t nWidth = 0; // 0 by 0 for a page with nothing to show
        std::int32_t nHeight = 0;
        bool bHasFailed = false; // it could not be set
    };

    const ReflowParameters& Parameters() const { return m_parameters; }
    // Others than before: nothing is known any more.
    void SetParameters(const ReflowParameters& parameters) {
        if (!(m_parameters == parameters)) {
            m_parameters = parameters;
            m_pages.clear();
        }
    }

    // Null for a page that has not been measured.
    const Content* Find(std::int32_t nPageIndex) const {
        const auto it = m_pages.find(nPageIndex);
        return it != m_pages.end() ? &it->second : nullptr;
    }
    void Note(std::int32_t nPageIndex, const Content& content) {
        m_pages.insert_or_assign(nPageIndex, content);
    }
    // Pages that failed are tried again when they are next asked for.
    void ForgetFailures() {
        std::erase_if(m_pages, [](const auto& page) { return page.second.bHasFailed; });
    }

private:
    ReflowParameters m_parameters;
    std::unordered_map<std::int32_t, Content> m_pages;
};

}
