// The failures of a document's pages that stand at the moment.
//
// A page fails as a whole, when it cannot be loaded, or in parts: rectangles of
// its picture at one size that cannot be drawn. A part that is drawn after all
// heals itself, the load, and the parts of every other size, which nobody sees
// any more. A page without a failed part has no failure.
//
// Threads: any. One leaf lock.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>

#include "document/PageFailure.h"
#include "platform/concurrency/CriticalSection.h"

namespace velko::vkit {

class PageFailures {
public:
    // Size of the page's picture and its rotation, then the part's rectangle
    // in it. All zeros stand for the load.
    struct Part {
        std::array<std::int32_t, 3> view{};
        std::array<std::int32_t, 4> area{};
        auto operator<=>(const Part&) const = default; // NOLINT(modernize-use-nullptr): it has none
    };

    // True when the page had no failure, or one with another code.
    bool Note(const Part& part, PageFailure failure);

    // True when the page has no failure any more.
    bool Heal(std::int32_t nPageIndex, const Part& part);

    std::optional<PageFailure> Find(std::int32_t nPageIndex) const;

private:
    using Parts = std::map<Part, PageFailure>;

    mutable concurrency::critical_section m_lock;
    std::map<std::int32_t, Parts> m_pages VLK_GUARDED_BY(m_lock);
};

}
