// Notes what a page's lists draw: glyphs with their fonts, pictures and drawings.
//
// The library's text extraction finds lines, words and missing spaces, but
// forgets which glyph of which font a character was. This device notes the
// glyphs by their place, where `CapturePage` finds them again.
//
// Threads: one at a time.
// Units: the list's space.
#pragma once

#include <mupdf/fitz.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engines/mupdf/reflow/Artwork.h"

namespace velko::engines::mupdf::reflow {

struct RecordedGlyph {
    fz_font* pFont = nullptr;      // the list's
    fz_matrix shape = fz_identity; // without the place
    std::int32_t nGlyph = 0;
    bool bVisible = false;
};

class GlyphRecorder {
public:
    static constexpr std::size_t kMostGlyphs = 400'000;
    static constexpr std::size_t kMostMarks = 20'000; // what comes later is no figure
    static constexpr std::size_t kMostBars = 500;

    // Runs the list; stops when there are too many glyphs. Guarded bodies only.
    void Run(fz_context* ctx, fz_display_list* pList, fz_cookie* pCookie);

    // Once all lists have run.
    void Sort();

    bool IsFull() const { return m_nGlyphs >= kMostGlyphs; }
    std::size_t GlyphCount() const { return m_nGlyphs; }

    // The next glyph that was drawn at the place, or nothing.
    const RecordedGlyph* Take(fz_point pt);

    // True when a glyph stands at the place, taken or not.
    bool HasAt(fz_point pt) const;

    // Thin lines across: a fraction's bar may be one.
    const std::vector<fz_rect>& Bars() const { return m_bars; }

    const std::vector<ArtworkMark>& Artwork() const { return m_marks; }
    bool TakesMarks() const { return m_marks.size() < kMostMarks; }

    // For the device; must not raise.
    void Note(const fz_text& text, const fz_matrix& toList, bool bVisible) noexcept;
    void Note(const ArtworkMark& mark) noexcept;
    void NoteBar(const fz_rect& rc) noexcept;

private:
    struct Placed {
        std::uint64_t nPlace = 0;
        std::uint32_t nTaken = 0; // of the first at the place: how many there were taken
        RecordedGlyph glyph;
    };
    using Glyphs = std::vector<Placed>;

    static std::uint64_t KeyOf(fz_point pt);
    Glyphs::const_iterator FirstAt(std::uint64_t nPlace) const;

    Glyphs m_glyphs; // by place once sorted, in the order of their drawing at each
    std::vector<ArtworkMark> m_marks;
    std::vector<fz_rect> m_bars;
    std::size_t m_nGlyphs = 0;
    bool m_bOutOfMemory = false;
};

}
