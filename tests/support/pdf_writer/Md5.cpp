#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <utility>

#include "tests/support/pdf_writer/Md5_p.h"

namespace velko::testing {

namespace {

using State = std::array<std::uint32_t, 4>;

std::uint32_t Word(std::string_view strBytes, std::size_t nAt) {
    std::uint32_t nWord = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        nWord |= std::uint32_t{static_cast<std::uint8_t>(strBytes[nAt + i])} << (8 * i);
    }
    return nWord;
}

void Digest(State& state, std::string_view strBlock) {
    constexpr std::array<std::array<int, 4>, 4> kShifts = {
        {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}}};
    auto [a, b, c, d] = state;
    for (std::uint32_t i = 0; i < 64; ++i) {
        std::uint32_t nMix = 0;
        std::uint32_t nWord = i;
        switch (i / 16) {
            case 0:
                nMix = (b & c) | (~b & d);
                break;
            case 1:
                nMix = (d & b) | (~d & c), nWord = (5 * i + 1) % 16;
                break;
            case 2:
                nMix = b ^ c ^ d, nWord = (3 * i + 5) % 16;
                break;
            default:
                nMix = c ^ (b | ~d), nWord = (7 * i) % 16;
                break;
        }
        const auto nSine =
            static_cast<std::uint32_t>(std::floor(std::abs(std::sin(i + 1.0)) * 4294967296.0));
        const std::uint32_t nSum = a + nMix + nSine + Word(strBlock, nWord * 4);
        a = std::exchange(
            d, std::exchange(c, std::exchange(b, b + std::rotl(nSum, kShifts[i / 16][i % 4]))));
    }
    state = {state[0] + a, state[1] + b, state[2] + c, state[3] + d};
}

}

std::string Md5(std::string_view strData) {
    std::string strPadded(strData);
    strPadded += '\x80';
    strPadded.append((120 - strPadded.size() % 64) % 64, '\0');
    const std::uint64_t nBits = std::uint64_t{strData.size()} * 8;
    for (unsigned i = 0; i < 8; ++i) {
        strPadded += static_cast<char>(nBits >> (8 * i));
    }
    State state = {0x67452301U, 0xEFCDAB89U, 0x98BADCFEU, 0x10325476U};
    for (std::size_t n = 0; n < strPadded.size(); n += 64) {
        Digest(state, std::string_view(strPadded).substr(n, 64));
    }
    std::string strDigest;
    for (const std::uint32_t nWord : state) {
        for (unsigned i = 0; i < 4; ++i) {
            strDigest += static_cast<char>(nWord >> (8 * i));
        }
    }
    return strDigest;
}

std::string Rc4(std::string_view strKey, std::string_view strData) {
    std::array<std::uint8_t, 256> box{};
    std::iota(box.begin(), box.end(), std::uint8_t{0});
    for (std::size_t i = 0, j = 0; i < 256; ++i) {
        j = (j + box[i] + static_cast<std::uint8_t>(strKey[i % strKey.size()])) & 0xFFU;
        std::swap(box[i], box[j]);
    }
    std::string strResult(strData);
    std::uint8_t i = 0;
    std::uint8_t j = 0;
    for (char& c : strResult) {
        i = static_cast<std::uint8_t>(i + 1);
        j = static_cast<std::uint8_t>(j + box[i]);
        std::swap(box[i], box[j]);
        const auto nKey = box[static_cast<std::uint8_t>(box[i] + box[j])];
        c = static_cast<char>(static_cast<std::uint8_t>(c) ^ nKey);
    }
    return strResult;
}

}
