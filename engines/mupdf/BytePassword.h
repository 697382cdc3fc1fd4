// Passwords by their bytes, in files older than the Unicode ones.
//
// The library takes a password as text and gives each letter a code of its own; for
// some bytes it has no letter. Programs wrote whatever bytes they had.
// Threads: one at a time for a document. Errors: none of its own.
#pragma once

#include <mupdf/pdf.h>

#include <string_view>

namespace velko::engines::mupdf {

// Opens the document's encryption by these bytes, and leaves it as it is where they do
// not fit or its passwords are Unicode. As `pdf_authenticate_password`: 0, 2 for the
// user's password, 4 for the owner's. Guarded bodies only; leaves copies on the stack.
int AuthenticateBytes(fz_context* ctx, pdf_document* pDocument, std::string_view bytes);

}
