#include "engines/mupdf/reflow/RowText.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "engines/mupdf/reflow/Characters.h"

namespace velko::engines::mupdf::reflow {

namespace {

constexpr float kCellGapSize = 1.8F; // a wider gap parts cells, in the text's size
constexpr float kWideGapSize = 0.6F; // and a narrower one may
constexpr std::size_t kLongestMarker = 6;
constexpr float kPitch = 0.6F;       // of a font of one pitch, in the text's size
constexpr float kLetterWidth = 0.5F; // on average, in the text's size

// Digits, or a single letter, or a Roman number.
bool IsNumeral(const Glyphs& glyphs, std::size_t nFirst, std::size_t nLast) {
    bool bDigits = nFirst < nLast;
    bool bRoman = nFirst < nLast;
    for (std::size_t i = nFirst; i < nLast; ++i) {
        const char32_t c = glyphs[i].nUnicode;
        bDigits = bDigits && (IsDigit(c) || (c == U'.' && i > nFirst));
        bRoman =
            bRoman && (c == U'i' || c == U'v' || c == U'x' || c == U'I' || c == U'V' || c == U'X');
    }
    return bDigits || bRoman || (nLast == nFirst + 1 && IsLetter(glyphs[nFirst].nUnicode));
}

// A bullet, or a number with a full stop or brackets, up to the first space.
std::size_t MarkerLength(const Glyphs& glyphs) {
    const auto itSpace = std::find_if(glyphs.begin(), glyphs.end(),
                                      [](const Glyph& glyph) { return IsSpace(glyph.nUnicode); });
    const auto nLength = static_cast<std::size_t>(itSpace - glyphs.begin());
    if (itSpace == glyphs.end() || nLength > kLongestMarker) {
        return 0;
    }
    if (nLength == 1 && IsBullet(glyphs[0].nUnicode)) {
        return nLength;
    }
    const char32_t cFirst = glyphs[0].nUnicode;
    const char32_t cLast = glyphs[nLength - 1].nUnicode;
    const std::size_t nOpen = cFirst == U'(' || cFirst == U'[' ? 1 : 0;
    const bool bClosed = cLast == U')' || cLast == U']' || (cLast == U'.' && nOpen == 0);
    return bClosed && nLength > nOpen + 1 && IsNumeral(glyphs, nOpen, nLength - 1) ? nLength : 0;
}

bool IsAll(const Glyphs& glyphs, const PageModel& model, int (*pIs)(fz_context*, fz_font*)) {
    fz_context* const ctx = ThreadContext();
    return std::all_of(glyphs.begin(), glyphs.end(), [&](const Glyph& glyph) {
        return glyph.nGlyph == Glyph::kNone ||
               pIs(ctx, model.fonts[model.styles[glyph.nStyle].nFont].Get()) != 0;
    });
}

// As many as the gap has room for between letters of one pitch; 0 for other text.
std::size_t SpacesOfListing(const RowText& text, const TextLine& line, float fGap) {
    constexpr float kMost = 24.0F;
    if (!line.bFixedPitch || !text.bFixedPitch) {
        return 0;
    }
    const float fSpaces = std::round(fGap / (kPitch * line.fSize));
    return fSpaces <= kMost ? static_cast<std::size_t>(std::max(fSpaces, 1.0F)) : 0;
}

std::int16_t RoomOfGap(float fGap, float fSize) {
    constexpr float kMost = 30.0F; // in the text's size
    return static_cast<std::int16_t>(std::lround(std::min(fGap / fSize, kMost) * 1000.0F));
}

}

bool RowText::IsNumbered() const {
    return nMarker != 0 && !IsBullet(First());
}

bool RowText::EndsSentence() const {
    const auto it = std::find_if(glyphs.rbegin(), glyphs.rend(),
                                 [](const Glyph& glyph) { return !IsClosingMark(glyph.nUnicode); });
    return it != glyphs.rend() && reflow::EndsSentence(it->nUnicode);
}

float RowText::FirstWordWidth() const {
    const auto it = std::find_if(glyphs.begin(), glyphs.end(), [](const Glyph& glyph) {
        return IsSpace(glyph.nUnicode) || IsIdeographic(glyph.nUnicode);
    });
    return static_cast<float>(it - glyphs.begin() + 1) * kLetterWidth * fSize;
}

RowText MakeRowText(const Row& row, std::vector<TextLine>& lines, const PageModel& model) {
    RowText text;
    const Piece* pBefore = nullptr;
    for (const Piece& piece : row) {
        TextLine& line = lines[piece.nIndex];
        if (pBefore == nullptr) {
            text.rc = piece.rc;
            text.fBaseline = line.fBaseline;
            text.fSize = line.fSize;
            text.bRightToLeft = line.bRightToLeft;
            text.bFixedPitch = line.bFixedPitch;
        } else {
            const float fGap = std::max(piece.rc.x0 - pBefore->rc.x1, pBefore->rc.x0 - piece.rc.x1);
            Glyph gap{U' ', Glyph::kNone, text.glyphs.back().nStyle, false};
            const bool bBehindMarker = pBefore == row.data() && [&] {
                Glyphs probe = text.glyphs;
                probe.push_back(gap);
                return MarkerLength(probe) != 0;
            }();
            const std::size_t nPitch = bBehindMarker ? 0 : SpacesOfListing(text, line, fGap);
            if (bBehindMarker) {
                text.fAfterMarker = piece.rc.x0;
            } else if (nPitch != 0) {
                gap.nRoom = static_cast<std::int16_t>(kPitch * 1000.0F);
                text.glyphs.insert(text.glyphs.end(), nPitch - 1, gap);
            } else if (fGap > kCellGapSize * line.fSize) {
                gap.nUnicode = kCellGap;
                gap.nRoom = RoomOfGap(fGap, line.fSize);
                text.bCells = true;
            } else if (fGap > kWideGapSize * line.fSize) {
                gap.nUnicode = kWideGap;
                gap.nRoom = RoomOfGap(fGap, line.fSize);
            }
            text.glyphs.push_back(gap);
            text.rc = fz_union_rect(text.rc, piece.rc);
            text.fSize = std::max(text.fSize, line.fSize);
            text.bFixedPitch = text.bFixedPitch && line.bFixedPitch;
        }
        std::move(line.glyphs.begin(), line.glyphs.end(), std::back_inserter(text.glyphs));
        pBefore = &piece;
    }
    text.nWideGaps = static_cast<std::size_t>(
        std::count_if(text.glyphs.begin(), text.glyphs.end(),
                      [](const Glyph& glyph) { return glyph.nUnicode == kWideGap; }));
    text.nMarker = MarkerLength(text.glyphs);
    if (text.fAfterMarker == 0.0F) {
        text.fAfterMarker =
            text.rc.x0 + (static_cast<float>(text.nMarker) + 1.0F) * kLetterWidth * text.fSize;
    }
    text.bBold = IsAll(text.glyphs, model, &fz_font_is_bold);
    return text;
}

}
