// Scans in the mapped colour mode, and what is none.

#include "tests/engine/MuPdfFixture.h"
#include "tests/support/pdf_writer/PdfWriter.h"

namespace velko::testing {

using common::ScanColors;

namespace {

constexpr std::uint32_t kPaper = 0xFF202020U;
constexpr std::uint32_t kInk = 0xFFC8C8C8U;

struct ScanCase {
    const char* szContent; // of a page of 100 by 100; /I1 is a bright picture, /I2 a dark one
    bool bScan;
};

}

class ScanColorsTest : public MuPdfTest {
protected:
    static std::uint32_t MiddleOf(const std::string& strContent, ScanColors eColors,
                                  std::uint32_t nBack = kPaper, std::uint32_t nFore = kInk) {
        PdfOptions options;
        options.images = {{1, 1, "\xF0\xF0\xF0"}, {1, 1, "\x30\x30\x30"}};
        options.extraObjects = {FormObject(4, 4, "1 1 1")};
        PdfPage page;
        page.mediaBox = {0, 0, 100, 100};
        page.strContent = strContent;
        page.annots = {AnnotDictionary("Square", {2, 2, 6, 6}, kFirstExtraObject)};
        const auto pDoc = OpenDoc(MakePdf({page}, options));
        const auto pPage = pDoc->GetPage(0);
        View view = WholePage(*pPage);
        view.bAnnots = true;
        view.nBackColor = nBack;
        view.nForeColor = nFore;
        view.eScanColors = eColors;
        return PixelAt(*Render(pPage, view), 50, 50) & 0xFFU; // greys
    }
};

TEST_F(ScanColorsTest, AScanFollowsTheColoursAsChosenAndOtherPicturesStay) {
    constexpr const char* kText = "BT /F1 9 Tf 5 5 Td (read) Tj ET ";
    const std::string strHidden = std::string("BT 3 Tr ET ") + kText;
    const std::string strBelow = std::string(kText) + "q 100 0 0 100 0 0 cm /I1 Do Q";
    const std::string strScan = strHidden + "0 Tr q 100 0 0 100 0 0 cm /I1 Do Q";
    const std::string strLabelled = strScan + " " + kText;
    const std::vector<ScanCase> cases = {
        {"q 100 0 0 100 0 0 cm /I1 Do Q", true},
        {"q 96 0 0 97 2 1 cm /I1 Do Q", true},
        {"q 0 100 -100 0 100 0 cm /I1 Do Q", true},
        {"q 100 0 0 40 0 60 cm /I1 Do Q q 100 0 0 60 0 0 cm /I1 Do Q", true}, // strips
        {strScan.c_str(), true},                                              // to be searched
        {strBelow.c_str(), true},
        {strLabelled.c_str(), false},
        {"q 80 0 0 80 10 10 cm /I1 Do Q", false},
        {"q 20 20 60 60 re W n 100 0 0 100 0 0 cm /I1 Do Q", false}, // cut off by a clip
    };
    constexpr std::uint32_t kBright = 0xF0;
    constexpr const char* kDark = "q 100 0 0 100 0 0 cm /I2 Do Q";
    EXPECT_EQ(MiddleOf(kDark, ScanColors::Turned), 0x30U) << "else it would glare";
    for (const ScanCase& c : cases) {
        SCOPED_TRACE(c.szContent);
        const std::uint32_t nTurned = MiddleOf(c.szContent, ScanColors::Turned);
        const std::uint32_t nDimmed = MiddleOf(c.szContent, ScanColors::Dimmed);
        EXPECT_EQ(MiddleOf(c.szContent, ScanColors::Left), kBright);
        EXPECT_EQ(MiddleOf(c.szContent, ScanColors::Turned, kWhite, kBlack), kBright) << "by day";
        if (c.bScan) {
            EXPECT_NEAR(nTurned, 0x2A, 2) << "as the greys of the page";
            EXPECT_NEAR(nDimmed, 0xC8 * 0.7 * kBright / 255, 2) << "below the ink";
            EXPECT_NEAR(MiddleOf(c.szContent, ScanColors::Dimmed, 0xFFE0E0E0U, kBlack),
                        0xE0 * kBright / 255, 1)
                << "as bright as the paper at most";
        } else {
            EXPECT_EQ(nTurned, kBright);
            EXPECT_EQ(nDimmed, kBright);
        }
    }
}

}
