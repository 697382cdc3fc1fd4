// How values read in the debug output.
//
// Threads: any.
#pragma once

#include <array>
#include <charconv>
#include <string>

namespace velko::vkit {

// The shortest text that reads back as the same number.
template <class Number>
std::string NumberText(Number value) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    return std::string(text.data(), end);
}

inline const char* FlagText(bool bFlag) {
    return bFlag ? "true" : "false";
}

}
