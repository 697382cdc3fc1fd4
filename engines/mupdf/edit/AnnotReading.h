// What an annotation's dictionary says, as a record.
//
// Threads: under the lock of the document that owns the file. Units: page space.
#pragma once

#include "document/engine/AnnotEditor.h"
#include "engines/mupdf/OpenedFile.h"

namespace velko::engines::mupdf {

// `nRotation`: of the page, in quarter turns. What is broken reads as what a record says
// at first, what exceeds the limits is left out. Raises `EngineException` for a failed read.
pdf::AnnotRecord ReadAnnotRecord(OpenedFile& file, pdf_obj* pAnnot, std::int32_t nRotation);

// A note's icon stays upright on a page that is turned: its box stands for a place, the
// corner that is its top left one then. Gives the area that such a box covers, and the
// box for such an area.
fz_rect UprightArea(const fz_rect& rcBox, std::int32_t nRotation);
fz_rect BoxOfUpright(const fz_rect& rcArea, std::int32_t nRotation, float fWidth, float fHeight);

}
