// Replaces the colours of paper and ink, keeping hues and pictures.
//
// A pixel's brightness chooses a colour between the foreground (black) and the
// background (white); what the pixel differs from its grey is added to that.
// So greys lie on the line between both colours and a red link stays red.
//
// Threads: immutable once made.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace velko::engines::mupdf {

class ColorMapping {
public:
    // Colours 0xAARRGGBB; alpha is ignored.
    ColorMapping(std::uint32_t nBackColor, std::uint32_t nForeColor);

    // Keeps what is black and brings white down to where such colours are no longer
    // glaring: the paper's own colour, or where that is dark, a part of the ink's.
    static ColorMapping Dimming(std::uint32_t nBackColor, std::uint32_t nForeColor);

    std::uint32_t Map(std::uint32_t nPixel) const;

    // Maps a row of opaque pixels (blue, green, red, alpha) into `target`, which
    // may be the same row.
    // `pictures` tells for each pixel how much of a picture it is (255: wholly,
    // it keeps its colour); empty for a row without pictures.
    void MapRow(std::span<const std::uint32_t> source, std::span<const std::uint8_t> pictures,
                std::span<std::uint32_t> target) const;

private:
    std::array<std::uint32_t, 256> m_greys{}; // the mapped colour of each grey
};

}
