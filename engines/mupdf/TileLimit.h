// Keeps tiling patterns from taking for ever.
//
// The library paints every tile of a pattern in one step that nothing can
// break off. A pattern whose steps are tiny would ask for billions of tiles.
//
// Threads: any.
#pragma once

#include <mupdf/fitz.h>

namespace velko::engines::mupdf {

// From now on patterns that would need too many tiles are drawn by the device
// with longer steps. `pDevice` comes from `fz_new_draw_device`.
void LimitTiles(fz_device* pDevice);

}
