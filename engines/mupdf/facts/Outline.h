// The tree of a document's headings.
//
// Threads: under the lock of the document that owns the file.
#pragma once

#include <cstdint>
#include <vector>

#include "document/engine/DocumentFacts.h"
#include "engines/mupdf/Destinations.h"
#include "engines/mupdf/OpenedFile.h"

namespace velko::engines::mupdf {

// Ends where the tree runs in a circle, and at a bound of entries and of depth.
// Raises `EngineException` for a failed read.
std::vector<pdf::OutlineEntry> ReadOutline(OpenedFile& file, std::int32_t nPages,
                                           const PageTop& fnPageTop);

}
