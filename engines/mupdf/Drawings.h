// Interpreting pages and annotations into display lists.
//
// Threads: under the lock of the document that owns the file. The lists are in
// the library's page space: points, Y down, after rotation and user unit.
#pragma once

#include <cstdint>
#include <memory>

#include "engines/mupdf/Drawing.h"
#include "engines/mupdf/OpenedFile.h"
#include "engines/mupdf/Operation.h"

namespace velko::engines::mupdf {

// Content that is broken, or that exceeds the operation's time, is drawn as
// far as it goes; in the second case the drawing says that it was cut short.
// Raises `EngineException` for a failed read, for want of memory and for a page
// that the file does not have, `task_canceled` when the operation is aborted.
std::shared_ptr<const Drawing> DrawContent(std::shared_ptr<OpenedFile> pFile, std::int32_t nPage,
                                           Operation& operation);

// As above, with one part for each entry of the page's list.
std::shared_ptr<const Drawing> DrawAnnots(std::shared_ptr<OpenedFile> pFile, std::int32_t nPage,
                                          Operation& operation);

}
