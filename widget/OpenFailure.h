// Why a document did not open, in words for the reader.
//
// Threads: any.
#pragma once

#include <QString>
#include <exception>

#include "document/engine/ErrorCode.h"

namespace velko::vkit {

// A sentence for the code of an open that failed; not for success.
QString ReasonOf(velko::common::ErrorCode eCode);

// A sentence for a failure of the platform or of the engine.
QString ReasonOf(const std::exception_ptr& pError);

}
