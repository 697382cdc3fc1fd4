// Which parts of a drawing are pictures, for colour mappings that leave them alone.
//
// A picture is a sampled image with more than one bit a component; stencils
// and black and white scans are drawn ink and take part in a mapping.
//
// Threads: any, with the calling thread's context.
#pragma once

#include <mupdf/fitz.h>

namespace velko::engines::mupdf {

struct PictureFacts {
    bool bHas = false;   // a picture is drawn
    bool bIsAll = false; // they cover the page, or nearly, and no text shows on them
};

// What the list draws of pictures, on a page of that area; where it cannot be told
// it has some. An empty area is no page. Never raises.
PictureFacts ProbePictures(fz_display_list* pList, const fz_rect& rcPage) noexcept;

// A device that fills the areas of pictures in `pMask`, as far as the clips of
// the drawing leave them visible, and draws nothing else. `pMask` has an alpha
// channel only. May throw as the library does.
fz_device* NewPictureDevice(fz_context* ctx, fz_pixmap* pMask);

}
