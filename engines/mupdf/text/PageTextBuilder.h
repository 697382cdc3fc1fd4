// A page's text with its places, of what its content draws.
//
// Lines and the order of columns are those of the text that is set anew
// (`reflow/`), so that a page reads alike in both. Annotations are no part of it:
// what a reader adds to a page changes none of its characters.
//
// Threads: pure function; no lock of the document is needed.
#pragma once

#include <cstdint>
#include <vector>

#include "document/engine/PageText.h"
#include "engines/mupdf/Drawing.h"
#include "engines/mupdf/Operation.h"
#include "engines/mupdf/PageTable.h"

namespace velko::engines::mupdf::text {

struct CachedText : CacheItem {
    pdf::PageText text;
    std::vector<std::uint32_t> sources; // of each character, its number in the extraction
};

// Raises `EngineException` for want of memory, `task_canceled` when the operation is
// aborted.
CachedText BuildPageText(const Drawing& content, const PageFacts& facts, Operation& operation);

}
