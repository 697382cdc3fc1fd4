#include "document/Utility.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <optional>
#include <random>

#include "document/Conversion.h"

namespace velko::vkit {

using velko::common::vxbase::Matrix2D;
using Windows::Foundation::Point;
using Windows::Foundation::Rect;
using Windows::UI::Color;

namespace {

constexpr double kPointsPerInch = 72.0;

struct Guid {
    std::uint32_t nData1 = 0;
    std::uint16_t nData2 = 0;
    std::uint16_t nData3 = 0;
    std::array<std::uint8_t, 8> data4{};
};

// Version 4: random but for the version in the third group's top four bits and
// the variant in the fourth's top two. Empty without a source of random numbers.
std::optional<Guid> NewGuid() {
    try {
        std::random_device source;
        std::uniform_int_distribution<std::uint32_t> words;
        Guid guid;
        guid.nData1 = words(source);
        const std::uint32_t nMiddle = words(source);
        guid.nData2 = static_cast<std::uint16_t>(nMiddle >> 16U);
        guid.nData3 = static_cast<std::uint16_t>((nMiddle & 0x0FFFU) | 0x4000U);
        for (std::size_t nByte = 0; nByte < guid.data4.size(); ++nByte) {
            guid.data4[nByte] = static_cast<std::uint8_t>(words(source));
        }
        guid.data4[0] = static_cast<std::uint8_t>((guid.data4[0] & 0x3FU) | 0x80U);
        return guid;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

template <class... Args>
std::string Format(const char* szFormat, Args... args) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), szFormat, args...);
    return text.data();
}

// "%08X%04X%04X", the first 16 digits.
std::string HeadText(const Guid& guid) {
    return Format("%08X%04X%04X", unsigned{guid.nData1}, unsigned{guid.nData2},
                  unsigned{guid.nData3});
}

std::string BytesText(const Guid& guid, std::size_t nFirst, std::size_t nCount) {
    std::string strText;
    for (std::size_t nByte = nFirst; nByte < nFirst + nCount; ++nByte) {
        strText += Format("%02X", unsigned{guid.data4[nByte]});
    }
    return strText;
}

std::string PlainText(const Guid& guid) {
    return HeadText(guid) + BytesText(guid, 0, guid.data4.size());
}

std::string DeviceFamily() {
    return Windows::System::Profile::AnalyticsInfo::DeviceFamily();
}

}

std::string Utility::NewGuidString() {
    const std::optional<Guid> guid = NewGuid();
    if (!guid) {
        return {};
    }
    return Format("{%08X-%04X-%04x-", unsigned{guid->nData1}, unsigned{guid->nData2},
                  unsigned{guid->nData3}) +
           BytesText(*guid, 0, 2) + "-" + BytesText(*guid, 2, 6) + "}";
}

std::string Utility::NewGuidStringPlain() {
    const std::optional<Guid> guid = NewGuid();
    return guid ? PlainText(*guid) : std::string();
}

// The third identifier ends after two of its last eight bytes.
std::string Utility::NewLongIdString() {
    const std::optional<Guid> first = NewGuid();
    const std::optional<Guid> second = NewGuid();
    const std::optional<Guid> third = NewGuid();
    if (!first || !second || !third) {
        return {};
    }
    return PlainText(*first) + HeadText(*second) + "-" + BytesText(*second, 0, 8) + "-" +
           HeadText(*third) + BytesText(*third, 0, 2);
}

Color Utility::ColorFromString(const std::string& strText) {
    constexpr std::size_t kOpaqueLength = 7;
    constexpr std::size_t kAlphaLength = 9;
    unsigned nAlpha = 0xFF;
    unsigned nRed = 0;
    unsigned nGreen = 0;
    unsigned nBlue = 0;
    bool bRead = false;
    if (strText.size() == kOpaqueLength) {
        bRead = std::sscanf(strText.c_str(), "#%2X%2X%2X", &nRed, &nGreen, &nBlue) == 3;
    } else if (strText.size() == kAlphaLength) {
        bRead = std::sscanf(strText.c_str(), "#%2X%2X%2X%2X", &nAlpha, &nRed, &nGreen, &nBlue) == 4;
    }
    if (!bRead) {
        return Windows::UI::Colors::White;
    }
    return {static_cast<std::uint8_t>(nAlpha), static_cast<std::uint8_t>(nRed),
            static_cast<std::uint8_t>(nGreen), static_cast<std::uint8_t>(nBlue)};
}

std::string Utility::ColorToString(Color color) {
    return Format("#%02X%02X%02X%02X", unsigned{color.A}, unsigned{color.R}, unsigned{color.G},
                  unsigned{color.B});
}

bool Utility::IsDesktop() {
    return DeviceFamily() == "Windows.Desktop";
}

bool Utility::IsMobile() {
    return DeviceFamily() == "Windows.Mobile";
}

double Utility::PointsToPixels(double dbPoints) {
    return dbPoints / kPointsPerInch * double{GetDisplayInformation().LogicalDpi()};
}

double Utility::PixelsToPoints(double dbPixels) {
    return dbPixels * kPointsPerInch / double{GetDisplayInformation().LogicalDpi()};
}

Point Utility::TransformPoint(const Matrix2D& matrix, Point pt) {
    const auto ptResult = matrix.TransformPoint({pt.X, pt.Y});
    return {ptResult.X, ptResult.Y};
}

Rect Utility::TransformRect(const Matrix2D& matrix, const Rect& rc) {
    if (rc.IsEmpty()) {
        return Rect::Empty();
    }
    return detail::ToPlatformRect(matrix.TransformRect(detail::ToEngineRect(rc)));
}

}
