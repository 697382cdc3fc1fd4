// A page of the library, loaded for a piece of work; a file has one at a time.
//
// Threads: under the lock of the document that owns the file.
#pragma once

#include <mupdf/pdf.h>

#include <cstdint>

#include "engines/mupdf/Guard.h"
#include "engines/mupdf/OpenedFile.h"

namespace velko::engines::mupdf {

inline void DropPage(fz_context* ctx, pdf_page* pPage) {
    fz_drop_page(ctx, &pPage->super);
}

using PageHandle = Handle<pdf_page, DropPage>;

// Raises `EngineException` (e_ErrNotFound) where the file has none that can be loaded: an
// empty page in its place would be a wrong one.
PageHandle LoadPage(OpenedFile& file, std::int32_t nPage);

}
