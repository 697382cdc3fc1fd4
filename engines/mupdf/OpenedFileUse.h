// How `OpenedFile::Use` notices damage. Included by OpenedFile.h only.
#pragma once

#include <utility>

#include "engines/mupdf/Allocator.h"
#include "engines/mupdf/Guard.h"
#include "engines/mupdf/OpenedFile.h"

namespace velko::engines::mupdf {

class OpenedFile::UseScope {
public:
    explicit UseScope(OpenedFile& file) : m_file(file) {}

    // Notes what went wrong meanwhile; raises when something did.
    void RaiseDamage() {
        const ReaderStream::Failure eFailure = m_file.m_stream.TakeFailure();
        const bool bRefused = m_watch.WasRefused();
        if (eFailure != ReaderStream::Failure::kNone || bRefused) {
            m_file.m_bDamaged = true;
        }
        if (eFailure == ReaderStream::Failure::kChanged) {
            throw common::EngineException(common::ErrorCode::e_ErrConflict,
                                          "the file was changed since it was opened");
        }
        if (eFailure == ReaderStream::Failure::kUnreadable) {
            throw common::EngineException(common::ErrorCode::e_ErrFile,
                                          "a read of the file failed");
        }
        if (bRefused) {
            throw common::EngineException(common::ErrorCode::e_ErrOutOfMemory, "out of memory");
        }
    }

private:
    OpenedFile& m_file;
    AllocationWatch m_watch;
};

template <class Body>
void OpenedFile::Use(Body&& body) {
    UseScope scope(*this);
    try {
        Guard(ThreadContext(), std::forward<Body>(body));
    } catch (const LibraryError&) {
        scope.RaiseDamage(); // the better reason, if there is one
        throw;
    }
    scope.RaiseDamage();
}

}
