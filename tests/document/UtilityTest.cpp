// Identifiers, colours as text, units, the device family.
#include "document/Utility.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "document/PageRange.h"
#include "document/VelkoPointerWrapObj.h"
#include "platform/fake/TestHost.h"
#include "platform/foundation/PropertyValue.h"

namespace velko::testing {
namespace {

using vkit::Utility;
using Windows::UI::Color;

// In a shape H is an upper and h a lower case digit of base 16, V the digit
// that tells the variant; all else stands for itself.
bool HasShape(const std::string& strText, const std::string& strShape) {
    const auto fnFits = [](char cText, char cShape) {
        const std::string strDigits = cShape == 'H'   ? "0123456789ABCDEF"
                                      : cShape == 'h' ? "0123456789abcdef"
                                      : cShape == 'V' ? "89AB"
                                                      : std::string(1, cShape);
        return strDigits.find(cText) != std::string::npos;
    };
    return std::equal(strText.begin(), strText.end(), strShape.begin(), strShape.end(), fnFits);
}

TEST(IdentifierTest, TextsHaveTheirShapeVersionAndVariant) {
    const std::string strPlainShape = "HHHHHHHHHHHH4HHHVHHHHHHHHHHHHHHH";
    const std::string strLongShape =
        strPlainShape + "HHHHHHHHHHHH4HHH-VHHHHHHHHHHHHHHH-" + strPlainShape.substr(0, 20);
    std::set<std::string> seen;
    bool bLowerLetter = false;
    for (int nText = 0; nText < 100; ++nText) {
        const std::string strBraced = Utility::NewGuidString();
        EXPECT_TRUE(HasShape(strBraced, "{HHHHHHHH-HHHH-4hhh-VHHH-HHHHHHHHHHHH}")) << strBraced;
        const std::string strGroup = strBraced.substr(15, 4);
        bLowerLetter = bLowerLetter || strGroup.find_first_of("abcdef") != std::string::npos;
        const std::string strPlain = Utility::NewGuidStringPlain();
        EXPECT_TRUE(HasShape(strPlain, strPlainShape)) << strPlain;
        const std::string strLong = Utility::NewLongIdString();
        EXPECT_TRUE(HasShape(strLong, strLongShape)) << strLong;
        for (const std::string& strText : {strBraced, strPlain, strLong}) {
            EXPECT_TRUE(seen.insert(strText).second) << strText;
        }
    }
    EXPECT_TRUE(bLowerLetter) << "the third group is in lower case";
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

TEST(TransformHelperTest, EmptyStaysEmptyAndBoxesAreUpright) {
    common::vxbase::Matrix2D turn; // a quarter turn
    turn.A = 0;
    turn.B = 1;
    turn.C = -1;
    turn.D = 0;
    using Windows::Foundation::Rect;
    EXPECT_EQ(Utility::TransformRect(turn, {1, 2, 10, 20}), Rect(-22, 1, 20, 10));
    EXPECT_TRUE(Utility::TransformRect(turn, Rect::Empty()).IsEmpty());
    EXPECT_EQ(Utility::TransformPoint(turn, {1, 2}), (Windows::Foundation::Point{-2, 1}));
}

TEST(WrapObjectTest, CarriesABoxedHandle) {
    using Windows::Foundation::PropertyValue;
    vkit::VelkoPointerWrapObj wrap;
    EXPECT_EQ(wrap.Target(), nullptr);
    const std::int64_t nHandle = INT64_MIN + 5;
    wrap.Target(std::make_shared<PropertyValue>(PropertyValue::Create(nHandle)));
    EXPECT_EQ(static_cast<const PropertyValue*>(wrap.Target().get())->Get<std::int64_t>(), nHandle);
    const vkit::PageRange range(3, 9);
    EXPECT_EQ(range.First, 3);
    EXPECT_EQ(range.Last, 9);
}

}
}
