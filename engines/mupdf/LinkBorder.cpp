#include "engines/mupdf/LinkBorder.h"

#include <algorithm>
#include <cmath>

namespace velko::engines::mupdf {

namespace {

constexpr float kUsualWidth = 1.0F;
constexpr float kUsualDash = 3.0F;
constexpr float kFinestDashes = 0.1F; // a sum below is a solid line to the eye

// How far the handles of a curve lie from its ends, of a radius, to draw a quarter circle.
constexpr float kRound = 0.5523F;

float NumberAt(fz_context* ctx, pdf_obj* pArray, int nIndex) {
    const float fNumber = pdf_array_get_real(ctx, pArray, nIndex);
    return std::isfinite(fNumber) ? std::max(fNumber, 0.0F) : 0.0F;
}

// Dashes of no length at all leave nothing of the line.
void ReadDashes(fz_context* ctx, pdf_obj* pDashes, LinkBorder& border) {
    const int nDashes = std::min(pdf_array_len(ctx, pDashes), LinkBorder::kMostDashes);
    float fSum = 0.0F;
    for (int i = 0; i < nDashes; ++i) {
        border.dashes[static_cast<std::size_t>(i)] = NumberAt(ctx, pDashes, i);
        fSum += border.dashes[static_cast<std::size_t>(i)];
    }
    border.nDashes = fSum < kFinestDashes ? 0 : nDashes;
    if (nDashes > 0 && fSum == 0.0F) {
        border.fWidth = 0.0F;
    }
}

void ReadStyle(fz_context* ctx, pdf_obj* pStyle, LinkBorder& border) {
    pdf_obj* const pWidth = pdf_dict_get(ctx, pStyle, PDF_NAME(W));
    pdf_obj* const pKind = pdf_dict_get(ctx, pStyle, PDF_NAME(S));
    border.fWidth = pdf_is_number(ctx, pWidth) ? pdf_to_real(ctx, pWidth) : kUsualWidth;
    border.bUnderline = pdf_name_eq(ctx, pKind, PDF_NAME(U)) != 0;
    if (pdf_name_eq(ctx, pKind, PDF_NAME(D)) != 0) {
        border.nDashes = 1;
        border.dashes[0] = kUsualDash;
        if (pdf_obj* const pDashes = pdf_dict_get(ctx, pStyle, PDF_NAME(D))) {
            ReadDashes(ctx, pDashes, border);
        }
    }
}

// The older form: both radii, the width and the dashes.
void ReadArray(fz_context* ctx, pdf_obj* pArray, LinkBorder& border) {
    constexpr int kWidthAt = 2;
    constexpr int kDashesAt = 3;
    border.fRadiusX = NumberAt(ctx, pArray, 0);
    border.fRadiusY = NumberAt(ctx, pArray, 1);
    border.fWidth =
        pdf_array_len(ctx, pArray) > kWidthAt ? NumberAt(ctx, pArray, kWidthAt) : kUsualWidth;
    ReadDashes(ctx, pdf_array_get(ctx, pArray, kDashesAt), border);
}

// No numbers at all stand for a border that cannot be seen.
void ReadColor(fz_context* ctx, pdf_obj* pColor, LinkBorder& border) {
    const int nColors = pdf_array_len(ctx, pColor);
    if (pdf_is_array(ctx, pColor) != 0 && nColors == 0) {
        border.fWidth = 0.0F;
    }
    if (nColors != 1 && nColors != 3 && nColors != LinkBorder::kMostColors) {
        return; // black
    }
    border.nColors = nColors;
    for (int i = 0; i < nColors; ++i) {
        border.color[static_cast<std::size_t>(i)] = std::min(NumberAt(ctx, pColor, i), 1.0F);
    }
}

// The line lies within the link's area. One that would leave no room there for what
// is linked is a mistake, and drawn at the usual width.
void Limit(LinkBorder& border) {
    const fz_rect& rc = border.rcArea;
    const float fMost = std::min(rc.x1 - rc.x0, rc.y1 - rc.y0) / 2.0F;
    if (!std::isfinite(fMost) || !(fMost > 0.0F) || !(border.fWidth > 0.0F)) {
        border.fWidth = 0.0F;
    } else if (!(border.fWidth < fMost)) {
        border.fWidth = std::min(kUsualWidth, fMost);
    }
    border.fRadiusX = std::min(border.fRadiusX, (rc.x1 - rc.x0 - border.fWidth) / 2.0F);
    border.fRadiusY = std::min(border.fRadiusY, (rc.y1 - rc.y0 - border.fWidth) / 2.0F);
}

// --- drawing; these may throw as the library does ---

void AddRounded(fz_context* ctx, fz_path* pPath, const fz_rect& rc, float fX, float fY) {
    const float fBackX = fX * (1.0F - kRound);
    const float fBackY = fY * (1.0F - kRound);
    fz_moveto(ctx, pPath, rc.x0 + fX, rc.y0);
    fz_lineto(ctx, pPath, rc.x1 - fX, rc.y0);
    fz_curveto(ctx, pPath, rc.x1 - fBackX, rc.y0, rc.x1, rc.y0 + fBackY, rc.x1, rc.y0 + fY);
    fz_lineto(ctx, pPath, rc.x1, rc.y1 - fY);
    fz_curveto(ctx, pPath, rc.x1, rc.y1 - fBackY, rc.x1 - fBackX, rc.y1, rc.x1 - fX, rc.y1);
    fz_lineto(ctx, pPath, rc.x0 + fX, rc.y1);
    fz_curveto(ctx, pPath, rc.x0 + fBackX, rc.y1, rc.x0, rc.y1 - fBackY, rc.x0, rc.y1 - fY);
    fz_lineto(ctx, pPath, rc.x0, rc.y0 + fY);
    fz_curveto(ctx, pPath, rc.x0, rc.y0 + fBackY, rc.x0 + fBackX, rc.y0, rc.x0 + fX, rc.y0);
    fz_closepath(ctx, pPath);
}

void AddLine(fz_context* ctx, fz_path* pPath, const LinkBorder& border) {
    const float fHalf = border.fWidth / 2.0F;
    const fz_rect rc = fz_expand_rect(border.rcArea, -fHalf);
    if (border.bUnderline) {
        fz_moveto(ctx, pPath, border.rcArea.x0, rc.y0);
        fz_lineto(ctx, pPath, border.rcArea.x1, rc.y0);
    } else if (border.fRadiusX > 0.0F && border.fRadiusY > 0.0F) {
        AddRounded(ctx, pPath, rc, border.fRadiusX, border.fRadiusY);
    } else {
        fz_rectto(ctx, pPath, rc.x0, rc.y0, rc.x1, rc.y1);
    }
}

fz_stroke_state* NewStroke(fz_context* ctx, const LinkBorder& border) {
    fz_stroke_state* const pStroke = fz_new_stroke_state_with_dash_len(ctx, border.nDashes);
    pStroke->linewidth = border.fWidth;
    pStroke->dash_len = border.nDashes;
    std::copy_n(border.dashes.begin(), border.nDashes, pStroke->dash_list);
    return pStroke;
}

fz_colorspace* ColorsOf(fz_context* ctx, const LinkBorder& border) {
    return border.nColors == 1   ? fz_device_gray(ctx)
           : border.nColors == 3 ? fz_device_rgb(ctx)
                                 : fz_device_cmyk(ctx);
}

}

bool IsShownLink(fz_context* ctx, pdf_document* pDocument, pdf_obj* pEntry) {
    constexpr int kHidden = PDF_ANNOT_IS_HIDDEN | PDF_ANNOT_IS_NO_VIEW;
    return pdf_name_eq(ctx, pdf_dict_get(ctx, pEntry, PDF_NAME(Subtype)), PDF_NAME(Link)) != 0 &&
           (pdf_dict_get_int(ctx, pEntry, PDF_NAME(F)) & kHidden) == 0 &&
           pdf_is_ocg_hidden(ctx, pDocument, nullptr, "View",
                             pdf_dict_get(ctx, pEntry, PDF_NAME(OC))) == 0;
}

LinkBorder ReadLinkBorder(fz_context* ctx, pdf_document* pDocument, pdf_obj* pEntry) {
    LinkBorder border;
    if (!IsShownLink(ctx, pDocument, pEntry) ||
        pdf_dict_get(ctx, pEntry, PDF_NAME(AP)) != nullptr) {
        return border;
    }
    border.rcArea = pdf_dict_get_rect(ctx, pEntry, PDF_NAME(Rect));
    border.fWidth = kUsualWidth;
    pdf_obj* const pStyle = pdf_dict_get(ctx, pEntry, PDF_NAME(BS));
    pdf_obj* const pArray = pdf_dict_get(ctx, pEntry, PDF_NAME(Border));
    if (pdf_is_dict(ctx, pStyle) != 0) {
        ReadStyle(ctx, pStyle, border);
    } else if (pdf_is_array(ctx, pArray) != 0) {
        ReadArray(ctx, pArray, border);
    }
    ReadColor(ctx, pdf_dict_get(ctx, pEntry, PDF_NAME(C)), border);
    Limit(border);
    return border;
}

void DrawLinkBorder(fz_context* ctx, fz_device* pDevice, const LinkBorder& border,
                    const fz_matrix& toDevice) {
    fz_path* pPath = nullptr;
    fz_stroke_state* pStroke = nullptr;
    fz_var(pPath);
    fz_var(pStroke);
    fz_try(ctx) {
        pPath = fz_new_path(ctx);
        AddLine(ctx, pPath, border);
        pStroke = NewStroke(ctx, border);
        fz_stroke_path(ctx, pDevice, pPath, pStroke, toDevice, ColorsOf(ctx, border),
                       border.color.data(), 1.0F, fz_default_color_params);
    }
    fz_always(ctx) {
        fz_drop_path(ctx, pPath);
        fz_drop_stroke_state(ctx, pStroke);
    }
    fz_catch(ctx) {
        fz_rethrow(ctx);
    }
}

}
