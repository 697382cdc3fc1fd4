// The files that are attached to a document.
//
// Threads: under the lock of the document that owns the file.
#pragma once

#include <cstdint>
#include <vector>

#include "document/engine/DocumentFacts.h"
#include "engines/mupdf/OpenedFile.h"

namespace velko::engines::mupdf {

// In the order of their names in the document. Raises `EngineException` for a failed read.
std::vector<pdf::AttachedFile> ReadAttachedFiles(OpenedFile& file);

// Raises as above, e_ErrParam for an index out of range and e_ErrInvalidData for a file
// whose bytes cannot be had.
std::vector<std::uint8_t> ReadAttachedBytes(OpenedFile& file, std::int32_t nFile);

}
