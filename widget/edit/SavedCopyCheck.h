// A host's look at what is to replace a document's file: a second engine document over
// the written bytes has to open, and to have the same pages.
//
// Threads: any but the UI thread. Errors: raises `BadSaveException` for what is not the
// document, and as the file does where it cannot be read.
#pragma once

#include <memory>

#include "platform/storage/StorageFile.h"

namespace velko::pdf {
class PDFDoc;
}

namespace velko::vkit {

// What is protected by a password, which nobody keeps for this, has to ask for one.
void CheckSavedCopy(const Windows::Storage::StorageFile& file, velko::pdf::PDFDoc& original);

}
