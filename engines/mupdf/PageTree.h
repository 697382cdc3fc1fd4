// The order of a file's pages, read from its page tree.
//
// The library finds a page by walking the tree each time; for thousands of
// sizes the walk is done once. (The library's own map of the tree keeps a
// reference too many for every look-up, so it is not used.)
//
// Threads: under the lock of the document that owns the file; guarded bodies
// only, all may throw as the library does.
#pragma once

#include <mupdf/pdf.h>

#include <cstdint>
#include <span>

namespace velko::engines::mupdf {

struct PageLeaves {
    std::int32_t nCount = 0;
    bool bAllNumbered = true; // whether every page is an object of its own
};

// Fills `objects` with the object numbers of the pages in their order, as many
// as it has room for. Gives up with an error on a tree that is all branches.
PageLeaves ListPageLeaves(fz_context* ctx, pdf_document* pDocument,
                          std::span<std::int32_t> objects);

}
