// Has the library write a document.
//
// Threads: one at a time, with a file that nobody else uses.
#pragma once

#include <memory>

#include "engines/mupdf/OpenedFile.h"
#include "engines/mupdf/save/SaveTarget.h"

namespace velko::engines::mupdf {

// Whether an update can stand behind the file's own bytes.
bool CanBeUpdated(OpenedFile& file);

// Appends what was changed of the file to the target, which holds the file's bytes; or
// writes all of it into a target that is empty. Protected as the file is. Once for a file.
// Raises what the target raises, and `EngineException`.
void WriteUpdate(OpenedFile& file, std::shared_ptr<SaveTarget> pTarget);
void WriteAnew(OpenedFile& file, std::shared_ptr<SaveTarget> pTarget);

}
