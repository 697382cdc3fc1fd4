// What is known of a document's pages without interpreting them.
//
// An entry is written once and changes with edits of annotations only; the table fills from the
// front at `Load` and after it, and where somebody asks. Reading it never waits for engine work.
//
// Threads: any. One leaf lock.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "document/engine/Geometry.h"
#include "document/engine/HostServices.h"
#include "engines/mupdf/OpenedFile.h"
#include "platform/concurrency/CriticalSection.h"

namespace velko::engines::mupdf {

struct PageFacts {
    common::vxbase::RectF rcBox; // crop box within the media box, page space
    float fWidth = 612.0F;       // points, after rotation and user unit, 1 to 14,400
    float fHeight = 792.0F;
    std::int32_t nRotation = 0;    // quarter turns clockwise
    std::int32_t nAnnots = 0;      // entries of the annotation list
    std::uint64_t nGeneration = 0; // of that list: another one after each edit of it
    fz_matrix mListFromPage{};     // page space to the space of the page's display list
};

// Reads one page's facts; a page without a usable object or box counts as an
// empty letter page. May throw as the library does; guarded bodies only.
PageFacts ReadPageFacts(fz_context* ctx, const OpenedFile& file, std::int32_t nPage);

class PageTable {
public:
    explicit PageTable(std::int32_t nPages);

    std::int32_t Count() const { return m_nPages; }
    bool IsFull() const;
    std::optional<PageFacts> Find(std::int32_t nPage) const; // index in range
    void Put(std::int32_t nPage, const PageFacts& facts);
    // An edit changed the list. The page is known.
    void RenewAnnots(std::int32_t nPage, std::int32_t nAnnots, std::uint64_t nGeneration);
    pdf::PageExtent Largest() const; // of the pages known

private:
    static constexpr std::int32_t kChunk = 128;
    using Chunk = std::array<std::optional<PageFacts>, kChunk>;

    std::int32_t m_nPages;
    mutable concurrency::critical_section m_lock;
    std::int32_t m_nKnown VLK_GUARDED_BY(m_lock) = 0;
    pdf::PageExtent m_largest VLK_GUARDED_BY(m_lock);
    std::vector<std::unique_ptr<Chunk>> m_chunks VLK_GUARDED_BY(m_lock);
};

}
