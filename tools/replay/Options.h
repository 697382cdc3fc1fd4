// The command line of velko-replay.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace velko::replay {

struct Options {
    std::int32_t nWidth = 1000;  // canvas, logical pixels
    std::int32_t nHeight = 1400; // canvas, logical pixels
    float fScaleX = 1.0F;        // composition scale
    float fScaleY = 1.0F;
    float fDpi = 96.0F; // logical DPI
    std::string strFamily = "Windows.Desktop";
    std::optional<std::string> strDataFolder; // absent: a temporary one
    bool bDebugOutput = false;
    std::string strEngine = "mupdf";
    std::optional<std::string> strScript; // absent: standard input
    bool bHelp = false;
};

// A command line that cannot be used; the text says why.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Reads the arguments after the program's name; raises `UsageError`.
Options ParseOptions(const std::vector<std::string>& arguments);

// What `--help` prints.
const char* UsageText();

}
