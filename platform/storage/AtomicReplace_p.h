// Replacing a file's bytes in one act.
#pragma once

#include <string>

namespace Windows::Storage::Posix {

// Follows the links that `strPath` itself is, to the name that a replacement
// must take; the last name need not exist. Raises `FileNotFoundException` for
// links without end.
std::string ResolveLinks(const std::string& strPath);

// Puts a copy of the open file in place of `strTarget`: written aside in the
// target's folder, synchronised, renamed, the folder synchronised. At any
// moment, a power cut included, the target is the old file or the whole new
// one. Owner and permissions stay the target's, a target that is a link stays one, holes
// stay holes. A write-protected target or one that is no file is refused. A
// failure before the renaming leaves nothing behind; one after it (the folder's
// synchronisation) is raised although the new file is in place.
void ReplaceWithCopy(int nSource, const std::string& strTarget);

}
