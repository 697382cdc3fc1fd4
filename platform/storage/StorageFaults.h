// Failures of the file system on order, so that tests can see what each one
// leaves behind.
//
// The hook is asked before every system call of this folder that can fail
// for the disk's sake, by its name ("open", "pread", "pwrite", "copy_file_range",
// "fsync", "flock", "linkat", "rename", "unlink", ...; the making of a file is "create",
// of one without a name "tmpfile"), and before those of the settings' store ("store open", "store
// write", ...); it returns the error number to fail the call with, or 0 to let it pass. An empty
// hook, the state at start, costs one atomic load a call. Threads: any; the hook runs on the
// calling thread.
#pragma once

#include <functional>

namespace Windows::Storage {

using FaultHook = std::function<int(const char* pszCall)>;

// Replaces the hook; not while operations are under way.
void SetStorageFaultHook(FaultHook fnHook);

}
