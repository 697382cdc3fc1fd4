// Interpreted pages and annotations, kept within a bound.
//
// A drawing holds the list that it runs, so an entry may leave the cache at any
// time; whoever needs it again has the page interpreted once more. The least
// recently used entries leave first. A list that alone exceeds the bound stays
// until the next one comes.
//
// Threads: any. One leaf lock; entries are dropped outside of it.
#pragma once

#include <atomic>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <vector>

#include "engines/mupdf/Guard.h"
#include "engines/mupdf/OpenedFile.h"
#include "platform/concurrency/CriticalSection.h"

namespace velko::engines::mupdf {

// What a page's content draws (one part), or what its annotations draw (a part
// for each entry of the page's list). Immutable; may be run by several threads.
struct Drawing {
    struct Part {
        DisplayListHandle list; // empty for nothing to show
        fz_rect rcBounds = fz_infinite_rect;
        bool bHasPictures = false; // sampled images of more than one bit
        bool bIsPicture = false;   // they are all there is to see of the page
    };

    std::shared_ptr<OpenedFile> pFile; // the lists may point into its fonts
    std::vector<Part> parts;
    std::size_t nBytes = 1; // what it took to make, resources included; above 0
    bool bCutShort = false; // its time ran out: the rest is missing

    enum class Brightness { Unknown, Dark, Bright };
    // Of a page that is a picture, once somebody needed it.
    mutable std::atomic<Brightness> eBrightness = Brightness::Unknown;
};

class DisplayListCache {
public:
    enum class Kind { Content, Annots };

    struct Key {
        std::uint64_t nDocument = 0;
        std::int32_t nPage = 0;
        Kind eKind = Kind::Content;
        auto operator<=>(const Key&) const = default; // NOLINT(modernize-use-nullptr): it has none
    };

    struct Limits {
        std::size_t nBytes = std::size_t{48} << 20; // of all documents
        std::size_t nBytesPerDocument = std::size_t{16} << 20;
    };

    // The one of the process.
    static DisplayListCache& Instance();

    // A number for a document's keys, never used twice.
    std::uint64_t NewDocument();

    std::shared_ptr<const Drawing> Find(const Key& key);
    void Put(const Key& key, std::shared_ptr<const Drawing> pDrawing);
    void DropDocument(std::uint64_t nDocument);
    void DropCutShort(std::uint64_t nDocument, std::int32_t nPage);

    void SetLimits(const Limits& limits);
    std::size_t Bytes() const;
    std::size_t Count() const;

private:
    struct Entry {
        Key key;
        std::shared_ptr<const Drawing> pDrawing;
    };
    using Entries = std::list<Entry>;
    using Dropped = std::vector<std::shared_ptr<const Drawing>>;

    Entries::iterator Remove(Entries::iterator it, Dropped& dropped) VLK_REQUIRES(m_lock);
    std::size_t BytesOf(std::uint64_t nDocument) const VLK_REQUIRES(m_lock);
    void Trim(std::uint64_t nDocument, Dropped& dropped) VLK_REQUIRES(m_lock);

    std::atomic<std::uint64_t> m_nNextDocument = 1;
    mutable concurrency::critical_section m_lock;
    Limits m_limits VLK_GUARDED_BY(m_lock);
    Entries m_entries VLK_GUARDED_BY(m_lock); // the most recently used first
    std::map<Key, Entries::iterator> m_index VLK_GUARDED_BY(m_lock);
    std::map<std::uint64_t, std::size_t> m_bytes VLK_GUARDED_BY(m_lock); // per document
    std::size_t m_nBytes VLK_GUARDED_BY(m_lock) = 0;
};

}
