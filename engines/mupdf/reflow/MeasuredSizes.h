// How large the pages of a document come out, for the last few parameters.
//
// Sizes are small, so that those of a long document stay while the texts that they
// were found with come and go.
//
// Threads: any. One leaf lock.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <optional>
#include <unordered_map>

#include "engines/mupdf/reflow/SetParameters.h"
#include "platform/concurrency/CriticalSection.h"

namespace velko::engines::mupdf::reflow {

struct MeasuredSize {
    std::int32_t nWidth = 0; // pixels
    std::int32_t nHeight = 0;
    bool bCutShort = false;
    std::uint64_t nAnnots = 0; // the generation of the page's annotations
};

class MeasuredSizes {
public:
    static constexpr std::size_t kMostParameters = 4;
    static constexpr std::size_t kMostPages = 20'000; // for each of them

    // What the document's content counts as: anew after `Clear`.
    std::uint64_t Generation() const;

    // A number that stands for the parameters as long as they are remembered; never
    // used for others, nor for these after `Clear`.
    std::uint64_t NumberOf(const SetParameters& parameters);

    // Those asked for last, with their number; empty when none are remembered.
    struct Numbered {
        std::uint64_t nNumber = 0;
        SetParameters parameters;
    };
    std::optional<Numbered> Latest() const;

    std::optional<MeasuredSize> Find(std::uint64_t nNumber, std::int32_t nPage);

    // Does nothing for a number that is not remembered any more.
    void Put(std::uint64_t nNumber, std::int32_t nPage, const MeasuredSize& size);

    // True for a page that was measured whole, for whatever parameters.
    bool Knows(std::int32_t nPage) const;

    void ForgetCutShort(std::int32_t nPage);
    void Clear();

private:
    struct Shelf {
        SetParameters parameters;
        std::uint64_t nNumber = 0;
        std::unordered_map<std::int32_t, MeasuredSize> sizes; // by page
    };

    Shelf* FindShelf(std::uint64_t nNumber) VLK_REQUIRES(m_lock);

    mutable concurrency::critical_section m_lock;
    std::list<Shelf> m_shelves VLK_GUARDED_BY(m_lock); // the last asked for first
    std::uint64_t m_nLastNumber VLK_GUARDED_BY(m_lock) = 0;
    std::uint64_t m_nGeneration VLK_GUARDED_BY(m_lock) = 0;
};

}
