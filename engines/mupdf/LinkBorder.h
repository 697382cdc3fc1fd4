// The frames around links, which the library does not draw.
//
// Threads: under the lock of the document that owns the file. Units: page space.
#pragma once

#include <mupdf/fitz.h>
#include <mupdf/pdf.h>

#include <array>

#include "engines/mupdf/OpenedFile.h"

namespace velko::engines::mupdf {

// Plain data, for guarded bodies.
struct LinkBorder {
    static constexpr int kMostDashes = 8;
    static constexpr int kMostColors = 4;

    fz_rect rcArea = fz_empty_rect; // the line lies within it, touching its edge
    float fWidth = 0.0F;            // 0: there is nothing to draw
    float fRadiusX = 0.0F;          // of the corners
    float fRadiusY = 0.0F;
    bool bUnderline = false; // along the bottom alone
    int nDashes = 0;         // 0: solid
    std::array<float, kMostDashes> dashes{};
    int nColors = 1; // 1 grey, 3 red, green, blue, 4 printing colours
    std::array<float, kMostColors> color{};
};

// Whether an entry of a page's annotation list is a link, and not a hidden one. May
// throw as the library does.
bool IsShownLink(fz_context* ctx, pdf_document* pDocument, pdf_obj* pEntry);

// What the file says of the border of such an entry; none for what is no such
// link or brings an appearance of its own. May throw as
// the library does.
LinkBorder ReadLinkBorder(fz_context* ctx, pdf_document* pDocument, pdf_obj* pEntry);

// May throw as the library does. `toDevice` maps page space.
void DrawLinkBorder(fz_context* ctx, fz_device* pDevice, const LinkBorder& border,
                    const fz_matrix& toDevice);

}
