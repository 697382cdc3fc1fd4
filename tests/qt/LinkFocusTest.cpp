// The keyboard's way over links, by real keys.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QTest>
#include <vector>

#include "surface/PDFViewCanvas.h"
#include "tests/qt/WindowFixture.h"

namespace velko {
namespace {

using testing::RunUntil;
using View = vkit::VelkoPdfView;

class LinkFocusTest : public testing::WindowFixture {
protected:
    LinkFocusTest() {
        QObject::connect(&TheView(), &View::LinkHovered, &TheView(),
                         [this](const QString& strTarget) { m_strTarget = strTarget; });
    }

    View& TheView() { return m_pWindow->View(); }
    void Key(int nKey, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&TheView().Window(), static_cast<Qt::Key>(nKey), modifiers);
    }
    bool Targets(const QString& strTarget) {
        return RunUntil([&] { return m_strTarget == strTarget; });
    }

    // What an aid for readers who do not see finds to have the focus.
    QString ReadOut() {
        auto* const pPages = QAccessible::queryAccessibleInterface(&TheView().Window());
        QAccessibleInterface* const pLink = pPages->focusChild();
        const bool bInTree = pLink != nullptr && pLink->parent() == pPages &&
                             pPages->child(pPages->indexOfChild(pLink)) == pLink;
        return bInTree && pLink->role() == QAccessible::Link && pLink->state().focused
                   ? pLink->text(QAccessible::Name)
                   : QString();
    }

    // Six pages; the first, the second and the last have one link at the top, one at
    // the bottom and a hidden one between.
    QString WriteLinks() {
        testing::PdfPage page;
        for (const char* szLink :
             {"[90 690 110 710] /Dest [3 /Fit]", "[90 390 110 410] /F 2 /Dest [4 /Fit]",
              "[90 20 110 40] /A << /S /URI /URI (https://example.org/a) >>"}) {
            page.annots.push_back(std::string("<< /Subtype /Link /Rect ") + szLink + " >>");
        }
        std::vector<testing::PdfPage> pages(6);
        pages[0] = pages[1] = pages[5] = page;
        return Write("links.pdf", testing::MakePdf(pages));
    }

    // The colour beside the first page's upper link.
    QColor AroundLink() {
        auto& control = *TheView().Control();
        const auto rc = control.PageRectToDeviceRect(0, {90.0F, 690.0F, 20.0F, 20.0F});
        return TheView().Window().FrontImage().pixelColor(static_cast<int>(rc.X) - 2,
                                                          static_cast<int>(rc.Y + rc.Height / 2));
    }

    QString m_strTarget;
};

TEST_F(LinkFocusTest, TabGoesOverTheLinksAndOn) {
    ASSERT_TRUE(ShowUntilSharp(WriteLinks()));
    TheView().ZoomTo(2.0);
    TheView().GotoPage(0);
    ASSERT_TRUE(RunUntil([&] { return TheView().IsSharp(); }));
    Key(Qt::Key_Tab);
    ASSERT_TRUE(Targets("Page 4"));
    EXPECT_EQ(ReadOut(), "Page 4");
    for (const bool bNight : {true, false}) {
        TheView().SetNightMode(bNight);
        ASSERT_TRUE(RunUntil([&] { return TheView().IsSharp(); }));
        const QColor paper = TheView().Colors().background;
        EXPECT_GT(std::abs(AroundLink().lightness() - paper.lightness()), 60) << "it shows";
    }
    Key(Qt::Key_Tab); // below the window
    ASSERT_TRUE(Targets("https://example.org/a"));
    EXPECT_EQ(ReadOut(), "https://example.org/a");
    const auto rc = TheView().Control()->PageRectToDeviceRect(0, {90.0F, 20.0F, 20.0F, 20.0F});
    EXPECT_GT(rc.Y, 0.0F);
    EXPECT_LT(rc.Y + rc.Height, TheView().Window().height());
    Key(Qt::Key_Backtab, Qt::ShiftModifier);
    ASSERT_TRUE(Targets("Page 4"));
    Key(Qt::Key_Escape);
    ASSERT_TRUE(Targets(""));
    EXPECT_EQ(ReadOut(), "");
    EXPECT_EQ(AroundLink(), QColor(Qt::white));
    EXPECT_TRUE(TheView().Window().hasFocus());

    TheView().GotoPage(1);
    for (const char* szTarget : {"Page 4", "https://example.org/a", "Page 4"}) {
        Key(Qt::Key_Tab);
        ASSERT_TRUE(Targets(szTarget));
    }
    EXPECT_EQ(TheView().CurrentPage(), 5) << "on, over pages without links";
    Key(Qt::Key_Tab);
    ASSERT_TRUE(Targets("https://example.org/a"));
    Key(Qt::Key_Tab);
    EXPECT_TRUE(RunUntil([&] { return !TheView().Window().hasFocus(); })) << "to the bar";
    EXPECT_TRUE(Targets(""));
}

TEST_F(LinkFocusTest, ReturnFollowsWhatHasTheFocusAndShowsAlone) {
    ASSERT_TRUE(ShowUntilSharp(WriteLinks()));
    Key(Qt::Key_Tab);
    ASSERT_TRUE(Targets("Page 4"));
    Key(Qt::Key_Return);
    ASSERT_TRUE(RunUntil([&] { return TheView().CurrentPage() == 3; }));
    EXPECT_TRUE(Targets("")) << "the link is off the screen";
    TheView().GotoPage(5);
    ASSERT_TRUE(RunUntil([&] { return TheView().CurrentPage() == 5; }));
    Key(Qt::Key_Tab);
    ASSERT_TRUE(Targets("Page 4"));
    Key(Qt::Key_Tab);
    ASSERT_TRUE(Targets("https://example.org/a"));
    Key(Qt::Key_Return);
    ASSERT_TRUE(RunUntil([&] { return m_pWindow->Notice().contains("https://example.org/a"); }));
    TheView().Open(WritePages("none.pdf", 3));
    ASSERT_TRUE(RunUntil([&] { return TheView().PageCount() == 3; }));
    EXPECT_TRUE(Targets("")) << "another document has other links";
    TheView().Window().setFocus();
    Key(Qt::Key_Tab);
    EXPECT_TRUE(RunUntil([&] { return !TheView().Window().hasFocus(); }));
}

}
}
