// A save was asked for while one of the same document is under way.
//
// Threads: a value; throw and catch anywhere.
#pragma once

#include "platform/foundation/Exception.h"

namespace velko::vkit {

inline constexpr Platform::HRESULT ERROR_BUSY = Platform::MakeHResult(0x800700AAU);

class SaveInProgressException : public Platform::Exception {
public:
    SaveInProgressException()
        : Platform::Exception(ERROR_BUSY, "the document is being saved already") {}
    const char* TypeName() const noexcept override {
        return "velko::vkit::SaveInProgressException";
    }
};

}
