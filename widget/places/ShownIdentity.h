// Reads by what the shown document is known again: the version of its file and a
// fingerprint of it on the file threads and the task pool, and the document's identifier.
//
// The work is bound: two pieces of the file are read, whatever its size.
#pragma once

#include "component/DocIdentity.h"
#include "platform/concurrency/Task.h"

namespace velko::vkit {

class PDFViewCtrl;

// Threads: begun on the UI thread, where it ends too. Errors: none; what cannot be read is
// not known, and without a document's file the path is empty.
concurrency::task<DocIdentity> ReadIdentityOf(PDFViewCtrl& control);

}
