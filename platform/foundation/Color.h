// A colour of four 8-bit channels, alpha not premultiplied.
#pragma once

#include <cstdint>

namespace Windows::UI {

struct Color {
    std::uint8_t A = 255;
    std::uint8_t R = 0;
    std::uint8_t G = 0;
    std::uint8_t B = 0;

    // The number 0xAARRGGBB.
    constexpr std::uint32_t ToArgb() const {
        return (std::uint32_t{A} << 24U) | (std::uint32_t{R} << 16U) | (std::uint32_t{G} << 8U) |
               std::uint32_t{B};
    }
    static constexpr Color FromArgb(std::uint32_t nArgb) {
        return {static_cast<std::uint8_t>(nArgb >> 24U), static_cast<std::uint8_t>(nArgb >> 16U),
                static_cast<std::uint8_t>(nArgb >> 8U), static_cast<std::uint8_t>(nArgb)};
    }

    friend constexpr bool operator==(const Color&, const Color&) = default;
};

namespace Colors {
inline constexpr Color White{255, 255, 255, 255};
inline constexpr Color Black{255, 0, 0, 0};
}

}
