// Copying one open file's bytes into another.
#pragma once

namespace Windows::Storage::Posix {

// Into an empty file. Holes stay holes. Where the file system can, it shares or
// copies the bytes itself. Raises `FileChangedException` for a source that gets
// shorter meanwhile.
void CopyBytes(int nSource, int nTarget);

}
