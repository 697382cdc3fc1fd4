// How much room the glyphs of a model take at a scale.
//
// Threads: one at a time.
// Units: pixels.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "engines/mupdf/reflow/PageModel.h"

namespace velko::engines::mupdf::reflow {

class GlyphMetrics {
public:
    struct Room {
        float fAdvance = 0.0F;
        float fInkTop = 0.0F; // from the glyph's baseline, Y down
        float fInkBottom = 0.0F;
        bool bDraws = false;
    };

    // `fScale`: pixels of a point; no letter becomes larger than `fMostSize`.
    GlyphMetrics(const PageModel& model, float fScale, float fMostSize);

    Room Of(const Glyph& glyph);
    float SizeOf(std::uint32_t nStyle) const { return m_sizes[nStyle]; }
    float RiseOf(std::uint32_t nStyle) const;
    const std::vector<fz_matrix>& Shapes() const { return m_shapes; }

private:
    Room Measure(const Glyph& glyph) const;

    const PageModel& m_model;
    std::vector<float> m_sizes;
    std::vector<fz_matrix> m_shapes;
    std::unordered_map<std::uint64_t, Room> m_rooms;
};

}
