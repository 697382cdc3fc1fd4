// A look at what has come in the place of a document's file, by an engine document of its
// own, before the shown one is let go.
#pragma once

#include <memory>

#include "platform/concurrency/Task.h"
#include "platform/foundation/SecretText.h"
#include "platform/storage/FileVersion.h"
#include "widget/FilePath.h"

namespace velko::vkit {

class OpenedFile;

struct JudgedFile {
    enum class Kind {
        Good,
        Repaired, // it opens, but parts of it may be missing
        Locked,   // it asks for another password
        Broken,
        Unread // there is none, or it was written to meanwhile
    };

    Kind eKind = Kind::Unread;
    Windows::Storage::FileVersion version; // but for Unread
    // The same bytes, for the control to open; empty for what cannot be shown.
    std::shared_ptr<OpenedFile> pFile;
};

// Threads: begun on the UI thread, where it ends too. Errors: none.
concurrency::task<JudgedFile> JudgeFile(FilePath path, Platform::SecretText password);

}
