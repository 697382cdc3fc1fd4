// A file that was pinned for reading was written to since: its bytes are no
// longer those of the moment of the pinning, and no second try brings them back.
//
// Threads: a value; throw and catch anywhere.
#pragma once

#include <string>

#include "platform/foundation/Exception.h"

namespace Platform {

inline constexpr HRESULT ERROR_FILE_INVALID = MakeHResult(0x800703EEU);

class FileChangedException : public Exception {
public:
    explicit FileChangedException(const std::string& strMessage = "the file was changed")
        : Exception(ERROR_FILE_INVALID, strMessage) {}
    const char* TypeName() const noexcept override { return "Platform::FileChangedException"; }
};

}
