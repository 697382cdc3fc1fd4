#include "engines/mupdf/edit/AnnotKinds.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "document/engine/ErrorCode.h"

namespace velko::engines::mupdf {

namespace {

using common::vxbase::PointF;
using common::vxbase::RectF;
using pdf::AnnotRecord;
using pdf::TextQuad;

// The kinds from 1 on, in their order.
constexpr std::array<const char*, 27> kSubtypes = {
    "Text",        "Link",      "FreeText",       "Line",     "Square",    "Circle", "Polygon",
    "PolyLine",    "Highlight", "Underline",      "Squiggly", "StrikeOut", "Stamp",  "Caret",
    "Ink",         "PSInk",     "FileAttachment", "Sound",    "Movie",     "Widget", "Screen",
    "PrinterMark", "TrapNet",   "Watermark",      "3D",       "Popup",     "Redact"};

bool IsMark(std::int32_t nKind) {
    return nKind >= AnnotKind::kHighlight && nKind <= AnnotKind::kStrikeOut;
}

bool Same(const PointF& one, const PointF& two) {
    return one.X == two.X && one.Y == two.Y;
}

bool Same(const RectF& one, const RectF& two) {
    return one.Left == two.Left && one.Bottom == two.Bottom && one.Right == two.Right &&
           one.Top == two.Top;
}

bool Same(const TextQuad& one, const TextQuad& two) {
    return Same(one.ptTopLeft, two.ptTopLeft) && Same(one.ptTopRight, two.ptTopRight) &&
           Same(one.ptBottomLeft, two.ptBottomLeft) && Same(one.ptBottomRight, two.ptBottomRight);
}

template <class T>
bool Same(const std::vector<T>& one, const std::vector<T>& two) {
    return std::equal(one.begin(), one.end(), two.begin(), two.end(),
                      [](const T& a, const T& b) { return Same(a, b); });
}

bool IsUsable(float f, float fMost) {
    return std::isfinite(f) && std::abs(f) <= fMost;
}

bool IsUsable(const PointF& pt) {
    return IsUsable(pt.X, kMostCoordinate) && IsUsable(pt.Y, kMostCoordinate);
}

bool IsUsable(const RectF& rc) {
    return IsUsable(PointF{rc.Left, rc.Bottom}) && IsUsable(PointF{rc.Right, rc.Top});
}

bool IsUsable(const TextQuad& quad) {
    return IsUsable(quad.ptTopLeft) && IsUsable(quad.ptTopRight) && IsUsable(quad.ptBottomLeft) &&
           IsUsable(quad.ptBottomRight);
}

bool AreQuadsUsable(const std::vector<TextQuad>& quads) {
    return !quads.empty() && quads.size() <= kMostQuads &&
           std::all_of(quads.begin(), quads.end(), [](const TextQuad& q) { return IsUsable(q); });
}

bool AreStrokesUsable(const std::vector<std::vector<PointF>>& strokes) {
    std::size_t nPoints = 0;
    for (const std::vector<PointF>& stroke : strokes) {
        nPoints += stroke.size();
        if (stroke.empty() || nPoints > kMostPoints ||
            !std::all_of(stroke.begin(), stroke.end(),
                         [](const PointF& p) { return IsUsable(p); })) {
            return false;
        }
    }
    return nPoints > 0 && strokes.size() <= kMostStrokes;
}

// The library takes texts that end with a zero.
bool IsTextUsable(const std::string& strText) {
    return strText.size() <= kMostTextBytes && strText.find('\0') == std::string::npos;
}

bool IsColorUsable(const std::optional<std::uint32_t>& nColor) {
    return nColor.value_or(0) <= 0xFFFFFFU;
}

bool IsTimeUsable(std::int64_t nSeconds) {
    return nSeconds >= 0 && nSeconds <= kMostSeconds;
}

// The icon of a note has its own size; what else has an area fills it.
bool IsAreaUsable(std::int32_t nKind, const RectF& rc) {
    return IsUsable(rc) &&
           (nKind == AnnotKind::kNote || (rc.Right > rc.Left && rc.Top > rc.Bottom));
}

// Whether what stands in one of the fields can be written.
bool IsFieldUsable(std::int32_t nKind, const AnnotRecord& record, unsigned nField) {
    switch (nField) {
        case Field::kArea:
            return IsAreaUsable(nKind, record.rcArea);
        case Field::kQuads:
            return AreQuadsUsable(record.quads);
        case Field::kStrokes:
            return AreStrokesUsable(record.strokes);
        case Field::kEnds:
            return IsUsable(record.ptStart) && IsUsable(record.ptEnd);
        case Field::kColor:
            return IsColorUsable(record.nColor);
        case Field::kFill:
            return IsColorUsable(record.nFillColor);
        case Field::kOpacity:
            return IsUsable(record.fOpacity, 1.0F) && record.fOpacity >= 0.0F;
        case Field::kWidth:
            return IsUsable(record.fLineWidth, kMostWidth) && record.fLineWidth >= 0.0F;
        case Field::kFontSize:
            return IsUsable(record.fFontSize, kMostWidth) && record.fFontSize > 0.0F;
        case Field::kContents:
            return IsTextUsable(record.strContents);
        case Field::kAuthor:
            return IsTextUsable(record.strAuthor);
        case Field::kCreated:
            return IsTimeUsable(record.nCreated);
        case Field::kModified:
            return IsTimeUsable(record.nModified);
        default:
            return true;
    }
}

bool IsFieldSame(const AnnotRecord& one, const AnnotRecord& two, unsigned nField) {
    switch (nField) {
        case Field::kArea:
            return Same(one.rcArea, two.rcArea);
        case Field::kQuads:
            return Same(one.quads, two.quads);
        case Field::kStrokes:
            return Same(one.strokes, two.strokes);
        case Field::kEnds:
            return Same(one.ptStart, two.ptStart) && Same(one.ptEnd, two.ptEnd);
        case Field::kColor:
            return one.nColor == two.nColor;
        case Field::kFill:
            return one.nFillColor == two.nFillColor;
        case Field::kOpacity:
            return one.fOpacity == two.fOpacity;
        case Field::kWidth:
            return one.fLineWidth == two.fLineWidth;
        case Field::kFontSize:
            return one.fFontSize == two.fFontSize;
        case Field::kContents:
            return one.strContents == two.strContents;
        case Field::kAuthor:
            return one.strAuthor == two.strAuthor;
        case Field::kCreated:
            return one.nCreated == two.nCreated;
        case Field::kModified:
            return one.nModified == two.nModified;
        default:
            return true;
    }
}

}

std::int32_t KindOf(const char* szSubtype) {
    const auto it = std::find_if(kSubtypes.begin(), kSubtypes.end(), [&](const char* szName) {
        return std::strcmp(szName, szSubtype) == 0;
    });
    return it == kSubtypes.end() ? 0 : static_cast<std::int32_t>(it - kSubtypes.begin()) + 1;
}

const char* SubtypeOf(std::int32_t nKind) {
    return kSubtypes.at(static_cast<std::size_t>(nKind - 1));
}

bool CanBeMade(std::int32_t nKind) {
    switch (nKind) {
        case AnnotKind::kNote:
        case AnnotKind::kFreeText:
        case AnnotKind::kLine:
        case AnnotKind::kSquare:
        case AnnotKind::kCircle:
        case AnnotKind::kInk:
            return true;
        default:
            return IsMark(nKind);
    }
}

bool CanBeDrawnAnew(std::int32_t nKind) {
    return CanBeMade(nKind) || nKind == AnnotKind::kPolygon || nKind == AnnotKind::kPolyLine ||
           nKind == AnnotKind::kCaret;
}

unsigned FieldsOf(std::int32_t nKind) {
    constexpr unsigned kCommon = Field::kColor | Field::kOpacity | Field::kContents |
                                 Field::kAuthor | Field::kCreated | Field::kModified;
    if (IsMark(nKind)) {
        return kCommon | Field::kQuads;
    }
    switch (nKind) {
        case AnnotKind::kFreeText:
            return kCommon | Field::kArea | Field::kFontSize;
        case AnnotKind::kLine:
            return kCommon | Field::kEnds | Field::kWidth;
        case AnnotKind::kSquare:
        case AnnotKind::kCircle:
            return kCommon | Field::kArea | Field::kFill | Field::kWidth;
        case AnnotKind::kPolygon:
        case AnnotKind::kPolyLine:
            return kCommon; // their corners say where they are
        case AnnotKind::kInk:
            return kCommon | Field::kStrokes | Field::kWidth;
        default:
            return kCommon | Field::kArea;
    }
}

unsigned VisibleFieldsOf(std::int32_t nKind) {
    constexpr unsigned kUnseen = Field::kAuthor | Field::kCreated | Field::kModified;
    const unsigned nTexts = nKind == AnnotKind::kFreeText ? 0 : Field::kContents;
    return FieldsOf(nKind) & ~(kUnseen | nTexts);
}

unsigned DifferingFields(std::int32_t nKind, const AnnotRecord& one, const AnnotRecord& two) {
    unsigned nFields = 0;
    for (unsigned nField = Field::kArea; nField <= Field::kModified; nField <<= 1U) {
        nFields |= IsFieldSame(one, two, nField) ? 0 : nField;
    }
    return nFields & FieldsOf(nKind);
}

void CheckFields(std::int32_t nKind, const AnnotRecord& record, unsigned nFields) {
    for (unsigned nField = Field::kArea; nField <= Field::kModified; nField <<= 1U) {
        if ((nFields & nField) != 0 && !IsFieldUsable(nKind, record, nField)) {
            throw common::EngineException(common::ErrorCode::e_ErrParam,
                                          "no annotation can be made of this");
        }
    }
}

}
