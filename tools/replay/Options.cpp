#include "tools/replay/Options.h"

#include <charconv>
#include <cmath>
#include <functional>
#include <map>
#include <string_view>

namespace velko::replay {

namespace {

constexpr const char* kUsage =
    "velko-replay [options] [SCRIPT]\n"
    "Runs the view control without a display: reads commands, one JSON object a line,\n"
    "from SCRIPT (standard input when it is missing or \"-\") and writes what happened.\n"
    "\n"
    "  --size WxH                    canvas, logical pixels (1000x1400)\n"
    "  --composition-scale SX[,SY]   composition scale of the panel (1)\n"
    "  --dpi D                       logical DPI of the display (96)\n"
    "  --family TEXT                 device family (Windows.Desktop)\n"
    "  --data DIR                    application data folder (a temporary one)\n"
    "  --debug-output                print the debug output as well\n"
    "  --engine NAME                 engine module (mupdf)\n"
    "  --help                        this text\n";

template <class T>
T ParseNumber(std::string_view strText, const std::string& strOption) {
    T value{};
    const auto [pEnd, eError] =
        std::from_chars(strText.data(), strText.data() + strText.size(), value);
    if (eError != std::errc() || pEnd != strText.data() + strText.size()) {
        throw UsageError(strOption + ": not a number: " + std::string(strText));
    }
    return value;
}

float ParsePositive(std::string_view strText, const std::string& strOption) {
    const auto fValue = ParseNumber<float>(strText, strOption);
    if (!std::isfinite(fValue) || fValue <= 0.0F) {
        throw UsageError(strOption + ": must be above 0: " + std::string(strText));
    }
    return fValue;
}

void ParseSize(const std::string& strText, Options& options) {
    const std::size_t nCross = strText.find('x');
    if (nCross == std::string::npos) {
        throw UsageError("--size: expected WxH: " + strText);
    }
    const std::string_view strAll = strText;
    options.nWidth = ParseNumber<std::int32_t>(strAll.substr(0, nCross), "--size");
    options.nHeight = ParseNumber<std::int32_t>(strAll.substr(nCross + 1), "--size");
    if (options.nWidth < 0 || options.nHeight < 0) {
        throw UsageError("--size: must not be negative: " + strText);
    }
}

void ParseScale(const std::string& strText, Options& options) {
    const std::string_view strAll = strText;
    const std::size_t nComma = strAll.find(',');
    options.fScaleX = ParsePositive(strAll.substr(0, nComma), "--composition-scale");
    options.fScaleY = nComma == std::string_view::npos
                          ? options.fScaleX
                          : ParsePositive(strAll.substr(nComma + 1), "--composition-scale");
}

using ValueOption = std::function<void(const std::string&, Options&)>;

const std::map<std::string, ValueOption>& ValueOptions() {
    static const std::map<std::string, ValueOption> options{
        {"--size", ParseSize},
        {"--composition-scale", ParseScale},
        {"--dpi", [](const auto& s, Options& o) { o.fDpi = ParsePositive(s, "--dpi"); }},
        {"--family", [](const auto& s, Options& o) { o.strFamily = s; }},
        {"--data", [](const auto& s, Options& o) { o.strDataFolder = s; }},
        {"--engine", [](const auto& s, Options& o) { o.strEngine = s; }},
    };
    return options;
}

// `--name=value` is `--name value`.
std::vector<std::string> SplitAtEquals(const std::vector<std::string>& arguments) {
    std::vector<std::string> split;
    for (const std::string& strArgument : arguments) {
        const std::size_t nEquals = strArgument.find('=');
        if (strArgument.rfind("--", 0) == 0 && nEquals != std::string::npos) {
            split.push_back(strArgument.substr(0, nEquals));
            split.push_back(strArgument.substr(nEquals + 1));
        } else {
            split.push_back(strArgument);
        }
    }
    return split;
}

void TakeScript(const std::string& strArgument, Options& options) {
    if (options.strScript) {
        throw UsageError("more than one script: " + strArgument);
    }
    options.strScript = strArgument;
}

}

Options ParseOptions(const std::vector<std::string>& arguments) {
    Options options;
    const std::vector<std::string> split = SplitAtEquals(arguments);
    for (std::size_t n = 0; n < split.size(); ++n) {
        const std::string& strArgument = split[n];
        const auto it = ValueOptions().find(strArgument);
        if (it != ValueOptions().end()) {
            if (++n == split.size()) {
                throw UsageError(strArgument + ": value missing");
            }
            it->second(split[n], options);
        } else if (strArgument == "--debug-output") {
            options.bDebugOutput = true;
        } else if (strArgument == "--help") {
            options.bHelp = true;
        } else if (strArgument.size() > 1 && strArgument.front() == '-') {
            throw UsageError("unknown option: " + strArgument);
        } else {
            TakeScript(strArgument, options);
        }
    }
    if (options.strScript == "-") {
        options.strScript.reset();
    }
    return options;
}

const char* UsageText() {
    return kUsage;
}

}
