#include "engines/mupdf/edit/AnnotWriting.h"

#include <array>
#include <cstring>

#include "engines/mupdf/edit/AnnotKinds.h"
#include "engines/mupdf/edit/AnnotReading.h"

namespace velko::engines::mupdf {

namespace {

using common::vxbase::PointF;
using pdf::AnnotRecord;
using pdf::TextQuad;

constexpr float kNoteSide = 18.0F; // what the library draws

// Without it other programs take the letters of FreeText for their own.
constexpr const char* kUsualFont = "Helv";

std::array<float, 3> Numbers(std::uint32_t nColor) {
    constexpr float kFull = 255.0F;
    return {static_cast<float>(nColor >> 16U & 0xFFU) / kFull,
            static_cast<float>(nColor >> 8U & 0xFFU) / kFull,
            static_cast<float>(nColor & 0xFFU) / kFull};
}

void Push(fz_context* ctx, pdf_obj* pArray, const PointF& pt) {
    pdf_array_push_real(ctx, pArray, pt.X);
    pdf_array_push_real(ctx, pArray, pt.Y);
}

void WriteColor(fz_context* ctx, pdf_obj* pAnnot, pdf_obj* pKey,
                const std::optional<std::uint32_t>& nColor) {
    pdf_dict_del(ctx, pAnnot, pKey);
    if (nColor) {
        pdf_obj* const pColor = pdf_dict_put_array(ctx, pAnnot, pKey, 3);
        for (const float f : Numbers(*nColor)) {
            pdf_array_push_real(ctx, pColor, f);
        }
    }
}

void WriteArea(fz_context* ctx, pdf_obj* pAnnot, const AnnotRecord& record,
               std::int32_t nRotation) {
    const auto& rc = record.rcArea;
    fz_rect rcBox = fz_make_rect(rc.Left, rc.Bottom, rc.Right, rc.Top);
    if (record.nType == AnnotKind::kNote) {
        const bool bUpright =
            (pdf_dict_get_int(ctx, pAnnot, PDF_NAME(F)) & PDF_ANNOT_IS_NO_ROTATE) != 0;
        rcBox = BoxOfUpright(rcBox, bUpright ? nRotation : 0, kNoteSide, kNoteSide);
    }
    pdf_dict_put_rect(ctx, pAnnot, PDF_NAME(Rect), rcBox);
}

void WriteQuads(fz_context* ctx, pdf_obj* pAnnot, const std::vector<TextQuad>& quads) {
    pdf_obj* const pQuads =
        pdf_dict_put_array(ctx, pAnnot, PDF_NAME(QuadPoints), static_cast<int>(quads.size() * 8));
    for (const TextQuad& quad : quads) {
        Push(ctx, pQuads, quad.ptTopLeft);
        Push(ctx, pQuads, quad.ptTopRight);
        Push(ctx, pQuads, quad.ptBottomLeft);
        Push(ctx, pQuads, quad.ptBottomRight);
    }
}

void WriteStrokes(fz_context* ctx, pdf_obj* pAnnot,
                  const std::vector<std::vector<PointF>>& strokes) {
    pdf_obj* const pStrokes =
        pdf_dict_put_array(ctx, pAnnot, PDF_NAME(InkList), static_cast<int>(strokes.size()));
    for (const std::vector<PointF>& stroke : strokes) {
        pdf_obj* const pStroke =
            pdf_array_push_array(ctx, pStrokes, static_cast<int>(stroke.size() * 2));
        for (const PointF& pt : stroke) {
            Push(ctx, pStroke, pt);
        }
    }
}

void WriteEnds(fz_context* ctx, pdf_obj* pAnnot, const AnnotRecord& record) {
    pdf_obj* const pEnds = pdf_dict_put_array(ctx, pAnnot, PDF_NAME(L), 4);
    Push(ctx, pEnds, record.ptStart);
    Push(ctx, pEnds, record.ptEnd);
}

// Into a copy of the style, as other annotations may have the same one.
void WriteLineWidth(fz_context* ctx, pdf_obj* pAnnot, float fWidth) {
    constexpr int kWidthAt = 2;
    pdf_obj* const pStyle = pdf_dict_get(ctx, pAnnot, PDF_NAME(BS));
    pdf_obj* const pBorder = pdf_dict_get(ctx, pAnnot, PDF_NAME(Border));
    if (pdf_is_dict(ctx, pStyle) != 0) {
        pdf_dict_put_drop(ctx, pAnnot, PDF_NAME(BS), pdf_copy_dict(ctx, pStyle));
        pdf_dict_put_real(ctx, pdf_dict_get(ctx, pAnnot, PDF_NAME(BS)), PDF_NAME(W), fWidth);
    } else if (pdf_array_len(ctx, pBorder) > kWidthAt) {
        pdf_dict_put_drop(ctx, pAnnot, PDF_NAME(Border), pdf_copy_array(ctx, pBorder));
        pdf_array_put_drop(ctx, pdf_dict_get(ctx, pAnnot, PDF_NAME(Border)), kWidthAt,
                           pdf_new_real(ctx, fWidth));
    } else {
        pdf_dict_put_real(ctx, pdf_dict_put_dict(ctx, pAnnot, PDF_NAME(BS), 1), PDF_NAME(W),
                          fWidth);
    }
}

void WriteLetters(fz_context* ctx, pdf_obj* pAnnot, const AnnotRecord& record) {
    const char* szFont = nullptr;
    float fOldSize = 0.0F;
    int nOldColors = 0;
    std::array<float, 4> oldColor{};
    pdf_parse_default_appearance(ctx, pdf_dict_get_text_string(ctx, pAnnot, PDF_NAME(DA)), &szFont,
                                 &fOldSize, &nOldColors, oldColor.data());
    std::array<char, 256> look{};
    const std::array<float, 3> color = Numbers(record.nColor.value_or(0));
    pdf_print_default_appearance(ctx, look.data(), static_cast<int>(look.size()),
                                 szFont != nullptr ? szFont : kUsualFont, record.fFontSize, 3,
                                 color.data());
    pdf_dict_put_string(ctx, pAnnot, PDF_NAME(DA), look.data(), std::strlen(look.data()));
    pdf_dict_dels(ctx, pAnnot, "DS"); // says the same once more, for rich text
}

void WriteText(fz_context* ctx, pdf_obj* pAnnot, pdf_obj* pKey, const std::string& strText) {
    if (strText.empty()) {
        pdf_dict_del(ctx, pAnnot, pKey);
    } else {
        pdf_dict_put_text_string(ctx, pAnnot, pKey, strText.c_str());
    }
}

void WriteTime(fz_context* ctx, pdf_obj* pAnnot, pdf_obj* pKey, std::int64_t nSeconds) {
    if (nSeconds == 0) {
        pdf_dict_del(ctx, pAnnot, pKey);
    } else {
        pdf_dict_put_date(ctx, pAnnot, pKey, nSeconds);
    }
}

void WriteOpacity(fz_context* ctx, pdf_obj* pAnnot, float fOpacity) {
    if (fOpacity == 1.0F) {
        pdf_dict_del(ctx, pAnnot, PDF_NAME(CA));
    } else {
        pdf_dict_put_real(ctx, pAnnot, PDF_NAME(CA), fOpacity);
    }
}

void WriteShape(fz_context* ctx, pdf_obj* pAnnot, const AnnotRecord& record, unsigned nFields,
                std::int32_t nRotation) {
    if ((nFields & Field::kArea) != 0) {
        WriteArea(ctx, pAnnot, record, nRotation);
    }
    if ((nFields & Field::kQuads) != 0) {
        WriteQuads(ctx, pAnnot, record.quads);
    }
    if ((nFields & Field::kStrokes) != 0) {
        WriteStrokes(ctx, pAnnot, record.strokes);
    }
    if ((nFields & Field::kEnds) != 0) {
        WriteEnds(ctx, pAnnot, record);
    }
}

void WriteLook(fz_context* ctx, pdf_obj* pAnnot, const AnnotRecord& record, unsigned nFields) {
    const bool bLetters = record.nType == AnnotKind::kFreeText;
    if (bLetters && (nFields & (Field::kColor | Field::kFontSize)) != 0) {
        WriteLetters(ctx, pAnnot, record);
    }
    if (!bLetters && (nFields & Field::kColor) != 0) {
        WriteColor(ctx, pAnnot, PDF_NAME(C), record.nColor);
    }
    if ((nFields & Field::kFill) != 0) {
        WriteColor(ctx, pAnnot, PDF_NAME(IC), record.nFillColor);
    }
    if ((nFields & Field::kOpacity) != 0) {
        WriteOpacity(ctx, pAnnot, record.fOpacity);
    }
    if ((nFields & Field::kWidth) != 0) {
        WriteLineWidth(ctx, pAnnot, record.fLineWidth);
    }
}

void WriteTexts(fz_context* ctx, pdf_obj* pAnnot, const AnnotRecord& record, unsigned nFields) {
    if ((nFields & Field::kContents) != 0) {
        WriteText(ctx, pAnnot, PDF_NAME(Contents), record.strContents);
        pdf_dict_del(ctx, pAnnot, PDF_NAME(RC)); // the same text once more, with its looks
    }
    if ((nFields & Field::kAuthor) != 0) {
        WriteText(ctx, pAnnot, PDF_NAME(T), record.strAuthor);
    }
    if ((nFields & Field::kCreated) != 0) {
        WriteTime(ctx, pAnnot, PDF_NAME(CreationDate), record.nCreated);
    }
    if ((nFields & Field::kModified) != 0) {
        WriteTime(ctx, pAnnot, PDF_NAME(M), record.nModified);
    }
}

}

pdf_obj* NewAnnotDictionary(fz_context* ctx, pdf_document* pDocument, std::int32_t nKind,
                            pdf_obj* pPage, std::int32_t nRotation) {
    constexpr int kPrinted = PDF_ANNOT_IS_PRINT;
    constexpr int kQuarterTurn = 90;
    const bool bNote = nKind == AnnotKind::kNote;
    pdf_obj* const pAnnot = pdf_new_dict(ctx, pDocument, 12);
    fz_try(ctx) {
        pdf_dict_put(ctx, pAnnot, PDF_NAME(Type), PDF_NAME(Annot));
        pdf_dict_put_name(ctx, pAnnot, PDF_NAME(Subtype), SubtypeOf(nKind));
        pdf_dict_put_rect(ctx, pAnnot, PDF_NAME(Rect), fz_make_rect(0.0F, 0.0F, 1.0F, 1.0F));
        pdf_dict_put_int(
            ctx, pAnnot, PDF_NAME(F),
            bNote ? kPrinted | PDF_ANNOT_IS_NO_ZOOM | PDF_ANNOT_IS_NO_ROTATE : kPrinted);
        if (pdf_is_indirect(ctx, pPage) != 0) {
            pdf_dict_put(ctx, pAnnot, PDF_NAME(P), pPage);
        }
        if (bNote) {
            pdf_dict_put_name(ctx, pAnnot, PDF_NAME(Name), "Note");
        }
        if (nKind == AnnotKind::kFreeText) { // upright for the reader, without a frame
            WriteLineWidth(ctx, pAnnot, 0.0F);
            if (nRotation != 0) {
                pdf_dict_put_int(ctx, pAnnot, PDF_NAME(Rotate), nRotation * kQuarterTurn);
            }
        }
    }
    fz_catch(ctx) {
        pdf_drop_obj(ctx, pAnnot);
        fz_rethrow(ctx);
    }
    return pAnnot;
}

void WriteAnnotFields(fz_context* ctx, pdf_obj* pAnnot, const AnnotRecord& record, unsigned nFields,
                      std::int32_t nRotation) {
    WriteShape(ctx, pAnnot, record, nFields, nRotation);
    WriteLook(ctx, pAnnot, record, nFields);
    WriteTexts(ctx, pAnnot, record, nFields);
}

// An appearance that the library finds missing it draws for itself alone; one that it is
// asked for comes into the file.
void DrawAppearance(fz_context* ctx, pdf_page* pPage, int nObject) {
    for (pdf_annot* pAnnot = pdf_first_annot(ctx, pPage); pAnnot != nullptr;
         pAnnot = pdf_next_annot(ctx, pAnnot)) {
        if (pdf_to_num(ctx, pdf_annot_obj(ctx, pAnnot)) == nObject) {
            pdf_annot_request_resynthesis(ctx, pAnnot);
            pdf_update_annot(ctx, pAnnot);
            return;
        }
    }
    fz_throw(ctx, FZ_ERROR_GENERIC, "the page does not show its annotation");
}

}
