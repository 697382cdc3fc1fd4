// The properties of a document: in words, and in their dialog.
#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QGuiApplication>
#include <QPushButton>
#include <QTest>

#include "app/viewer/properties/PropertiesDialog.h"
#include "tests/qt/WindowFixture.h"
#include "widget/facts/PaperSize.h"
#include "widget/reload/DocReloader.h"

namespace velko {
namespace {

using testing::RunUntil;
using vkit::PaperNameOf;

TEST(PaperSizeTest, PapersAreKnownWithinAMillimetreAndTurned) {
    const std::vector<std::pair<QSizeF, const char*>> cases{
        {{595.276, 841.89}, "A4"}, {{597, 840}, "A4"},
        {{599, 842}, ""},          {{842, 595}, "A4, landscape"},
        {{612, 792}, "Letter"},    {{1224, 792}, "Tabloid, landscape"},
        {{612, 1008}, "Legal"},    {{522, 756}, "Executive"},
        {{2384, 3370}, "A0"},      {{74, 105}, "A10"},
        {{498.9, 708.66}, "B5"},   {{1, 1}, ""}};
    for (const auto& [size, szName] : cases) {
        EXPECT_EQ(PaperNameOf(size), szName) << size.width() << " x " << size.height();
    }
    const QLocale german(QLocale::German, QLocale::Germany);
    const QLocale american(QLocale::English, QLocale::UnitedStates);
    EXPECT_EQ(vkit::PaperTextOf({595.276, 841.89}, german), "210 × 297 mm (A4)");
    EXPECT_EQ(vkit::PaperTextOf({612, 792}, american), "8.5 × 11 in (Letter)");
    EXPECT_EQ(vkit::PaperTextOf({100, 100}, german), "35 × 35 mm");
    EXPECT_FALSE(vkit::AreOneSize({595, 842}, {842, 595}));
}

class PropertiesTest : public testing::WindowFixture {
protected:
    viewer::PropertiesDialog* Dialog() { return m_pWindow->findChild<viewer::PropertiesDialog*>(); }
    void OpenDialog() {
        QTest::keyClick(m_pWindow->focusWidget(), Qt::Key_Return, Qt::AltModifier);
        ASSERT_NE(Dialog(), nullptr);
    }
    bool Says(const char* szText) {
        return RunUntil([&] { return Dialog() != nullptr && Dialog()->Text().contains(szText); });
    }
};

TEST_F(PropertiesTest, TheDialogSaysWhatIsKnownAndGoesWithTheDocument) {
    testing::PdfPage wide;
    wide.mediaBox = {0, 0, 842, 595};
    testing::PdfOptions options;
    options.strOwnerPassword = "owner";
    options.eEncryption = testing::PdfEncryption::AesBits128;
    options.nPermissions = -4 & ~(1 << 4); // no copying
    const QString strFile = Write("a<b>.pdf", testing::MakePdf({{}, wide}, options));
    ASSERT_TRUE(ShowUntilSharp(strFile));
    OpenDialog();
    EXPECT_TRUE(Says("AES, 128 bits"));
    const QString strText = Dialog()->Text();
    EXPECT_TRUE(strText.contains("Not allowed") && strText.contains("copying text and pictures"));
    EXPECT_TRUE(strText.contains("a<b>.pdf")) << "what it tells is no markup";
    EXPECT_TRUE(Says("several sizes") && Says("Letter") && Says("bytes)"));
    m_pWindow->View().JumpToPage(1);
    EXPECT_TRUE(Says("A4, landscape"));
    for (auto* const pButton : Dialog()->findChildren<QPushButton*>()) {
        if (pButton->text().remove('&') == "Copy the path") {
            pButton->click();
        }
    }
    EXPECT_EQ(QGuiApplication::clipboard()->text(), strFile);
    OpenDialog();
    EXPECT_EQ(m_pWindow->findChildren<viewer::PropertiesDialog*>().size(), 1) << "one is enough";
    m_pWindow->View().FollowFile(true);
    Write("a<b>.pdf", testing::MakePdf({wide, wide, wide}));
    m_pWindow->View().Reloader()->ReloadNow();
    ASSERT_TRUE(RunUntil([&] { return m_pWindow->View().PageCount() == 3; }));
    ASSERT_NE(Dialog(), nullptr);
    EXPECT_TRUE(RunUntil([&] { return !Dialog()->Text().contains("several sizes"); }));
    EXPECT_TRUE(RunUntil([&] { return Dialog()->Fonts().PagesRead() == 3; }));
    ASSERT_TRUE(ShowUntilSharp(WritePages("other.pdf", 1)));
    EXPECT_TRUE(RunUntil([&] { return Dialog() == nullptr; })) << "of a document that is gone";
}

TEST_F(PropertiesTest, FontsOfAllPagesAreCollectedOnceEach) {
    testing::PdfPage page;
    page.strContent = "BT /F1 12 Tf 72 700 Td (x) Tj ET";
    ASSERT_TRUE(ShowUntilSharp(
        Write("fonts.pdf", testing::MakePdf(std::vector<testing::PdfPage>(300, page)))));
    OpenDialog();
    const vkit::FontModel& fonts = Dialog()->Fonts();
    ASSERT_TRUE(RunUntil([&] { return fonts.IsComplete(); }));
    EXPECT_EQ(fonts.PagesRead(), 300);
    ASSERT_EQ(fonts.rowCount({}), 1);
    EXPECT_EQ(fonts.index(0, vkit::FontModel::kName).data().toString(), "Helvetica");
    EXPECT_EQ(fonts.index(0, vkit::FontModel::kEmbedded).data().toString(), "no");
    Dialog()->close();
}

}
}
