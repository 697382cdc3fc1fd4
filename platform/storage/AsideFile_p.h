// A file that is written in a folder before it takes the name of another.
#pragma once

#include <sys/types.h>

#include <string>

#include "platform/storage/PosixCalls_p.h"

namespace Windows::Storage::Posix {

// It has no name while it is written, where the file system can do that, so that
// the death of the process leaves nothing. It gets a hidden one just before the
// renaming (elsewhere: at once), and is held by a `flock` as long as it has that:
// by this a dead process's is told from one in use.
class AsideFile {
public:
    // Readable and writable. `nMode` less what the process's mask takes away.
    AsideFile(const std::string& strFolder, mode_t nMode);
    ~AsideFile(); // removes the hidden name
    AsideFile(const AsideFile&) = delete;
    AsideFile& operator=(const AsideFile&) = delete;

    const SharedDescriptor& Descriptor() const { return m_pFd; }
    int Fd() const { return m_pFd->Get(); }

    void GiveName();                             // the hidden one, if it has none yet
    void RenameTo(const std::string& strTarget); // after `GiveName`; ends the hold

private:
    bool MakeNameless(mode_t nMode);
    void MakeNamed(mode_t nMode);

    const std::string m_strFolder;
    std::string m_strPath; // the hidden name; empty without
    SharedDescriptor m_pFd;
};

// Removes the hidden names that dead processes have left in the folder. What
// cannot be looked at or removed stays.
void RemoveAbandoned(const std::string& strFolder);

}
