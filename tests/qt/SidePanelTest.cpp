// The side panel by real keys and clicks.
#include <gtest/gtest.h>

#include <QTest>
#include <QTreeView>

#include "app/viewer/side/OutlinePane.h"
#include "app/viewer/side/SideHandle.h"
#include "app/viewer/side/SidePanel.h"
#include "tests/qt/WindowFixture.h"

namespace velko {
namespace {

using testing::RunUntil;
using View = vkit::VelkoPdfView;

class SidePanelTest : public testing::WindowFixture {
protected:
    static std::string Ref(int nExtra) {
        return std::to_string(testing::kFirstExtraObject + nExtra) + " 0 R";
    }
    // Sections at the second page, in the middle of the third, and at the fifth.
    QString WriteOutlined() {
        testing::PdfOptions options;
        options.strCatalogExtra = "/Outlines " + Ref(0);
        options.extraObjects = {"<< /First " + Ref(1) + " >>",
                                "<< /Title (Alpha) /Dest [1 /XYZ null 792 null] /Count -1 /First " +
                                    Ref(2) + " /Next " + Ref(3) + " >>",
                                "<< /Title (Beta) /Dest [2 /XYZ null 396 null] >>",
                                "<< /Title (Gamma) /Dest [4 /Fit] /Next " + Ref(4) + " >>",
                                "<< /Title (Web) /A << /S /URI /URI (http://example.org/) >> >>"};
        return Write("outlined.pdf", testing::MakePdf(std::vector<testing::PdfPage>(9), options));
    }
    void Key(int nKey, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QWidget* const pFocus = m_pWindow->focusWidget();
        QTest::keyClick(pFocus != nullptr ? pFocus : m_pWindow.get(), static_cast<Qt::Key>(nKey),
                        modifiers);
    }
    View& TheView() { return m_pWindow->View(); }
    viewer::SidePanel& Panel() { return *m_pWindow->findChild<viewer::SidePanel*>(); }
    viewer::OutlinePane* Outline() { return m_pWindow->findChild<viewer::OutlinePane*>(); }
    QString MarkedTitle() { return Outline()->Marked().data().toString(); }
    bool ShowOutline() {
        Key(Qt::Key_F9);
        return RunUntil([&] {
            return Outline() != nullptr && qobject_cast<QTreeView*>(Outline()->focusProxy());
        });
    }
};

TEST_F(SidePanelTest, TheOutlineLeadsToItsSectionsAndFollowsTheReader) {
    ASSERT_TRUE(ShowUntilSharp(WriteOutlined()));
    ASSERT_TRUE(ShowOutline());
    EXPECT_EQ(TheView().x(), Panel().width());
    Key(Qt::Key_F6);
    Key(Qt::Key_G); // the window's commands have letters too
    EXPECT_EQ(TheView().CurrentPage(), 0);
    Key(Qt::Key_Return);
    ASSERT_TRUE(RunUntil([&] { return TheView().CurrentPage() == 4; }));
    EXPECT_EQ(MarkedTitle(), "Gamma");
    Key(Qt::Key_Escape);
    EXPECT_TRUE(TheView().Window().hasFocus());
    EXPECT_TRUE(Panel().isVisible()) << "beside the pages it stays";
    Key(Qt::Key_Left, Qt::AltModifier);
    ASSERT_TRUE(RunUntil([&] { return TheView().CurrentPage() == 0; })) << "a jump has a way back";
    EXPECT_TRUE(RunUntil([&] { return MarkedTitle().isEmpty(); }));
    // The tree does not open by itself: what is folded stands for what is in it.
    TheView().JumpToPage(3);
    EXPECT_TRUE(RunUntil([&] { return MarkedTitle() == "Alpha"; }));
    auto* const pTree = qobject_cast<QTreeView*>(Outline()->focusProxy());
    EXPECT_FALSE(pTree->isExpanded(Outline()->Marked()));
    pTree->expandAll();
    EXPECT_EQ(MarkedTitle(), "Beta");
    ASSERT_TRUE(ShowUntilSharp(WritePages("plain.pdf", 2)));
    EXPECT_TRUE(RunUntil([&] { return !qobject_cast<QTreeView*>(Outline()->focusProxy()); }))
        << "the outline of a document that is not shown any more";
}

TEST_F(SidePanelTest, ATapOnTheLinkOfAnEntryIsAskedForLikeAnyLink) {
    ASSERT_TRUE(ShowUntilSharp(WriteOutlined()));
    ASSERT_TRUE(ShowOutline());
    auto* const pTree = qobject_cast<QTreeView*>(Outline()->focusProxy());
    const QRect rc = pTree->visualRect(pTree->model()->index(2, 0));
    QTest::mouseClick(pTree->viewport(), Qt::LeftButton, Qt::NoModifier, rc.center());
    EXPECT_TRUE(RunUntil([&] { return m_pWindow->Notice().contains("http://example.org/"); }));
}

TEST_F(SidePanelTest, ItStandsBesideOrOverThePagesAndIsKept) {
    const QString strFile = WriteOutlined();
    ASSERT_TRUE(ShowUntilSharp(strFile));
    TheView().JumpToPage(5);
    ASSERT_TRUE(Settles(TheView()));
    ASSERT_TRUE(ShowOutline());
    ASSERT_TRUE(Settles(TheView()));
    EXPECT_EQ(TheView().CurrentPage(), 5) << "the pages stay where they were";
    auto* const pHandle = m_pWindow->findChild<viewer::SideHandle*>();
    const int nWidth = Panel().width();
    QTest::keyClick(pHandle, Qt::Key_Right);
    EXPECT_GT(Panel().width(), nWidth);
    EXPECT_EQ(TheView().x(), Panel().width());
    for (int n = 0; n < 200; ++n) {
        QTest::keyClick(pHandle, Qt::Key_Right);
    }
    EXPECT_LT(Panel().width(), m_pWindow->width() - 100) << "some of the pages is to be seen";
    // In a narrow window it comes when it is called, and lies over the pages.
    m_pWindow->resize(500, 400);
    EXPECT_TRUE(RunUntil([&] { return !Panel().isVisible() && TheView().x() == 0; }));
    Key(Qt::Key_F9);
    EXPECT_TRUE(Panel().isVisible() && TheView().width() == m_pWindow->width());
    Key(Qt::Key_Escape);
    EXPECT_TRUE(!Panel().isVisible() && TheView().Window().hasFocus());
    Key(Qt::Key_F9);
    QTest::mouseClick(&TheView().Window(), Qt::LeftButton, Qt::NoModifier, {490, 200});
    EXPECT_FALSE(Panel().isVisible());
    m_pWindow->resize(1000, 700);
    EXPECT_TRUE(RunUntil([&] { return Panel().isVisible(); })) << "there is room for both again";
    TheView().CloseDocument();
    EXPECT_TRUE(RunUntil([&] { return !Panel().isVisible(); })) << "nothing to show";
    // It is there before it is filled.
    const auto pControl = View::CreateControl();
    auto opening = View::BeginOpen(*pControl, strFile);
    m_pWindow = std::make_unique<viewer::MainWindow>(pControl, viewer::CommandLine::kDefaultSize);
    m_pWindow->Begin(strFile, std::move(opening));
    EXPECT_TRUE(TheView().x() > 0 && Outline() == nullptr);
    m_pWindow->show();
    EXPECT_TRUE(RunUntil([&] { return Outline() != nullptr; })) << "as it was left";
}

TEST_F(SidePanelTest, OnlyStepsGoOnWhileTheirKeyIsHeld) {
    ASSERT_TRUE(ShowUntilSharp(WriteOutlined()));
    const auto fnHold = [&](Qt::Key eKey, Qt::KeyboardModifiers modifiers) {
        for (const bool bAgain : {false, true}) {
            qt_sendShortcutOverrideEvent(m_pWindow->focusWidget(), 0, eKey, modifiers, {}, bAgain);
        }
    };
    fnHold(Qt::Key_F9, Qt::NoModifier);
    EXPECT_TRUE(Panel().isVisible()) << "and not gone again";
    fnHold(Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_TRUE(RunUntil([&] { return TheView().CurrentPage() == 2; }));
}

}
}
