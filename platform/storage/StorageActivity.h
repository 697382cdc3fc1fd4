// Whether file operations are under way, for tools that wait until nothing is.
// Threads: any.
#pragma once

namespace Windows::Storage {

// True while a file operation of this process waits or runs, the handlers that
// run where it ends included.
bool AreFileOperationsPending();

}
