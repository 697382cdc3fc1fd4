// Why a page is not shown, or not all of it.
//
// Threads: values.
#pragma once

#include <cstdint>
#include <string>

#include "document/engine/ErrorCode.h"

namespace velko::vkit {

struct PageFailure {
    std::int32_t nPageIndex = 0;

    // e_ErrFile: bytes of the file could not be read; the next render tries anew.
    // e_ErrConflict: the file was written to since it was opened; only opening
    // it again helps. e_ErrOutOfMemory: there was no memory for the page.
    // e_ErrNotFound: the file is damaged and has no such page.
    // e_ErrDataNotReady: the page took too long; what came of it is shown.
    // Any other: as the engine said.
    velko::common::ErrorCode eCode = velko::common::ErrorCode::e_ErrUnknown;

    std::string strReason; // one line for logs, no words for a reader
};

}
