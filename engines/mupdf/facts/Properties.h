// What a document says of its origin, and the fonts of its pages.
//
// Threads: under the lock of the document that owns the file.
#pragma once

#include <cstdint>
#include <vector>

#include "document/engine/DocumentFacts.h"
#include "engines/mupdf/OpenedFile.h"

namespace velko::engines::mupdf {

// Both raise `EngineException` for a failed read; what is broken is left out.
pdf::DocumentProperties ReadProperties(OpenedFile& file);
std::vector<pdf::FontFact> ReadFonts(OpenedFile& file, std::int32_t nPage);

}
