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

// The number of leaves of the tree, at most `nLimit`. Gives up with an error on
// a tree that is all branches.
std::int32_t CountPageLeaves(fz_context* ctx, pdf_document* pDocument, std::int32_t nLimit);

// Fills `objects` with the object numbers of the first pages. False when the
// tree has fewer, or pages that are no objects of their own.
bool ListPageLeaves(fz_context* ctx, pdf_document* pDocument, std::span<std::int32_t> objects);

}
