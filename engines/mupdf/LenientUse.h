// Uses of a file whose content may be wrong.
#pragma once

#include <utility>

#include "engines/mupdf/OpenedFile.h"

namespace velko::engines::mupdf {

// Runs what only the file's content can make fail; such a failure leaves out the rest
// of the body and nothing else. Raises what `OpenedFile::Use` raises for damage.
template <class Body>
void UseLeniently(OpenedFile& file, Body&& body) {
    try {
        file.Use(std::forward<Body>(body));
    } catch (const LibraryError&) {
        // What came before the fault stays.
    }
}

}
