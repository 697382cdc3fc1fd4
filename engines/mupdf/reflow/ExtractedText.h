// The library's text extraction over what a page draws: lines of characters, and how
// a line lies on the page.
//
// Threads: one at a time for an object; no lock of the document is needed.
// Units: the space of the page's lists.
#pragma once

#include <mupdf/fitz.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <utility>
#include <vector>

#include "engines/mupdf/Drawing.h"
#include "engines/mupdf/Guard.h"
#include "engines/mupdf/PageTable.h"
#include "engines/mupdf/reflow/LogicalOrder.h"

namespace velko::engines::mupdf::reflow {

inline constexpr float kLeastSize = 0.5F; // points; what is smaller counts as that
inline constexpr float kMostSize = 2000.0F;

float Kept(float f, float fLeast, float fMost); // not a number is the least

// Where the page lies in its lists; not the size that is told, which is kept within
// limits.
fz_rect PageInLists(const PageFacts& facts);

void DropText(fz_context* ctx, fz_stext_page* pText);
using ExtractedText = Handle<fz_stext_page, DropText>;

// A fault within a list leaves out the rest of it and nothing else.
template <class Body>
void Leniently(Body&& body) {
    try {
        Guard(ThreadContext(), std::forward<Body>(body));
    } catch (const LibraryError& error) {
        if (error.Kind() == FZ_ERROR_MEMORY) {
            throw;
        }
    }
}

// Empty drawings are passed over; ligatures stay. Raises for want of memory.
ExtractedText ExtractText(std::initializer_list<const Drawing*> drawings, const fz_rect& rcPage,
                          fz_cookie* pCookie);

// Calls `fnRead(line, block's number)` in the order of the content.
template <class Read>
void ForEachLine(const ExtractedText& text, Read&& fnRead) {
    std::size_t nBlock = 0;
    for (const fz_stext_block* pBlock = text.Get()->first_block; pBlock != nullptr;
         pBlock = pBlock->next, ++nBlock) {
        if (pBlock->type == FZ_STEXT_BLOCK_TEXT) {
            for (const fz_stext_line* p = pBlock->u.t.first_line; p != nullptr; p = p->next) {
                fnRead(*p, nBlock);
            }
        }
    }
}

// Which way a line runs on the page.
enum class Direction { kRight, kDown, kLeft, kUp, kOblique };
using LettersByDirection = std::array<std::size_t, 5>;

// Turns the page so that lines of the direction run to the right; `dir` is used for
// oblique ones only.
fz_matrix Upright(Direction eDirection, fz_point dir);

// Those that have letters, the one of most letters first.
std::vector<Direction> DirectionsOf(const LettersByDirection& letters);

// A line's box lies in the space where the line runs to the right: the page
// turned by its direction.
struct LineBox {
    fz_rect rc = fz_empty_rect;
    fz_rect rcOnPage = fz_empty_rect;
    float fBaseline = 0.0F;
    float fSize = 0.0F; // of most of its letters
    Direction eDirection = Direction::kRight;
    bool bRightToLeft = false;
    bool bFixedPitch = false; // its letters are all as wide
};

// A character of the extraction, and which one it is of all of them: what a page's
// content draws has the same numbers whether annotations come behind it or not.
struct NumberedChar {
    const fz_stext_char* pChar = nullptr;
    std::uint32_t nNumber = 0;
};

// The characters of one line that stand on the page, in the order in which they are
// read, whatever the order of the content.
class LineCharacters {
public:
    explicit LineCharacters(const fz_rect& rcPage) : m_rcPage(rcPage) {}

    // Line by line, none left out. The characters are the extraction's, until the next line.
    LineBox Read(const fz_stext_line& line);
    std::span<const NumberedChar> Characters() const { return m_characters; }
    const fz_matrix& ToUpright() const { return m_toUpright; }

private:
    void Collect(const fz_stext_line& line);
    bool IsOnPage(const fz_stext_char& c) const;
    void Measure(LineBox& line) const;

    fz_rect m_rcPage;
    fz_matrix m_toUpright = fz_identity;
    std::uint32_t m_nRead = 0; // characters of all lines so far
    std::vector<NumberedChar> m_characters;
    std::vector<PlacedCharacter> m_order;
};

}
