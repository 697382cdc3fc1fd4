#include "engines/mupdf/ColorMapping.h"

#include <algorithm>
#include <cstddef>

namespace velko::engines::mupdf {

namespace {

constexpr std::uint32_t kOpaque = 0xFF000000U;
constexpr std::array<unsigned, 3> kShifts = {0U, 8U, 16U};

std::int32_t Channel(std::uint32_t nPixel, unsigned nShift) {
    return static_cast<std::int32_t>((nPixel >> nShift) & 0xFFU);
}

// Rounds the weighted mean of two channels; `nWeight` of 255 is all `nTwo`.
std::uint32_t Mix(std::int32_t nOne, std::int32_t nTwo, std::int32_t nWeight) {
    return static_cast<std::uint32_t>((nOne * (255 - nWeight) + nTwo * nWeight + 127) / 255);
}

std::uint32_t MixPixels(std::uint32_t nOne, std::uint32_t nTwo, std::int32_t nWeight) {
    std::uint32_t nPixel = kOpaque;
    for (const unsigned nShift : kShifts) {
        nPixel |= Mix(Channel(nOne, nShift), Channel(nTwo, nShift), nWeight) << nShift;
    }
    return nPixel;
}

bool IsGrey(std::uint32_t nPixel) {
    return ((nPixel ^ (nPixel >> 8U)) & 0xFFFFU) == 0;
}

// Weights of the channels' brightness in 256ths; they sum to 256.
std::int32_t Brightness(std::uint32_t nPixel) {
    return (29 * Channel(nPixel, 0U) + 150 * Channel(nPixel, 8U) + 77 * Channel(nPixel, 16U) +
            128) >>
           8;
}

}

ColorMapping::ColorMapping(std::uint32_t nBackColor, std::uint32_t nForeColor) {
    for (std::int32_t i = 0; i < 256; ++i) {
        m_greys[static_cast<std::size_t>(i)] = MixPixels(nForeColor, nBackColor, i);
    }
}

// At seven tenths of a usual ink, black letters still stand out by 7 to 1.
ColorMapping ColorMapping::Dimming(std::uint32_t nBackColor, std::uint32_t nForeColor) {
    constexpr std::int32_t kShare = 255 * 7 / 10;
    const bool bDark = Brightness(nBackColor) < Brightness(nForeColor);
    return {bDark ? MixPixels(kOpaque, nForeColor, kShare) : nBackColor, kOpaque};
}

std::uint32_t ColorMapping::Map(std::uint32_t nPixel) const {
    if (IsGrey(nPixel)) { // most of a page: paper and letters
        return m_greys[nPixel & 0xFFU];
    }
    const std::int32_t nGrey = Brightness(nPixel);
    const std::uint32_t nMappedGrey = m_greys[static_cast<std::size_t>(nGrey)];
    std::uint32_t nMapped = kOpaque;
    for (const unsigned nShift : kShifts) {
        const std::int32_t nHue = Channel(nPixel, nShift) - nGrey;
        nMapped |=
            static_cast<std::uint32_t>(std::clamp(Channel(nMappedGrey, nShift) + nHue, 0, 255))
            << nShift;
    }
    return nMapped;
}

void ColorMapping::MapRow(std::span<const std::uint32_t> source,
                          std::span<const std::uint8_t> pictures,
                          std::span<std::uint32_t> target) const {
    // Neighbours are mostly alike: paper next to paper.
    std::uint32_t nLast = 0xFFFFFFFFU;
    std::uint32_t nLastMapped = Map(nLast);
    const auto fnMap = [&](std::uint32_t nPixel) {
        if (nPixel != nLast) {
            nLast = nPixel;
            nLastMapped = Map(nPixel);
        }
        return nLastMapped;
    };
    if (pictures.empty()) {
        std::transform(source.begin(), source.end(), target.begin(), fnMap);
        return;
    }
    for (std::size_t i = 0; i < source.size(); ++i) {
        const std::uint32_t nPixel = source[i];
        const std::uint32_t nMapped = fnMap(nPixel);
        target[i] = pictures[i] == 0 ? nMapped : MixPixels(nMapped, nPixel, pictures[i]);
    }
}

}
