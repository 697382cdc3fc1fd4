#include "tests/support/scripted_engine/ScriptedPage.h"

#include <cmath>

namespace velko::testing {

namespace {

constexpr float kCell = 8.0F; // points

std::uint32_t Channel(std::uint32_t nColor, unsigned nShift) {
    return (nColor >> nShift) & 0xFFU;
}

}

ScriptedPage MakePage(float fWidth, float fHeight, std::int32_t nRotation) {
    ScriptedPage page;
    page.rcBox = {0.0F, 0.0F, fWidth, fHeight};
    page.nRotation = nRotation;
    return page;
}

std::vector<ScriptedPage> MakePages(int nPages, float fWidth, float fHeight) {
    return std::vector<ScriptedPage>(static_cast<std::size_t>(nPages), MakePage(fWidth, fHeight));
}

std::uint32_t PatternColor(std::int32_t nPage, common::vxbase::PointF ptPage) {
    const auto nColumn = static_cast<std::int32_t>(std::floor(ptPage.X / kCell));
    const auto nRow = static_cast<std::int32_t>(std::floor(ptPage.Y / kCell));
    const std::uint32_t nRed = (static_cast<std::uint32_t>(nPage) * 37U + 11U) & 0xFFU;
    const std::uint32_t nGreen = static_cast<std::uint32_t>(nColumn) & 0xFFU;
    const std::uint32_t nBlue = static_cast<std::uint32_t>(nRow) & 0xFFU;
    return 0xFF000000U | (nRed << 16U) | (nGreen << 8U) | nBlue;
}

std::uint32_t MapColor(std::uint32_t nColor, std::uint32_t nBackColor, std::uint32_t nForeColor) {
    std::uint32_t nMapped = 0xFF000000U;
    for (const unsigned nShift : {0U, 8U, 16U}) {
        const auto nFore = static_cast<int>(Channel(nForeColor, nShift));
        const auto nBack = static_cast<int>(Channel(nBackColor, nShift));
        const auto nValue = static_cast<int>(Channel(nColor, nShift));
        nMapped |= static_cast<std::uint32_t>(nFore + (nBack - nFore) * nValue / 255) << nShift;
    }
    return nMapped;
}

}
