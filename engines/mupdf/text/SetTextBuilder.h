// Where a page's characters stand once its text is set anew.
//
// Threads: pure function; no lock of the document is needed.
#pragma once

#include <vector>

#include "engines/mupdf/PageTable.h"
#include "engines/mupdf/reflow/Layout.h"
#include "engines/mupdf/text/PageTextBuilder.h"

namespace velko::engines::mupdf::text {

// The characters of `own`, at their indexes. Those that a figure shows stand in it; those
// that are shown nowhere, as a hyphen that was undone, have no width, behind the one
// before. Lines are those of the setting, parted where a block of `own` ends. In page
// space: the page's box, as the page lies, is the whole of the layout.
pdf::PageText PlaceText(const CachedText& own, const reflow::Layout& layout,
                        const std::vector<reflow::SetPlace>& places, const PageFacts& facts);

}
