// Where a page's characters stand once its text is set anew.
#include <algorithm>
#include <string>
#include <vector>

#include "document/engine/DisplayMatrix.h"
#include "document/engine/PageText.h"
#include "tests/engine/ReflowFixture.h"
#include "tests/support/pdf_writer/PdfWriter.h"

namespace velko::testing {

namespace {

using common::vxbase::PointF;
using pdf::PageText;

struct SetPage {
    std::shared_ptr<const PageText> pOwn;
    std::shared_ptr<const PageText> pSet;
    std::vector<common::vxbase::RectF> boxes; // of each character, pixels of the content
    std::shared_ptr<common::Bitmap> pPicture;

    std::size_t Find(char32_t nCode, std::size_t nFrom = 0) const {
        while (pOwn->chars[nFrom].nCode != nCode) {
            ++nFrom;
        }
        return nFrom;
    }
    double Width(std::size_t i) const { return boxes[i].Right - boxes[i].Left; }
    bool HasInk(std::size_t i) const {
        const auto& rc = boxes[i];
        for (int y = static_cast<int>(rc.Top); y < static_cast<int>(rc.Bottom); ++y) {
            for (int x = static_cast<int>(rc.Left); x < static_cast<int>(rc.Right) + 1; ++x) {
                if (x >= 0 && y >= 0 && x < pPicture->GetWidth() && y < pPicture->GetHeight() &&
                    PixelAt(*pPicture, x, y) != kWhite) {
                    return true;
                }
            }
        }
        return false;
    }
};

SetPage SetPageOf(const std::string& strBytes, const Wanted& wanted = {}) {
    const auto pDoc = OpenDoc(strBytes);
    const auto pPage = pDoc->GetPage(0);
    const auto pReflow = CreateReflow(pPage);
    Parse(*pReflow, wanted);
    SetPage set;
    set.pOwn = std::dynamic_pointer_cast<pdf::ITextSource>(pDoc)->TextOf(0);
    set.pSet = std::dynamic_pointer_cast<pdf::ISetTextSource>(pDoc)->SetTextOf(0);
    set.pPicture = DrawBand(pReflow, 0, pReflow->GetContentHeight());
    const auto m =
        pdf::MakeDisplayMatrix(pPage->GetBox(0), pPage->GetRotation(), 0, 0,
                               pReflow->GetContentWidth(), pReflow->GetContentHeight(), 0);
    for (const pdf::TextChar& c : set.pSet->chars) {
        common::vxbase::RectF rc;
        rc.Left = rc.Top = 1.0E9F;
        rc.Right = rc.Bottom = -1.0E9F;
        for (const PointF pt : {c.quad.ptTopLeft, c.quad.ptBottomRight}) {
            const float fX = m.A * pt.X + m.C * pt.Y + m.E;
            const float fY = m.B * pt.X + m.D * pt.Y + m.F;
            rc.Left = std::min(rc.Left, fX);
            rc.Right = std::max(rc.Right, fX);
            rc.Top = std::min(rc.Top, fY);
            rc.Bottom = std::max(rc.Bottom, fY);
        }
        set.boxes.push_back(rc);
    }
    return set;
}

}

class SetTextTest : public MuPdfTest {};

// Whatever way the page lies: two columns, a word that was parted, and a ligature.
TEST_F(SetTextTest, LettersStandWhereTheyAreDrawn) {
    const std::vector<std::string> rows = {"The first column begins with a line that",
                                           "is full and goes on with one that ends be-",
                                           "fore its time has come, as they say of it"};
    PdfPage page;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const double y = 650.0 - 12.0 * static_cast<double>(i);
        page.strContent += TextAt(60, y, rows[i]) + TextAt(320, y, rows[i]);
    }
    for (const int nRotate : {0, 90, 180, 270}) {
        SCOPED_TRACE(nRotate);
        page.nRotate = nRotate;
        const SetPage set = SetPageOf(MakePdf({page}));
        ASSERT_EQ(set.pSet->chars.size(), set.pOwn->chars.size());
        ASSERT_EQ(set.pSet->blocks.size(), set.pOwn->blocks.size());
        std::vector<std::size_t> hyphens;
        for (std::size_t i = 0; i < set.boxes.size(); ++i) {
            const char32_t nCode = set.pSet->chars[i].nCode;
            EXPECT_EQ(nCode, set.pOwn->chars[i].nCode);
            if (nCode == U'-') {
                hyphens.push_back(i);
            } else if (nCode != U' ') {
                EXPECT_TRUE(set.HasInk(i)) << i << ": " << static_cast<char>(nCode);
            }
        }
        ASSERT_EQ(hyphens.size(), 2U);
        for (const std::size_t i : hyphens) {
            EXPECT_LT(set.Width(i), 0.01) << "it is undone";
            EXPECT_NEAR(set.boxes[i - 1].Right, set.boxes[i + 1].Left, 0.5) << "the word is one";
        }
        for (const pdf::TextLine& line : set.pSet->lines) {
            const auto nLast = static_cast<std::size_t>(line.nEnd) - 1;
            EXPECT_NEAR(set.boxes[static_cast<std::size_t>(line.nFirst)].Top, set.boxes[nLast].Top,
                        0.01);
        }
    }
}

// A picture's text stands in the picture while it is shown, and is set without it.
TEST_F(SetTextTest, TextOfAFigureStandsInTheFigure) {
    const std::string strBytes = Illustrated("1 g " + TextAt(140, 570, "XYZ", 20));
    for (const std::int32_t nFlags : {pdf::ReflowPage::kTextAndPictures, pdf::ReflowPage::kText}) {
        const SetPage set = SetPageOf(strBytes, {.nFlags = nFlags});
        const std::size_t nX = set.Find(U'X');
        const auto& rc = set.boxes[nX];
        const bool bInPicture = PixelAt(*set.pPicture, static_cast<int>(rc.Left),
                                        static_cast<int>(rc.Top)) == kPictureColor;
        EXPECT_EQ(bInPicture, nFlags == pdf::ReflowPage::kTextAndPictures);
        EXPECT_GT(set.Width(nX), 5.0);
        EXPECT_LT(set.boxes[nX - 1].Top, rc.Top);
    }
}

TEST_F(SetTextTest, FollowsWhatTheTextWasSetForLast) {
    const auto pDoc = OpenDoc(MixedDocument(2));
    auto& source = dynamic_cast<pdf::ISetTextSource&>(*pDoc);
    EXPECT_EQ(source.SetNumber(), 0U);
    EXPECT_EQ(source.SetTextOf(0), nullptr);
    const auto pReflow = CreateReflow(pDoc->GetPage(0));
    const auto fnLines = [&](const Wanted& wanted) {
        Parse(*pReflow, wanted);
        return source.SetTextOf(0)->lines.size();
    };
    const std::size_t nWide = fnLines({.fWidth = 800.0F});
    const std::uint64_t nNumber = source.SetNumber();
    EXPECT_GT(fnLines({.fWidth = 150.0F}), nWide);
    EXPECT_NE(source.SetNumber(), nNumber);
    EXPECT_EQ(fnLines({.fWidth = 800.0F}), nWide);
    EXPECT_EQ(source.SetNumber(), nNumber) << "which is as before";
    EXPECT_FALSE(source.SetTextOf(1)->chars.empty()) << "of a page that nobody has set";
    EXPECT_EQ(EngineCodeOf([&] { source.SetTextOf(2); }), common::ErrorCode::e_ErrParam);
}

}
