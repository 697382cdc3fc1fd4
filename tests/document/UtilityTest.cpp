// Identifiers, colours as text, units, the device family.
#include "document/Utility.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>
#include <utility>

#include "platform/fake/TestHost.h"

namespace velko::testing {
namespace {

using vkit::Utility;
using Windows::UI::Color;

TEST(IdentifierTest, TextsHaveTheirShapeVersionAndVariant) {
    // Each has the version and the variant; the braced one its third group in lower case.
    const std::string strHead = "[0-9A-F]{12}4[0-9A-F]{3}[89AB]";
    const std::string strPlain = strHead + "[0-9A-F]{15}";
    const std::regex shape(
        "\\{[0-9A-F]{8}-[0-9A-F]{4}-4[0-9a-f]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}\\} " + strPlain +
        " " + strPlain + "[0-9A-F]{12}4[0-9A-F]{3}-[89AB][0-9A-F]{15}-" + strHead + "[0-9A-F]{3}");
    std::set<std::string> seen;
    bool bLowerLetter = false;
    for (int nText = 0; nText < 100; ++nText) {
        const std::string strBraced = Utility::NewGuidString();
        const std::string strAll =
            strBraced + " " + Utility::NewGuidStringPlain() + " " + Utility::NewLongIdString();
        EXPECT_TRUE(std::regex_match(strAll, shape)) << strAll;
        EXPECT_TRUE(seen.insert(strAll.substr(0, 38)).second) << strAll;
        EXPECT_TRUE(seen.insert(strAll.substr(39, 32)).second) << strAll;
        EXPECT_TRUE(seen.insert(strAll.substr(72)).second) << strAll;
        bLowerLetter = bLowerLetter || strBraced.find_first_of("abcdef") != std::string::npos;
    }
    EXPECT_TRUE(bLowerLetter);
}

TEST(ColorTextTest, ReadsSixAndEightDigits) {
    const Color white{255, 255, 255, 255};
    const std::pair<const char*, Color> kCases[] = {
        {"#FF0000", {255, 255, 0, 0}},
        {"#80FF0000", {128, 255, 0, 0}},
        {"#0a0B0c", {255, 10, 11, 12}},
        {"", white},
        {"FF00000", white},
        {"#GG0000", white},
        {"#0000GG", white},
        {"#80FF00G0", white},
        {"#FF000", white},
        {"#FF00000", white},
        {"#FF0000000", white},
    };
    for (const auto& [szText, color] : kCases) {
        EXPECT_EQ(Utility::ColorFromString(szText), color) << szText;
    }
    EXPECT_EQ(Utility::ColorToString(Utility::ColorFromString("#80FF0000")), "#80FF0000");
    EXPECT_EQ(Utility::ColorToString({1, 2, 3, 0xAB}), "#010203AB");
}

TEST(DeviceTest, FamiliesAreNoOppositesAndUnitsFollowTheDpi) {
    const Platform::Fake::TestHost host;
    EXPECT_TRUE(Utility::IsDesktop());
    EXPECT_FALSE(Utility::IsMobile());
    host.Environment().SetDeviceFamily("Windows.Mobile");
    EXPECT_TRUE(Utility::IsMobile());
    host.Environment().SetDeviceFamily("Windows.Xbox");
    EXPECT_FALSE(Utility::IsDesktop() || Utility::IsMobile());
    EXPECT_EQ(Utility::PointsToPixels(72), 96.0);
    host.Environment().SetLogicalDpi(144);
    EXPECT_EQ(Utility::PointsToPixels(72), 144.0);
    EXPECT_EQ(Utility::PixelsToPoints(144), 72.0);
}

}
}
