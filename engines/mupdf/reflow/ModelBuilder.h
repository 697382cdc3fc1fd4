// Makes the model of a page from what the page draws.
//
// The steps: `CapturePage` gives lines as they stand; lines that run one way
// are turned upright together; `OrderPieces` puts them and the figures into
// columns; `JoinRows` makes paragraphs. What runs most ways comes first.
//
// Threads: one at a time; no lock of the document is needed.
#pragma once

#include "engines/mupdf/Operation.h"
#include "engines/mupdf/reflow/PageModel.h"

namespace velko::engines::mupdf::reflow {

// The drawings are taken over; `pAnnots` may be empty. Raises as `CapturePage`.
PageModel BuildModel(std::shared_ptr<const Drawing> pContent,
                     std::shared_ptr<const Drawing> pAnnots, const fz_rect& rcPage,
                     Operation& operation);

}
