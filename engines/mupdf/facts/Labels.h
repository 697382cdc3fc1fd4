// The labels that a document gives its pages.
//
// Threads: under the lock of the document that owns the file.
#pragma once

#include "document/engine/PageLabels.h"
#include "engines/mupdf/OpenedFile.h"

namespace velko::engines::mupdf {

// Raises `EngineException` for a failed read.
pdf::PageLabels ReadPageLabels(OpenedFile& file);

}
