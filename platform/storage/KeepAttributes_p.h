// What of a file stays when its bytes are replaced.
#pragma once

#include <sys/stat.h>

#include <string>

namespace Windows::Storage::Posix {

// Gives the open new file the owner and group, permissions, access list and
// extended attributes of the file that it replaces, which `strOld` names and `old`
// describes. A user's own attributes are kept or the call raises; others as far as
// this process may. Nobody gets more access than before: without the
// old group, its permissions go to the new one only as far as everybody has them;
// without the old access list the file is its owner's alone.
void KeepAttributes(int nFd, const std::string& strOld, const struct stat& old);

}
