// Replacing a file's bytes in one act.
#pragma once

#include <optional>
#include <string>

#include "platform/storage/AsideFile_p.h"
#include "platform/storage/FileVersion.h"

namespace Windows::Storage::Posix {

// Follows the links that `strPath` itself is, to the name that a replacement
// must take; the last name need not exist. Raises `FileNotFoundException` for
// links without end.
std::string ResolveLinks(const std::string& strPath);

// A new file for the place of another: written aside in the target's folder and,
// at the commit, synchronised, renamed, the folder synchronised. At any moment, a
// power cut included, the target is the old file or the whole new one. A target
// that is a link stays one. A write-protected target or one that is no file is
// refused, at the start and at the commit.
class Replacement {
public:
    explicit Replacement(const std::string& strTarget); // makes the file aside, empty

    const SharedDescriptor& Descriptor() const { return m_aside.Descriptor(); }
    int Fd() const { return m_aside.Fd(); }

    // Raises `FileChangedException` when the target is not of that version.
    void DemandUnchanged(const FileVersion& expected) const;

    // Once. With an expected version the target is looked at right before the
    // renaming. A failure before that leaves the target as it was; one after it
    // (the folder's synchronisation) is raised although the new file is in
    // place. Gives the version of the new file.
    FileVersion Commit(const std::optional<FileVersion>& expected);

private:
    const std::string m_strTarget; // links resolved
    AsideFile m_aside;
};

// Replaces by a copy of the open file, which must be of that version from the
// copy's beginning to its end: raises `FileChangedException` otherwise.
FileVersion ReplaceWithCopy(int nSource, const FileVersion& source, const std::string& strTarget,
                            const std::optional<FileVersion>& expected);

}
