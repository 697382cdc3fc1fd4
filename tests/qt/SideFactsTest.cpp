// What a document says of itself, as the parts of a window get to know it.
#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QTest>
#include <array>

#include "app/viewer/CommandBar.h"
#include "app/viewer/ValueField.h"
#include "tests/qt/WindowFixture.h"
#include "widget/facts/OutlineModel.h"

namespace velko {
namespace {

using testing::RunUntil;
using vkit::DocumentHeight;
using vkit::Outline;

class SideFactsTest : public testing::WindowFixture {
protected:
    QString WriteLabelled(const QString& strName, const std::string& strLabels) {
        testing::PdfOptions options;
        options.strCatalogExtra = "/PageLabels << /Nums [" + strLabels + "] >>";
        return Write(strName, testing::MakePdf(std::vector<testing::PdfPage>(9), options));
    }
    viewer::CommandBar* Bar() { return m_pWindow->findChild<viewer::CommandBar*>(); }
    void EnterPage(const QString& strText) {
        Bar()->EnterPage();
        QTest::keyClicks(m_pWindow->focusWidget(), strText);
        QTest::keyClick(m_pWindow->focusWidget(), Qt::Key_Return);
    }
};

TEST_F(SideFactsTest, PagesAreCalledByTheirLabelsAndFoundByThem) {
    const QString strPlain = WritePages("plain.pdf", 3);
    ASSERT_TRUE(ShowUntilSharp(WriteLabelled("front.pdf", "0 << /S /r >> 4 << /S /D >>")));
    ASSERT_TRUE(RunUntil([&] { return Bar() != nullptr && Bar()->PageText() == "i"; }));
    EXPECT_EQ(Bar()->CountText(), "(1 of 9)");
    // "1" is the label of the fifth page; "7" is none, and so a number.
    const std::vector<std::array<const char*, 3>> cases{{"iii", "iii", "(3 of 9)"},
                                                        {"1", "1", "(5 of 9)"},
                                                        {"IV", "iv", "(4 of 9)"},
                                                        {"7", "3", "(7 of 9)"}};
    for (const auto& [szTyped, szLabel, szCount] : cases) {
        EnterPage(szTyped);
        EXPECT_TRUE(RunUntil([&, szText = szLabel] { return Bar()->PageText() == szText; }))
            << szTyped << " led to " << Bar()->PageText().toStdString();
        EXPECT_EQ(Bar()->CountText(), szCount);
    }
    EnterPage("12");
    EXPECT_TRUE(RunUntil([&] { return m_pWindow->Notice().contains("12"); }));
    ASSERT_TRUE(ShowUntilSharp(strPlain));
    EXPECT_TRUE(RunUntil([&] { return Bar()->CountText() == "of 3"; }));
    EXPECT_EQ(Bar()->PageText(), "1") << "the labels of another document";
}

Outline::Entry EntryOf(const char* szTitle, int nDepth) {
    Outline::Entry entry;
    entry.strTitle = szTitle;
    entry.nDepth = nDepth;
    return entry;
}

TEST(OutlineTest, TheTreeIsTheDocumentsAndTheSectionBeingReadIsFound) {
    // A branch ends by more than one level at once; the last entry leads backwards.
    const auto pOutline = std::make_shared<const Outline>(
        std::vector<Outline::Entry>{EntryOf("A", 0), EntryOf("A.1", 1), EntryOf("A.1.a", 2),
                                    EntryOf("B", 0), EntryOf(" \n ", 1), EntryOf("Index", 1)},
        std::vector<DocumentHeight>{{0, 0.0F}, {0, 0.5F}, {2, 0.1F}, {4, 0.0F}, {}, {1, 0.0F}});
    vkit::OutlineModel model;
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    model.Show(pOutline);
    EXPECT_EQ(model.rowCount({}), 2);
    const QModelIndex b = model.index(1, 0, {});
    EXPECT_EQ(model.rowCount(b), 2);
    EXPECT_EQ(b.data().toString(), "B");
    EXPECT_EQ(model.index(0, 0, b).data().toString(), "(no title)");
    EXPECT_EQ(model.index(1, 0, b).parent(), b);
    const std::vector<std::pair<DocumentHeight, int>> cases{
        {{0, 0.2F}, 0}, {{0, 0.5F}, 1}, {{1, 0.9F}, 5},  {{2, 0.05F}, 5},
        {{3, 0.5F}, 2}, {{9, 1.0F}, 3}, {{-1, 0.0F}, -1}};
    for (const auto& [height, nEntry] : cases) {
        EXPECT_EQ(pOutline->ReadAt(height), nEntry) << height.nPage << " " << height.fShare;
    }
}

}
}
