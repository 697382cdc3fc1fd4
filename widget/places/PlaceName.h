// What a place in a document is called: the section of the outline that is read there,
// else the first words in sight, else the page.
#pragma once

#include <cstdint>
#include <string>

#include "platform/concurrency/Task.h"
#include "platform/foundation/Geometry.h"

namespace velko::vkit {

class VelkoPdfView;

// For the shown document, at the reader's place; `ptTop` is a point of the page, below
// which words count. Threads: begun on the UI thread, where it ends too. Errors: none.
concurrency::task<std::string> NameOfPlace(const VelkoPdfView& view, std::int32_t nPage,
                                           Windows::Foundation::Point ptTop);

}
