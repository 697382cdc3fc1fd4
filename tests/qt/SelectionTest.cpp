// Text selected and copied by real pointers and keys.
#include <gtest/gtest.h>

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QPointingDevice>
#include <algorithm>
#include <memory>
#include <string>

#include "document/engine/AnnotEditor.h"
#include "document/engine/PDFDoc.h"
#include "tests/qt/PointerFixture.h"
#include "widget/edit/DocEdits.h"
#include "widget/edit/ViewEdits.h"
#include "widget/text/PageTexts.h"
#include "widget/text/SelectionHandle.h"
#include "widget/text/ViewSelection.h"

namespace velko {
namespace {

using testing::RunUntil;
using View = vkit::VelkoPdfView;

int CountOf(const char* szPart, const std::string& strText) {
    return static_cast<int>(QString::fromStdString(strText).count(szPart));
}

class SelectionTest : public testing::PointerFixture {
protected:
    vkit::ViewSelection& Selection() { return TheView().Selection(); }
    static std::string Clipboard() { return QGuiApplication::clipboard()->text().toStdString(); }

    // Pages with two lines at the top and one at the foot.
    QString WriteLines(int nPages = 3, const testing::PdfOptions& options = {}) {
        testing::PdfPage page;
        page.strContent =
            "BT /F1 20 Tf 100 700 Td (first line here) Tj 0 -26 Td (second line) Tj ET "
            "BT /F1 20 Tf 100 60 Td (lower line) Tj ET";
        page.annots = {
            "<< /Type /Annot /Subtype /Link /Rect [100 55 200 80] /Border [0 0 0] "
            "/A << /S /URI /URI (http://example.org/) >> >>"};
        return Write(
            "lines.pdf",
            testing::MakePdf(std::vector(static_cast<std::size_t>(nPages), page), options));
    }
    // With the text of what is in sight known, as it is after the pointer was over it.
    bool ShowRead(const QString& strFile) {
        return ShowUntilSharp(strFile) &&
               RunUntil([&] { return TheView().Texts().TextOf(0) != nullptr; });
    }
    std::string Copied() {
        QGuiApplication::clipboard()->setText("nothing");
        Key(Qt::Key_C, Qt::ControlModifier);
        RunUntil([&] { return !Selection().IsCopying(); });
        return Clipboard();
    }
};

}

TEST_F(SelectionTest, ADragOverTextSelectsItHoweverThePagesLie) {
    ASSERT_TRUE(ShowRead(WriteLines()));
    for (const auto eLayout : {View::Layout::Continuous, View::Layout::SinglePage}) {
        TheView().SetLayoutMode(eLayout);
        for (const int nTurn : {0, 1, 2, 3}) {
            SCOPED_TRACE(nTurn);
            TheView().ZoomTo(nTurn == 3 ? 3.0 : 1.0);
            TheView().SetFit(View::Fit::Page);
            ASSERT_TRUE(Settles(TheView()));
            Drag(At(0, 101, 705), At(0, 300, 680));
            EXPECT_EQ(Copied(), "first line here second line");
            Drag(At(0, 212, 705), At(0, 139, 706));
            EXPECT_EQ(Copied(), "line here");
            TheView().RotateBy(1);
        }
    }
    const auto places = Selection().Now();
    TheView().SetReading(true);
    ASSERT_TRUE(Settles(TheView()));
    EXPECT_EQ(Copied(), "line here") << "also in text set anew";
    TheView().Open(WriteLines(2));
    ASSERT_TRUE(RunUntil([&] { return TheView().PageCount() == 2 && TheView().IsSharp(); }));
    EXPECT_TRUE(RunUntil([&] { return Selection().IsEmpty(); })) << "it was the other document's";
    Selection().Restore(places);
    EXPECT_EQ(Copied(), "line here");
}

TEST_F(SelectionTest, ClicksTakeWordsAndLinesAndShiftGoesOn) {
    ASSERT_TRUE(ShowRead(WriteLines()));
    const QPoint first = At(0, 150, 705);
    QTest::mouseDClick(&TheView().Window(), Qt::LeftButton, Qt::NoModifier, first);
    EXPECT_EQ(Copied(), "line");
    QTest::mouseClick(&TheView().Window(), Qt::LeftButton, Qt::ShiftModifier, At(0, 115, 680));
    EXPECT_EQ(Copied(), "line here second") << "by words";
    Click(first);
    EXPECT_TRUE(Selection().IsEmpty());
    QTest::mouseDClick(&TheView().Window(), Qt::LeftButton, Qt::NoModifier, first);
    Press(first);
    MoveTo(At(0, 120, 680));
    Release(At(0, 120, 680));
    EXPECT_EQ(Copied(), "first line here second line") << "the third click takes lines";
    Key(Qt::Key_Escape);
    EXPECT_TRUE(Selection().IsEmpty());
    EXPECT_EQ(Copied(), "nothing");
}

// A drag beside text moves the pages, as does the middle button on it; a link is followed
// by a click, and its text selected by a drag.
TEST_F(SelectionTest, WhatIsNoDragOverTextDoesWhatItDid) {
    ASSERT_TRUE(ShowRead(WriteLines()));
    TheView().FitWidth();
    ASSERT_TRUE(Settles(TheView()));
    const auto fnTop = [&] { return TheView().Control()->GetPageScreenRect(0)->dbOffsetY; };
    const double dbTop = fnTop();
    Drag(At(0, 300, 500), At(0, 300, 600));
    EXPECT_LT(fnTop(), dbTop - 50.0);
    EXPECT_TRUE(Selection().IsEmpty());

    int nFollowed = 0;
    QObject::connect(&TheView(), &View::WebLinkWanted, [&] { ++nFollowed; });
    TheView().SetFit(View::Fit::Page);
    ASSERT_TRUE(Settles(TheView()));
    Drag(At(0, 101, 65), At(0, 300, 64));
    EXPECT_EQ(Copied(), "lower line");
    EXPECT_EQ(nFollowed, 0);
    EXPECT_TRUE(RunUntil([&] {
        Click(At(0, 150, 65));
        return nFollowed > 0;
    }));
    EXPECT_TRUE(Selection().IsEmpty());

    QTest::mouseMove(&TheView().Window(), At(0, 150, 705));
    EXPECT_EQ(TheView().Window().cursor().shape(), Qt::IBeamCursor);
    QTest::mouseMove(&TheView().Window(), At(0, 150, 65));
    EXPECT_TRUE(
        RunUntil([&] { return TheView().Window().cursor().shape() == Qt::PointingHandCursor; }));
    QTest::mouseMove(&TheView().Window(), At(0, 150, 400));
    EXPECT_EQ(TheView().Window().cursor().shape(), Qt::ArrowCursor);
}

// Where a press finds a text that is not known yet, the drag is kept until it is.
TEST_F(SelectionTest, ADragBeforeTheTextIsReadIsOneOrTheOther) {
    for (const bool bText : {true, false}) {
        SCOPED_TRACE(bText);
        ASSERT_TRUE(ShowUntilSharp(WriteLines(bText ? 2 : 3)));
        TheView().FitWidth();
        ASSERT_TRUE(Settles(TheView()));
        const double dbTop = TheView().Control()->GetPageScreenRect(0)->dbOffsetY;
        Press(At(0, 101, bText ? 705.0F : 500.0F));
        MoveTo(At(0, 170, bText ? 705.0F : 600.0F));
        EXPECT_TRUE(RunUntil([&] {
            return bText ? !Selection().IsEmpty()
                         : TheView().Control()->GetPageScreenRect(0)->dbOffsetY < dbTop - 50.0;
        }));
        Release(At(0, 170, bText ? 705.0F : 600.0F));
        EXPECT_EQ(Copied(), bText ? "first line" : "nothing");
    }
}

// At the window's edge the pages move on under a drag, to pages whose text is not known.
TEST_F(SelectionTest, ADragGoesOnOverThePagesAndEndsWhateverBecomesOfIt) {
    ASSERT_TRUE(ShowRead(WriteLines()));
    Press(At(0, 101, 65));
    const QPoint edge(TheView().Window().width() / 2, TheView().Window().height() - 1);
    MoveTo(edge);
    ASSERT_TRUE(RunUntil([&] { return TheView().CurrentPage() == 1; })) << "it moves by itself";
    MoveTo(At(1, 133, 705));
    Release(At(1, 133, 705));
    ASSERT_TRUE(RunUntil([&] { return TheView().Texts().Known(1) != nullptr; }));
    EXPECT_EQ(Copied(), "lower line\nfirst");

    Press(At(1, 101, 705));
    MoveTo(At(1, 200, 705));
    Key(Qt::Key_Escape);
    EXPECT_TRUE(Selection().IsEmpty());
    MoveTo(At(1, 250, 600));
    Release(At(1, 250, 600));
    EXPECT_TRUE(Selection().IsEmpty()) << "the button was still down";

    Press(At(1, 101, 705));
    MoveTo(At(1, 200, 705));
    QEvent away(QEvent::WindowDeactivate);
    QCoreApplication::sendEvent(&TheView().Window(), &away);
    const auto places = Selection().Now();
    EXPECT_FALSE(Selection().IsEmpty());
    MoveTo(At(1, 250, 600));
    EXPECT_EQ(Selection().Now(), places);

    Release(At(1, 250, 600));
    Press(At(1, 101, 705));
    MoveTo(At(1, 200, 705));
    TheView().CloseDocument();
    EXPECT_TRUE(RunUntil([&] { return Selection().IsEmpty(); }));
    Release(QPoint(50, 50));
}

TEST_F(SelectionTest, TheKeyboardBeginsInSightAndGoesOverThePages) {
    ASSERT_TRUE(ShowUntilSharp(WriteLines()));
    Key(Qt::Key_Right, Qt::ShiftModifier | Qt::ControlModifier);
    ASSERT_TRUE(RunUntil([&] { return !Selection().IsEmpty(); })) << "once the text is read";
    EXPECT_EQ(Copied(), "first");
    Key(Qt::Key_Right, Qt::ShiftModifier);
    Key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(Copied(), "first l");
    Key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(Copied(), "first line here seco") << "below where it stood";
    Key(Qt::Key_End, Qt::ShiftModifier);
    EXPECT_EQ(Copied(), "first line here second line");
    Key(Qt::Key_Down, Qt::ShiftModifier);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_TRUE(RunUntil([&] { return Selection().Span().last.nPage == 1; }));
    Key(Qt::Key_Up, Qt::ShiftModifier);
    Key(Qt::Key_Home, Qt::ShiftModifier);
    EXPECT_EQ(Copied(), "first line here second line");
    Key(Qt::Key_End, Qt::ShiftModifier | Qt::ControlModifier);
    EXPECT_EQ(TheView().Control()->GetVisiblePages().back(), 2) << "the end is in sight";
    EXPECT_EQ(CountOf("lower line", Copied()), 3);
    Key(Qt::Key_Home, Qt::ShiftModifier | Qt::ControlModifier);
    EXPECT_TRUE(Selection().IsEmpty());
    Key(Qt::Key_Down, Qt::ShiftModifier); // along the left edge, from line to line
    Key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(Copied(), "first line here second line");
    Key(Qt::Key_End, Qt::ShiftModifier);
    EXPECT_EQ(Copied(), "first line here second line\nlower line") << "of the line it stands on";
    Key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(CountOf("first line here second line\nlower line", Copied()), 3);
}

TEST_F(SelectionTest, WhatIsSelectedIsHighlightedAndCopiedWhereThatIsAllowed) {
    ASSERT_TRUE(ShowRead(WriteLines()));
    Drag(At(0, 101, 705), At(0, 300, 680));
    Key(Qt::Key_H);
    ASSERT_TRUE(RunUntil([&] { return TheView().IsModified(); }));
    ASSERT_TRUE(RunUntil([&] { return !TheView().Edits().Edits().IsBusy(); }));
    const auto pEditor =
        std::dynamic_pointer_cast<pdf::IAnnotEditor>(TheView().Control()->GetPDFDoc());
    const auto annots = pEditor->ListAnnots(0);
    EXPECT_TRUE(std::any_of(annots.begin(), annots.end(), [](const pdf::ListedAnnot& annot) {
        return annot.record.quads.size() == 2U;
    })) << "a quad for each line";
    EXPECT_TRUE(Selection().IsEmpty());
    EXPECT_EQ(TheView().Edits().CurrentTool(), vkit::ViewEdits::Tool::None);

    testing::PdfOptions forbids;
    forbids.strOwnerPassword = "owner";
    forbids.nPermissions = -4 & ~0x10;
    ASSERT_TRUE(ShowRead(WriteLines(1, forbids)));
    Drag(At(0, 101, 705), At(0, 300, 680));
    EXPECT_FALSE(Selection().IsEmpty());
    EXPECT_EQ(Copied(), "nothing");
    EXPECT_TRUE(m_pWindow->Notice().contains("does not allow copying"));
    Key(Qt::Key_Escape); // the selection, then the notice
    Key(Qt::Key_Escape);
    Selection().SelectAll();
    const auto actions = m_pWindow->actions();
    const auto copy = std::find_if(actions.begin(), actions.end(),
                                   [](const QAction* p) { return p->text() == "&Copy"; });
    ASSERT_TRUE(copy != actions.end() && RunUntil([&] { return (*copy)->isEnabled(); }));
    (*copy)->trigger();
    EXPECT_TRUE(m_pWindow->Notice().contains("does not allow copying")) << "and it stays";

    ASSERT_TRUE(ShowUntilSharp(WritePages("pictures.pdf", 2)));
    Key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(Copied(), "nothing");
    EXPECT_TRUE(m_pWindow->Notice().contains("no text"));
}

// A finger that holds selects, one that moves at once pans; the handles of the ends may be
// dragged past each other.
TEST_F(SelectionTest, AFingerSelectsByHoldingAndDragsTheEnds) {
    const std::unique_ptr<QPointingDevice> pScreen(QTest::createTouchDevice());
    auto& window = TheView().Window();
    ASSERT_TRUE(ShowRead(WriteLines()));
    TheView().FitWidth();
    ASSERT_TRUE(Settles(TheView()));
    const double dbTop = TheView().Control()->GetPageScreenRect(0)->dbOffsetY;
    QTest::touchEvent(&window, pScreen.get()).press(0, At(0, 150, 705), &window);
    QTest::touchEvent(&window, pScreen.get()).move(0, At(0, 150, 750), &window);
    EXPECT_LT(TheView().Control()->GetPageScreenRect(0)->dbOffsetY, dbTop - 20.0) << "a pan";
    QTest::touchEvent(&window, pScreen.get()).release(0, At(0, 150, 750), &window);
    window.StopInertia();
    TheView().GotoPage(0);
    ASSERT_TRUE(Settles(TheView()));
    EXPECT_TRUE(Selection().IsEmpty());

    const QPoint word = At(0, 150, 705);
    QTest::touchEvent(&window, pScreen.get()).press(0, word, &window);
    ASSERT_TRUE(RunUntil([&] { return !Selection().IsEmpty(); }));
    EXPECT_EQ(Copied(), "line");
    QTest::touchEvent(&window, pScreen.get()).move(0, At(0, 200, 705), &window);
    QTest::touchEvent(&window, pScreen.get()).release(0, At(0, 200, 705), &window);
    const auto fnBubble = [&] { return TheView().findChild<QWidget*>("selection"); };
    EXPECT_TRUE(fnBubble() != nullptr && fnBubble()->isVisible());
    EXPECT_EQ(Copied(), "line here");

    auto handles = window.findChildren<vkit::SelectionHandle*>();
    ASSERT_EQ(handles.size(), 2);
    std::sort(handles.begin(), handles.end(),
              [](const auto* p, const auto* q) { return p->x() < q->x(); });
    EXPECT_TRUE(handles[0]->isVisible() && handles[1]->isVisible());
    EXPECT_TRUE(handles[0]->width() >= 44 && handles[0]->height() >= 44);
    const auto fnDrag = [&](QWidget* pHandle, QPoint way) {
        const QPoint from = pHandle->rect().center();
        QTest::touchEvent(pHandle, pScreen.get()).press(0, from, pHandle);
        QTest::touchEvent(pHandle, pScreen.get()).move(0, from + way, pHandle);
        QTest::touchEvent(pHandle, pScreen.get()).release(0, from + way, pHandle);
    };
    fnDrag(handles[0], At(0, 101, 705) - At(0, 138, 705));
    EXPECT_EQ(Copied(), "first line here");
    fnDrag(handles[0], At(0, 300, 680) - At(0, 101, 705));
    EXPECT_EQ(Copied(), "second line") << "past the other end";
    QTest::touchEvent(&window, pScreen.get()).press(0, At(0, 300, 500), &window);
    QTest::touchEvent(&window, pScreen.get()).release(0, At(0, 300, 500), &window);
    EXPECT_TRUE(Selection().IsEmpty());
    EXPECT_FALSE(handles[0]->isVisible() || handles[1]->isVisible());
}

// A copy of many pages is made behind, and can be stopped.
TEST_F(SelectionTest, ALongCopyStopsWhenItIsAskedTo) {
    ASSERT_TRUE(ShowUntilSharp(WriteLines(400)));
    Selection().SelectAll();
    QGuiApplication::clipboard()->setText("nothing");
    Selection().Copy();
    EXPECT_TRUE(Selection().IsCopying());
    EXPECT_EQ(Clipboard(), "nothing") << "nobody waits for it";
    Key(Qt::Key_Escape);
    EXPECT_FALSE(Selection().IsCopying());
    EXPECT_FALSE(Selection().IsEmpty());
    EXPECT_EQ(CountOf("lower line", Copied()), 400);
}

}
