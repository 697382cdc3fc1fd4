#include "engines/mupdf/reflow/SetParameters.h"

#include <algorithm>
#include <cmath>

namespace velko::engines::mupdf::reflow {

namespace {

constexpr float kLeastSide = 16.0F;    // pixels
constexpr float kMostSpacing = 200.0F; // points
constexpr std::int32_t kLeastPercent = 10;
constexpr std::int32_t kMostPercent = 2000;

float Kept(float f, float fLeast, float fMost) {
    return f >= fLeast ? std::min(f, fMost) : fLeast;
}

}

SetParameters Bounded(const SetParameters& parameters) {
    constexpr auto fMostSide = static_cast<float>(SetParameters::kMostSide);
    return {Kept(std::floor(parameters.fScreenWidth), kLeastSide, fMostSide),
            Kept(parameters.fScreenHeight, kLeastSide, fMostSide),
            std::clamp(parameters.nPercent, kLeastPercent, kMostPercent),
            Kept(parameters.fLineSpacing, 0.0F, kMostSpacing),
            Kept(parameters.fParagraphSpacing, 0.0F, kMostSpacing),
            parameters.bPictures};
}

}
