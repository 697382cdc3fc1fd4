// What failed, in words for the reader: one sentence that says what is wrong and
// what to do about it, without a name out of the program.
//
// Threads: any.
#pragma once

#include <QString>
#include <exception>

#include "document/engine/ErrorCode.h"

namespace velko::vkit {

class FilePath;

// For any code but success.
QString ReasonOf(velko::common::ErrorCode eCode);

// For what a reader typed as a page, and no page or place of the document is called.
QString NoSuchPage(const QString& strTyped, int nPageCount);

// For a file that may not be read, or that the engine finds no document in (it says
// the same of all such files). Reads a little of the file, so it may take its time.
QString TroubleWith(const FilePath& path);

// For a failure of the platform, of the engine or of a host's handler.
QString ReasonOf(const std::exception_ptr& pError);

}
