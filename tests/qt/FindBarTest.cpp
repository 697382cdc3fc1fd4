// The window's search as a reader uses it: keys, words, and what stays.
#include <QLineEdit>
#include <QtTest/QTest>

#include "app/viewer/find/FindBar.h"
#include "app/viewer/find/FindFlow.h"
#include "tests/qt/WindowFixture.h"
#include "widget/search/ViewSearch.h"
#include "widget/text/PageTexts.h"
#include "widget/text/ViewSelection.h"

namespace velko::viewer {
namespace {

using testing::PdfPage;
using testing::RunUntil;

class FindBarTest : public testing::WindowFixture {
protected:
    void Show(const std::vector<std::string>& pages) {
        std::vector<PdfPage> made(pages.size());
        for (std::size_t n = 0; n < pages.size(); ++n) {
            made[n].strContent = "BT /F1 12 Tf 72 400 Td (" + pages[n] + ") Tj ET";
        }
        ASSERT_TRUE(ShowUntilSharp(Write("a.pdf", testing::MakePdf(made))));
        m_pWindow->CompleteBar();
    }
    void Press(Qt::Key eKey, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(m_pWindow->focusWidget(), eKey, modifiers);
    }
    FindBar* Bar() const { return m_pWindow->findChild<FindBar*>(); }
    bool Tells(const QString& strText) {
        return RunUntil([&] { return Bar()->Told() == strText; });
    }
    int Page() { return m_pWindow->View().Control()->GetCurrentPageIndex(); }
};

TEST_F(FindBarTest, AReaderSearchesByKeysAlone) {
    Show({"one", "two fish", "three", "Fish four", "fishing"});
    Press(Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(Bar() != nullptr && Bar()->isVisible());
    QTest::keyClicks(m_pWindow->focusWidget(), "fish");
    EXPECT_TRUE(Tells("1 of 3")) << Bar()->Told().toStdString();
    EXPECT_TRUE(RunUntil([&] { return Page() == 1; }));
    Press(Qt::Key_Return);
    EXPECT_TRUE(Tells("2 of 3"));
    Press(Qt::Key_F3);
    EXPECT_TRUE(Tells("3 of 3"));
    Press(Qt::Key_Return);
    EXPECT_TRUE(Tells("1 of 3, from the start"));
    Press(Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_TRUE(Tells("3 of 3, from the end"));
    EXPECT_TRUE(RunUntil([&] { return Page() == 4; }));
    Press(Qt::Key_Home, Qt::ControlModifier);
    EXPECT_TRUE(RunUntil([&] { return Page() == 0; })) << "keys of the pages work in the field";
    Press(Qt::Key_Escape);
    EXPECT_FALSE(Bar()->isVisible());
    EXPECT_EQ(Page(), 0);
    EXPECT_EQ(m_pWindow->View().Search().Hits().Count(), 0);
    Press(Qt::Key_Slash);
    EXPECT_TRUE(Bar()->isVisible());
    EXPECT_EQ(Bar()->Text(), "fish") << "kept for the next time";
    EXPECT_TRUE(RunUntil([&] { return m_pWindow->View().Search().Hits().Count() == 3; }));
}

// What is not there is told when all has been searched, and of what has no text that.
TEST_F(FindBarTest, WhyNothingIsFoundIsSaid) {
    Show({"one", "two"});
    m_pWindow->Find("three");
    EXPECT_TRUE(Tells("Not found"));
    m_pWindow->Find("");
    EXPECT_TRUE(Tells(""));
    m_pWindow->Find("page");
    ASSERT_TRUE(ShowUntilSharp(WritePages("pictures.pdf", 3)));
    EXPECT_TRUE(Tells("This document has no text"));
    m_pWindow->View().CloseDocument();
    EXPECT_TRUE(Tells(""));
}

TEST_F(FindBarTest, AFewSelectedWordsAreLookedFor) {
    Show({"one two", "two", "and one  two"});
    vkit::VelkoPdfView& view = m_pWindow->View();
    ASSERT_TRUE(RunUntil([&] { return view.Texts().OwnTextOf(0) != nullptr; }));
    view.Selection().Restore({{0, 0}, {0, 7}});
    ASSERT_TRUE(RunUntil([&] { return !view.Selection().IsEmpty(); }));
    Press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(Bar()->Text(), "one two");
    EXPECT_TRUE(Tells("1 of 2"));
    Press(Qt::Key_Escape);
    view.Selection().SelectAll();
    ASSERT_TRUE(RunUntil([&] { return !view.Selection().IsEmpty(); }));
    Press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(Bar()->Text(), "one two") << "not whole pages";
}

TEST_F(FindBarTest, WhatIsAskedForBeforeADocumentIsShownInIt) {
    m_pWindow->Find("needle");
    Show({"one", "two", "a needle"});
    EXPECT_TRUE(Tells("1 of 1"));
    EXPECT_TRUE(RunUntil([&] { return Page() == 2; }));
}

TEST_F(FindBarTest, ANarrowWindowKeepsWhatMatters) {
    Show({"one"});
    m_pWindow->Find("one");
    for (const int nWidth : {1000, 500, 380, 300}) {
        m_pWindow->resize(nWidth, 400);
        ASSERT_TRUE(RunUntil([&] { return Bar()->width() == nWidth; }));
        QCoreApplication::processEvents();
        for (const QWidget* const pPart :
             Bar()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            EXPECT_TRUE(pPart->isHidden() || Bar()->rect().contains(pPart->geometry()))
                << nWidth << " " << pPart->accessibleName().toStdString();
        }
        EXPECT_GE(Bar()->findChild<QLineEdit*>()->width(), 120) << nWidth;
    }
}

}
}
