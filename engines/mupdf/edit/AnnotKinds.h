// The kinds of annotations, and what a record says of each.
//
// Threads: any.
#pragma once

#include <cstdint>

#include "document/engine/AnnotEditor.h"

namespace velko::engines::mupdf {

namespace AnnotKind {
inline constexpr std::int32_t kNote = 1;
inline constexpr std::int32_t kFreeText = 3;
inline constexpr std::int32_t kLine = 4;
inline constexpr std::int32_t kSquare = 5;
inline constexpr std::int32_t kCircle = 6;
inline constexpr std::int32_t kPolygon = 7;
inline constexpr std::int32_t kPolyLine = 8;
inline constexpr std::int32_t kHighlight = 9;
inline constexpr std::int32_t kStrikeOut = 12;
inline constexpr std::int32_t kCaret = 14;
inline constexpr std::int32_t kInk = 15;
}

// The kind of a subtype's name, 0 for an unknown one; and the name of a kind, 1 to 27.
std::int32_t KindOf(const char* szSubtype);
const char* SubtypeOf(std::int32_t nKind);

// The parts of a record, as bits.
namespace Field {
inline constexpr unsigned kArea = 1U << 0U;
inline constexpr unsigned kQuads = 1U << 1U;
inline constexpr unsigned kStrokes = 1U << 2U;
inline constexpr unsigned kEnds = 1U << 3U; // of a line
inline constexpr unsigned kColor = 1U << 4U;
inline constexpr unsigned kFill = 1U << 5U;
inline constexpr unsigned kOpacity = 1U << 6U;
inline constexpr unsigned kWidth = 1U << 7U;
inline constexpr unsigned kFontSize = 1U << 8U;
inline constexpr unsigned kContents = 1U << 9U;
inline constexpr unsigned kAuthor = 1U << 10U;
inline constexpr unsigned kCreated = 1U << 11U;
inline constexpr unsigned kModified = 1U << 12U;
}

bool CanBeMade(std::int32_t nKind);

// Whether what one of the kind looks like follows from what its dictionary says, so that
// the library may draw it anew.
bool CanBeDrawnAnew(std::int32_t nKind);

// What a record of the kind may set, and what of it shows on the page.
unsigned FieldsOf(std::int32_t nKind);
unsigned VisibleFieldsOf(std::int32_t nKind);

// In which of the kind's fields two records differ.
unsigned DifferingFields(std::int32_t nKind, const pdf::AnnotRecord& one,
                         const pdf::AnnotRecord& two);

// Limits of what is read and written; what a file has beyond is left out of a record.
inline constexpr int kMostQuads = 4096;
inline constexpr int kMostStrokes = 4096;
inline constexpr int kMostPoints = 100'000; // of all strokes
inline constexpr std::size_t kMostTextBytes = std::size_t{1} << 18U;
inline constexpr float kMostCoordinate = 1.0E6F;
inline constexpr float kMostWidth = 1000.0F;                  // of lines, and size of letters
inline constexpr std::int64_t kMostSeconds = 253'402'300'799; // the year 9999

// Raises `EngineException` (e_ErrParam) for what cannot be said of one of the kind.
void CheckFields(std::int32_t nKind, const pdf::AnnotRecord& record, unsigned nFields);

}
