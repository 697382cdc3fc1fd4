#include "engines/mupdf/edit/AnnotReading.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "engines/mupdf/LenientUse.h"
#include "engines/mupdf/edit/AnnotKinds.h"

namespace velko::engines::mupdf {

namespace {

using common::vxbase::PointF;
using pdf::AnnotRecord;
using pdf::TextQuad;

constexpr int kNumbersPerQuad = 8;
constexpr int kMostColors = 4;

struct RawColor {
    int nNumbers = 0;
    std::array<float, kMostColors> numbers{};
};

// Plain data, for guarded bodies. Texts are borrowed from the file's objects.
struct RawRecord {
    std::int32_t nKind = 0;
    fz_rect rcArea = fz_empty_rect;
    bool bUpright = false;
    RawColor color;
    RawColor fill;
    float fOpacity = 1.0F;
    float fLineWidth = 1.0F;
    float fFontSize = 12.0F;
    std::array<float, 4> ends{};
    const char* szContents = "";
    const char* szAuthor = "";
    std::int64_t nCreated = 0;
    std::int64_t nModified = 0;
    int nQuads = 0;
    int nStrokes = 0;
};

float Within(float f, float fLeast, float fMost, float fElse) {
    return std::isfinite(f) ? std::clamp(f, fLeast, fMost) : fElse;
}

float Coordinate(float f) {
    return Within(f, -kMostCoordinate, kMostCoordinate, 0.0F);
}

// --- these may throw as the library does ---

RawColor ReadColor(fz_context* ctx, pdf_obj* pColor) {
    RawColor color;
    color.nNumbers = std::min(pdf_array_len(ctx, pColor), kMostColors);
    for (int i = 0; i < color.nNumbers; ++i) {
        color.numbers[static_cast<std::size_t>(i)] =
            Within(pdf_array_get_real(ctx, pColor, i), 0.0F, 1.0F, 0.0F);
    }
    return color;
}

float ReadLineWidth(fz_context* ctx, pdf_obj* pAnnot) {
    constexpr int kWidthAt = 2;
    pdf_obj* pWidth = pdf_dict_get(ctx, pdf_dict_get(ctx, pAnnot, PDF_NAME(BS)), PDF_NAME(W));
    if (pWidth == nullptr) {
        pWidth = pdf_array_get(ctx, pdf_dict_get(ctx, pAnnot, PDF_NAME(Border)), kWidthAt);
    }
    return pdf_is_number(ctx, pWidth) != 0
               ? Within(pdf_to_real(ctx, pWidth), 0.0F, kMostWidth, 1.0F)
               : 1.0F;
}

void ReadLetters(fz_context* ctx, pdf_obj* pAnnot, RawRecord& raw) {
    const char* szFont = nullptr;
    const char* const szLook = pdf_dict_get_text_string(ctx, pAnnot, PDF_NAME(DA));
    pdf_parse_default_appearance(ctx, szLook, &szFont, &raw.fFontSize, &raw.color.nNumbers,
                                 raw.color.numbers.data());
    raw.fFontSize = Within(raw.fFontSize, 1.0F, kMostWidth, 12.0F);
}

void ReadShape(fz_context* ctx, pdf_obj* pAnnot, RawRecord& raw) {
    const unsigned nFields = FieldsOf(raw.nKind);
    if ((nFields & Field::kQuads) != 0) {
        raw.nQuads = std::min(
            pdf_array_len(ctx, pdf_dict_get(ctx, pAnnot, PDF_NAME(QuadPoints))) / kNumbersPerQuad,
            kMostQuads);
    }
    if ((nFields & Field::kStrokes) != 0) {
        raw.nStrokes = std::min(pdf_array_len(ctx, pdf_dict_get(ctx, pAnnot, PDF_NAME(InkList))),
                                kMostStrokes);
    }
    if ((nFields & Field::kEnds) != 0) {
        pdf_obj* const pEnds = pdf_dict_get(ctx, pAnnot, PDF_NAME(L));
        for (std::size_t i = 0; i < raw.ends.size(); ++i) {
            raw.ends[i] = Coordinate(pdf_array_get_real(ctx, pEnds, static_cast<int>(i)));
        }
    }
}

void ReadRaw(fz_context* ctx, pdf_obj* pAnnot, RawRecord& raw) {
    raw.nKind = KindOf(pdf_dict_get_name(ctx, pAnnot, PDF_NAME(Subtype)));
    raw.rcArea = pdf_dict_get_rect(ctx, pAnnot, PDF_NAME(Rect));
    raw.bUpright = raw.nKind == AnnotKind::kNote &&
                   (pdf_dict_get_int(ctx, pAnnot, PDF_NAME(F)) & PDF_ANNOT_IS_NO_ROTATE) != 0;
    const unsigned nFields = FieldsOf(raw.nKind);
    ReadShape(ctx, pAnnot, raw);
    if (raw.nKind == AnnotKind::kFreeText) {
        ReadLetters(ctx, pAnnot, raw);
    } else {
        raw.color = ReadColor(ctx, pdf_dict_get(ctx, pAnnot, PDF_NAME(C)));
    }
    if ((nFields & Field::kFill) != 0) {
        raw.fill = ReadColor(ctx, pdf_dict_get(ctx, pAnnot, PDF_NAME(IC)));
    }
    if ((nFields & Field::kWidth) != 0) {
        raw.fLineWidth = ReadLineWidth(ctx, pAnnot);
    }
    pdf_obj* const pOpacity = pdf_dict_get(ctx, pAnnot, PDF_NAME(CA));
    if (pdf_is_number(ctx, pOpacity) != 0) {
        raw.fOpacity = Within(pdf_to_real(ctx, pOpacity), 0.0F, 1.0F, 1.0F);
    }
    raw.nCreated = pdf_dict_get_date(ctx, pAnnot, PDF_NAME(CreationDate));
    raw.nModified = pdf_dict_get_date(ctx, pAnnot, PDF_NAME(M));
    raw.szAuthor = pdf_dict_get_text_string(ctx, pAnnot, PDF_NAME(T));
    raw.szContents = pdf_dict_get_text_string(ctx, pAnnot, PDF_NAME(Contents));
}

PointF PointAt(fz_context* ctx, pdf_obj* pArray, int nIndex) {
    return {Coordinate(pdf_array_get_real(ctx, pArray, nIndex)),
            Coordinate(pdf_array_get_real(ctx, pArray, nIndex + 1))};
}

// --- from here on plain C++ ---

PointF Minus(const PointF& one, const PointF& two) {
    return {one.X - two.X, one.Y - two.Y};
}

// Programs write the upper edge from left to right and then the lower one so. Some
// follow the letter of the format and go around, from the lower left corner or from the
// upper left one.
TextQuad QuadOf(const std::array<PointF, 4>& pt) {
    const PointF ptFirst = Minus(pt[1], pt[0]);
    const PointF ptSecond = Minus(pt[3], pt[2]);
    if (ptFirst.X * ptSecond.X + ptFirst.Y * ptSecond.Y >= 0.0F) {
        return {pt[0], pt[1], pt[2], pt[3]};
    }
    const PointF ptSide = Minus(pt[2], pt[1]);
    const bool bLowerFirst = ptFirst.X * ptSide.Y - ptFirst.Y * ptSide.X > 0.0F;
    return bLowerFirst ? TextQuad{pt[3], pt[2], pt[0], pt[1]}
                       : TextQuad{pt[0], pt[1], pt[3], pt[2]};
}

std::optional<std::uint32_t> Rgb(const RawColor& color) {
    const auto& at = color.numbers;
    std::array<float, 3> rgb{};
    switch (color.nNumbers) {
        case 1:
            rgb = {at[0], at[0], at[0]};
            break;
        case 3:
            rgb = {at[0], at[1], at[2]};
            break;
        case 4:
            for (std::size_t i = 0; i < rgb.size(); ++i) {
                rgb[i] = 1.0F - std::min(1.0F, at[i] + at[3]);
            }
            break;
        default:
            return std::nullopt;
    }
    std::uint32_t nColor = 0;
    for (const float f : rgb) {
        constexpr float kFull = 255.0F;
        nColor = nColor << 8U |
                 static_cast<std::uint32_t>(std::lround(Within(f, 0.0F, 1.0F, 0.0F) * kFull));
    }
    return nColor;
}

// At most the limit, and no part of a character.
std::string Text(const char* szText) {
    std::string strText = szText;
    if (strText.size() > kMostTextBytes) {
        std::size_t nEnd = kMostTextBytes;
        while (nEnd > 0 && (static_cast<unsigned char>(strText[nEnd]) & 0xC0U) == 0x80U) {
            --nEnd;
        }
        strText.resize(nEnd);
    }
    return strText;
}

AnnotRecord RecordOf(const RawRecord& raw, std::int32_t nRotation) {
    AnnotRecord record;
    record.nType = raw.nKind;
    const fz_rect rc = raw.bUpright ? UprightArea(raw.rcArea, nRotation) : raw.rcArea;
    record.rcArea = {Coordinate(rc.x0), Coordinate(rc.y0), Coordinate(rc.x1), Coordinate(rc.y1)};
    record.ptStart = {raw.ends[0], raw.ends[1]};
    record.ptEnd = {raw.ends[2], raw.ends[3]};
    record.nColor = Rgb(raw.color);
    record.nFillColor = Rgb(raw.fill);
    record.fOpacity = raw.fOpacity;
    record.fLineWidth = raw.fLineWidth;
    record.fFontSize = raw.fFontSize;
    record.strContents = Text(raw.szContents);
    record.strAuthor = Text(raw.szAuthor);
    record.nCreated = std::clamp<std::int64_t>(raw.nCreated, 0, kMostSeconds);
    record.nModified = std::clamp<std::int64_t>(raw.nModified, 0, kMostSeconds);
    return record;
}

std::vector<TextQuad> ReadQuads(OpenedFile& file, pdf_obj* pAnnot, int nQuads) {
    fz_context* const ctx = ThreadContext();
    std::vector<std::array<PointF, 4>> corners(static_cast<std::size_t>(nQuads));
    UseLeniently(file, [&] {
        pdf_obj* const pQuads = pdf_dict_get(ctx, pAnnot, PDF_NAME(QuadPoints));
        int nNumber = 0;
        for (std::array<PointF, 4>& quad : corners) {
            for (PointF& pt : quad) {
                pt = PointAt(ctx, pQuads, nNumber);
                nNumber += 2;
            }
        }
    });
    std::vector<TextQuad> quads(corners.size());
    std::transform(corners.begin(), corners.end(), quads.begin(), QuadOf);
    return quads;
}

std::vector<PointF> ReadStroke(OpenedFile& file, pdf_obj* pAnnot, int nStroke, int nMostPoints) {
    fz_context* const ctx = ThreadContext();
    const auto fnStroke = [&] {
        return pdf_array_get(ctx, pdf_dict_get(ctx, pAnnot, PDF_NAME(InkList)), nStroke);
    };
    int nPoints = 0;
    UseLeniently(file, [&] { nPoints = pdf_array_len(ctx, fnStroke()) / 2; });
    std::vector<PointF> points(static_cast<std::size_t>(std::min(nPoints, nMostPoints)));
    UseLeniently(file, [&] {
        int nNumber = 0;
        for (PointF& pt : points) {
            pt = PointAt(ctx, fnStroke(), nNumber);
            nNumber += 2;
        }
    });
    return points;
}

std::vector<std::vector<PointF>> ReadStrokes(OpenedFile& file, pdf_obj* pAnnot, int nStrokes) {
    std::vector<std::vector<PointF>> strokes;
    int nLeft = kMostPoints;
    for (int i = 0; i < nStrokes; ++i) {
        std::vector<PointF> stroke = ReadStroke(file, pAnnot, i, nLeft);
        nLeft -= static_cast<int>(stroke.size());
        if (!stroke.empty()) {
            strokes.push_back(std::move(stroke));
        }
    }
    return strokes;
}

}

AnnotRecord ReadAnnotRecord(OpenedFile& file, pdf_obj* pAnnot, std::int32_t nRotation) {
    RawRecord raw;
    UseLeniently(file, [&] { ReadRaw(ThreadContext(), pAnnot, raw); });
    AnnotRecord record = RecordOf(raw, nRotation);
    record.quads = ReadQuads(file, pAnnot, raw.nQuads);
    record.strokes = ReadStrokes(file, pAnnot, raw.nStrokes);
    return record;
}

fz_rect UprightArea(const fz_rect& rcBox, std::int32_t nRotation) {
    const float fWidth = rcBox.x1 - rcBox.x0;
    const float fHeight = rcBox.y1 - rcBox.y0;
    const float x = rcBox.x0;
    const float y = rcBox.y1;
    switch (nRotation) {
        case 1:
            return fz_make_rect(x, y, x + fHeight, y + fWidth);
        case 2:
            return fz_make_rect(x - fWidth, y, x, y + fHeight);
        case 3:
            return fz_make_rect(x - fHeight, y - fWidth, x, y);
        default:
            return rcBox;
    }
}

fz_rect BoxOfUpright(const fz_rect& rcArea, std::int32_t nRotation, float fWidth, float fHeight) {
    const float x = nRotation == 0 || nRotation == 1 ? rcArea.x0 : rcArea.x1;
    const float y = nRotation == 0 || nRotation == 3 ? rcArea.y1 : rcArea.y0;
    return fz_make_rect(x, y - fHeight, x + fWidth, y);
}

}
