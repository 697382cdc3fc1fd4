// What the host gets to draw on a page or block that was just rendered.
//
// Valid for the length of the event; drawing goes through `Renderer`.
// Threads: the render worker that raises the event.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "document/engine/Geometry.h"

namespace velko::common {
class Renderer;
}

namespace velko::vkit {

class RenderPageEventArgs {
public:
    RenderPageEventArgs(std::shared_ptr<velko::common::Renderer> pRenderer, std::int32_t nPageIndex,
                        const velko::common::vxbase::Matrix2D& matrix)
        : Renderer(std::move(pRenderer)), PageIndex(nPageIndex), Matrix(matrix) {}

    const std::shared_ptr<velko::common::Renderer> Renderer;
    const std::int32_t PageIndex;
    const velko::common::vxbase::Matrix2D Matrix; // page space to the bitmap
};

}
