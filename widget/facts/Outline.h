// A document's outline as a tree, with the place in the document where each entry's
// section begins.
//
// Made once, off the UI thread, and immutable from then on. Threads: any.
// Entries are known by their index in the order in which the whole tree reads; -1 is
// what all entries at the top lie under.
#pragma once

#include <cstdint>
#include <vector>

#include "document/engine/DocumentFacts.h"
#include "document/engine/PDFDoc.h"

namespace velko::vkit {

// A height in the document: a share of a page's height from its top, as the page is
// shown when the reader has not turned it.
struct DocumentHeight {
    std::int32_t nPage = -1; // -1: nowhere in the document
    float fShare = 0.0F;
};

class Outline {
public:
    using Entry = velko::pdf::OutlineEntry;
    static constexpr int kRoot = -1;

    Outline() : Outline({}, {}) {}

    // Where the entries of `document` lead is found out here.
    static Outline Of(velko::pdf::PDFDoc& document);

    // `heights` one for each entry.
    Outline(std::vector<Entry> entries, std::vector<DocumentHeight> heights);

    bool IsEmpty() const { return m_entries.empty(); }
    int Count() const { return static_cast<int>(m_entries.size()); }
    const Entry& operator[](int nEntry) const { return m_entries[At(nEntry)]; }
    const DocumentHeight& HeightOf(int nEntry) const { return m_heights[At(nEntry)]; }

    int ParentOf(int nEntry) const { return m_parents[At(nEntry)]; }
    int RowOf(int nEntry) const { return m_rows[At(nEntry)]; } // among those of its parent
    int CountUnder(int nParent) const;
    int ChildOf(int nParent, int nRow) const { return m_children[FirstChildSlot(nParent, nRow)]; }

    // The entry whose section is read there: the last one that begins at that height or
    // above it, of several at one height the last; -1 where none does.
    int ReadAt(const DocumentHeight& height) const;

private:
    static std::size_t At(int nEntry) { return static_cast<std::size_t>(nEntry); }
    std::size_t FirstChildSlot(int nParent, int nRow) const {
        return At(m_firstChild[At(nParent + 1)] + nRow);
    }
    void MakeTree();
    void SortHeights();

    std::vector<Entry> m_entries;
    std::vector<DocumentHeight> m_heights;
    std::vector<int> m_parents;
    std::vector<int> m_rows;
    std::vector<int> m_children;   // of all, those of one parent together
    std::vector<int> m_firstChild; // in `m_children`, by parent + 1; one more for the end
    std::vector<int> m_byHeight;   // entries that lead into the document
};

}
