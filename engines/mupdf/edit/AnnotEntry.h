// An entry of a page's list of annotations.
//
// Threads: a value.
#pragma once

#include <cstdint>

#include "document/engine/AnnotEditor.h"

namespace velko::engines::mupdf {

struct AnnotEntry {
    pdf::AnnotId nId = 0;    // 0 for an entry that is no annotation
    std::int32_t nKind = -1; // as in `document/engine/Annot.h`; -1 for such an entry
};

}
