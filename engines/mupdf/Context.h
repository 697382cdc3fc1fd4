// The library's context: one for the process, and a clone of it per thread.
//
// Threads: any. The context and what all clones share live until the process
// ends, so objects of the library may be dropped at any time before.
#pragma once

#include <mupdf/fitz.h>

namespace velko::engines::mupdf {

// The calling thread's context, made at its first use and dropped when the
// thread ends. Raises `EngineException` (out of memory).
fz_context* ThreadContext();

// Gives back the cached resources of all documents (decoded pictures, fonts),
// as far as nothing uses them. For tests and for a host short of memory.
void EmptyStore();

}
