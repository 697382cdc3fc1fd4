// What a page's content draws (one part), or what its annotations draw (a part
// for each entry of the page's list).
//
// Threads: immutable; may be run by several threads.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <vector>

#include "engines/mupdf/Guard.h"
#include "engines/mupdf/OpenedFile.h"
#include "engines/mupdf/PageCache.h"
#include "engines/mupdf/edit/AnnotEntry.h"

namespace velko::engines::mupdf {

// Its bytes are what it took to make, resources included; cut short is one whose
// time ran out: the rest is missing.
struct Drawing : CacheItem {
    struct Part {
        DisplayListHandle list; // empty for nothing to show
        fz_rect rcBounds = fz_infinite_rect;
        bool bHasPictures = false; // sampled images of more than one bit
        bool bIsPicture = false;   // they are all there is to see of the page
    };

    std::shared_ptr<OpenedFile> pFile; // the lists may point into its fonts
    std::vector<Part> parts;
    std::vector<AnnotEntry> annots; // a part for each, of a drawing of annotations

    // The part of that annotation; empty for one that is not there.
    std::optional<std::size_t> PartOf(pdf::AnnotId nId) const;

    enum class Brightness { Unknown, Dark, Bright };
    // Of a page that is a picture, once somebody needed it.
    mutable std::atomic<Brightness> eBrightness = Brightness::Unknown;
};

}
