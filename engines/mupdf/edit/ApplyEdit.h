// Carrying out an edit on a file that the library has open: the one that is shown, one
// that takes its place after damage, or one that is to be written.
//
// Threads: under the lock of the document that owns the file.
#pragma once

#include <cstdint>
#include <vector>

#include "engines/mupdf/OpenedFile.h"
#include "engines/mupdf/edit/EditLog.h"

namespace velko::engines::mupdf {

struct EditOutcome {
    std::int32_t nAnnots = 0; // entries of the page's list now
    bool bIsOriginal = false; // an annotation of the file says again what it said there
};

// Raises `EngineException`: e_ErrParam for what the page does not have and for a record
// that makes no annotation, with nothing changed; else the codes of a failed read, or what
// the library complains of, with the file damaged.
EditOutcome ApplyEdit(OpenedFile& file, const AnnotEdit& edit);

// All of them, on a file that was just opened. Raises as above.
void Replay(const std::vector<EditLog::Entry>& edits, OpenedFile& file);

}
