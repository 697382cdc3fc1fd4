// Putting a record into an annotation's dictionary, and drawing its appearance.
//
// Threads: under the lock of the document that owns the file; guarded bodies only, all
// may throw as the library does. Units: page space.
#pragma once

#include <mupdf/pdf.h>

#include <cstdint>

#include "document/engine/AnnotEditor.h"

namespace velko::engines::mupdf {

// A new dictionary of a kind that can be made, without what a record says; the caller
// owns it. `nRotation`: of the page, in quarter turns.
pdf_obj* NewAnnotDictionary(fz_context* ctx, pdf_document* pDocument, std::int32_t nKind,
                            pdf_obj* pPage, std::int32_t nRotation);

// Writes the given fields and leaves the others as they are.
void WriteAnnotFields(fz_context* ctx, pdf_obj* pAnnot, const pdf::AnnotRecord& record,
                      unsigned nFields, std::int32_t nRotation);

// Has the library draw the annotation of that object number anew, as its dictionary is
// now. The page was loaded after the last change. Other annotations stay as they are.
void DrawAppearance(fz_context* ctx, pdf_page* pPage, int nObject);

}
