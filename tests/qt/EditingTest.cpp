// Marks and notes by real pointers and keys, undone and done again.
#include <gtest/gtest.h>

#include <QMessageBox>
#include <QPlainTextEdit>
#include <algorithm>
#include <set>

#include "document/engine/AnnotEditor.h"
#include "document/engine/PDFDoc.h"
#include "tests/qt/PointerFixture.h"
#include "widget/edit/DocEdits.h"
#include "widget/edit/NoteBox.h"
#include "widget/edit/ViewEdits.h"

namespace velko {
namespace {

using testing::RunUntil;
using vkit::AnnotEdit;
using vkit::DocEdits;
using View = vkit::VelkoPdfView;
using Tool = vkit::ViewEdits::Tool;

class EditingTest : public testing::PointerFixture {
protected:
    vkit::ViewEdits& Edits() { return TheView().Edits(); }

    // Three pages with a line at the top and one at the foot.
    QString WriteLines() {
        testing::PdfPage page;
        page.strContent =
            "BT /F1 20 Tf 100 700 Td (upper line) Tj ET BT /F1 20 Tf 100 60 Td (lower line) Tj ET";
        return Write("lines.pdf", testing::MakePdf(std::vector(3, page)));
    }

    std::vector<pdf::ListedAnnot> Annots(int nPage) {
        const auto pEditor =
            std::dynamic_pointer_cast<pdf::IAnnotEditor>(TheView().Control()->GetPDFDoc());
        return pEditor->ListAnnots(nPage);
    }
    bool Comes(int nPage, std::size_t nAnnots) {
        return RunUntil(
            [&] { return !Edits().Edits().IsBusy() && Annots(nPage).size() == nAnnots; });
    }
    vkit::NoteBox* Box() {
        auto* const pBox = TheView().findChild<vkit::NoteBox*>();
        return pBox != nullptr && pBox->IsOpen() ? pBox : nullptr;
    }
};

void ExpectAround(const pdf::ListedAnnot& annot, double dbLeft, double dbRight, double dbBase) {
    ASSERT_EQ(annot.record.quads.size(), 1U);
    const auto& quad = annot.record.quads[0];
    EXPECT_NEAR(quad.ptBottomLeft.X, dbLeft, 3.0);
    EXPECT_NEAR(quad.ptBottomRight.X, dbRight, 3.0);
    EXPECT_LT(quad.ptBottomLeft.Y, dbBase);
    EXPECT_GT(quad.ptTopLeft.Y, dbBase + 10.0);
}

}

TEST_F(EditingTest, ADragMarksWordsHoweverThePagesLie) {
    ASSERT_TRUE(ShowUntilSharp(WriteLines()));
    std::size_t nMarks = 0;
    for (const auto eLayout : {View::Layout::Continuous, View::Layout::SinglePage}) {
        TheView().SetLayoutMode(eLayout);
        for (const int nTurn : {0, 1, 2, 3}) {
            SCOPED_TRACE(nTurn);
            TheView().ZoomTo(nTurn == 3 ? 3.0 : 1.0);
            TheView().SetFit(View::Fit::Page);
            ASSERT_TRUE(Settles(TheView()));
            Edits().TakeTool(Tool::Highlight);
            Drag(At(0, 100, 705), At(0, 300, 703));
            ASSERT_TRUE(Comes(0, ++nMarks));
            ExpectAround(Annots(0).back(), 100, 188, 700);
            TheView().RotateBy(1);
        }
    }
    EXPECT_TRUE(m_pWindow->isWindowModified());
    while (Edits().CanUndo()) {
        Key(Qt::Key_Z, Qt::ControlModifier);
        ASSERT_TRUE(Comes(0, --nMarks));
    }
    EXPECT_TRUE(RunUntil([&] { return !m_pWindow->isWindowModified(); })) << "as in the file";
    Key(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_TRUE(Comes(0, 1));
}

// A drag from a page to the next marks both, in one step; at the window's edge the pages
// move on under it.
TEST_F(EditingTest, ADragGoesOnOverThePages) {
    ASSERT_TRUE(ShowUntilSharp(WriteLines()));
    Edits().TakeTool(Tool::Highlight);
    Press(At(0, 100, 66));
    const QPoint edge(TheView().Window().width() / 2, TheView().Window().height() - 1);
    MoveTo(edge);
    ASSERT_TRUE(RunUntil([&] { return TheView().CurrentPage() == 1; })) << "it moves by itself";
    MoveTo(At(1, 150, 705));
    Release(At(1, 150, 705));
    ASSERT_TRUE(Comes(1, 1));
    ASSERT_EQ(Annots(0).size(), 1U);
    ExpectAround(Annots(0)[0], 100, 184, 60);
    ExpectAround(Annots(1)[0], 100, 150, 700);
    Edits().Undo();
    EXPECT_TRUE(Comes(0, 0) && Comes(1, 0));
    EXPECT_FALSE(Edits().CanUndo());
}

TEST_F(EditingTest, EscapeGivesUpTheDragAndThenTheTool) {
    ASSERT_TRUE(ShowUntilSharp(WriteLines()));
    Key(Qt::Key_H);
    ASSERT_EQ(Edits().CurrentTool(), Tool::Highlight);
    Press(At(0, 100, 705));
    MoveTo(At(0, 200, 705));
    Key(Qt::Key_Escape);
    Release(At(0, 200, 705));
    EXPECT_EQ(Edits().CurrentTool(), Tool::Highlight);
    Key(Qt::Key_Escape);
    EXPECT_EQ(Edits().CurrentTool(), Tool::None);
    Drag(At(0, 100, 705), At(0, 200, 705));
    EXPECT_FALSE(Edits().IsModified());
    Edits().TakeTool(Tool::Highlight);
    TheView().SetReading(true);
    EXPECT_TRUE(RunUntil([&] { return Edits().CurrentTool() == Tool::None; }));
    Edits().TakeTool(Tool::Note);
    EXPECT_EQ(Edits().CurrentTool(), Tool::None);
    EXPECT_TRUE(m_pWindow->Notice().contains("press T"));
}

TEST_F(EditingTest, TheReaderIsToldWhatCannotBeMarked) {
    ASSERT_TRUE(ShowUntilSharp(WritePages("empty.pdf", 1)));
    Edits().TakeTool(Tool::Highlight);
    Drag(At(0, 100, 705), At(0, 200, 600));
    EXPECT_TRUE(RunUntil([&] { return m_pWindow->Notice().contains("no text to mark"); }));
    EXPECT_FALSE(Edits().IsModified());

    testing::PdfOptions forbids;
    forbids.strOwnerPassword = "owner";
    forbids.nPermissions = -4 & ~0x20;
    const QString strFile = Write("forbids.pdf", testing::MakePdf({{}}, forbids));
    ASSERT_TRUE(ShowUntilSharp(strFile));
    Edits().TakeTool(Tool::Note);
    EXPECT_EQ(Edits().CurrentTool(), Tool::None);
    EXPECT_TRUE(m_pWindow->Notice().contains("does not allow"));
    TheView().Open(strFile, Platform::SecretText("owner"));
    ASSERT_TRUE(RunUntil([&] { return TheView().ViewState() == View::State::Shown; }));
    EXPECT_TRUE(Edits().IsPossible());
}

TEST_F(EditingTest, ANoteIsWrittenReadChangedAndDeleted) {
    ASSERT_TRUE(ShowUntilSharp(WriteLines()));
    const QPoint place = At(0, 300, 400);
    Key(Qt::Key_M);
    Click(place);
    ASSERT_TRUE(Box());
    Key(Qt::Key_Escape);
    QTest::keyClick(Box()->findChild<QPlainTextEdit*>(), Qt::Key_Escape);
    EXPECT_FALSE(Edits().IsModified()) << "nothing was written";

    Key(Qt::Key_M);
    Click(place);
    QTest::keyClicks(Box()->findChild<QPlainTextEdit*>(), "hm, see h");
    EXPECT_TRUE(RunUntil([&] { return m_pWindow->isWindowModified(); })) << "while it is written";
    m_pWindow->close();
    EXPECT_TRUE(m_pWindow->isVisible()) << "what is written is not lost";
    ASSERT_TRUE(Comes(0, 1));
    delete m_pWindow->findChild<QMessageBox*>();
    EXPECT_EQ(Annots(0)[0].record.strContents, "hm, see h");
    const QPoint inside = place + QPoint(5, 5);
    ASSERT_TRUE(RunUntil([&] {
        Click(inside);
        return Box() != nullptr;
    }));
    QTest::keyClicks(Box()->findChild<QPlainTextEdit*>(), "!");
    QTest::keyClick(Box()->findChild<QPlainTextEdit*>(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(RunUntil([&] { return Annots(0).at(0).record.strContents == "hm, see h!"; }));
    ASSERT_TRUE(Edits().HasChosen());
    Key(Qt::Key_Delete);
    ASSERT_TRUE(Comes(0, 0));
    EXPECT_EQ(Edits().UndoName(), "deleting of the note");
    Edits().Undo();
    ASSERT_TRUE(Comes(0, 1));
    EXPECT_EQ(Annots(0)[0].record.strContents, "hm, see h!");
    Edits().Undo();
    EXPECT_TRUE(RunUntil([&] { return Annots(0).at(0).record.strContents == "hm, see h"; }));
}

namespace {

// Numbers of annotations, on pages of which one may refuse.
class RefusingPages : public pdf::IAnnotEditor {
public:
    std::vector<pdf::ListedAnnot> ListAnnots(std::int32_t /*nPage*/) override { return {}; }
    pdf::AnnotId AddAnnot(std::int32_t nPage, const pdf::AnnotRecord& /*record*/) override {
        Check(nPage);
        shown.insert(++m_nLast);
        return m_nLast;
    }
    void ChangeAnnot(std::int32_t /*nPage*/, pdf::AnnotId /*nId*/,
                     const pdf::AnnotRecord& /*record*/) override {}
    void RemoveAnnot(std::int32_t nPage, pdf::AnnotId nId) override {
        Check(nPage);
        shown.erase(nId);
    }
    void RestoreAnnot(std::int32_t nPage, pdf::AnnotId nId) override {
        Check(nPage);
        shown.insert(nId);
    }
    std::uint64_t Revision() const override { return 0; }

    std::set<pdf::AnnotId> shown;
    std::int32_t nRefusing = -1;

private:
    void Check(std::int32_t nPage) const {
        if (nPage == nRefusing) {
            throw common::EngineException(common::ErrorCode::e_ErrFile, "refused");
        }
    }
    pdf::AnnotId m_nLast = 0;
};

}

// A step is done or it is not; what was asked for meanwhile comes after it.
TEST_F(EditingTest, AStepThatFailsOnTheWayHasDoneNothing) {
    const auto pPages = std::make_shared<RefusingPages>();
    RefusingPages& pages = *pPages;
    DocEdits edits([&](std::int32_t, const DocEdits::Edit& fnEdit) {
        return concurrency::create_task([pPages, fnEdit] { fnEdit(*pPages); });
    });
    int nFailed = 0;
    QObject::connect(&edits, &DocEdits::Failed, [&] { ++nFailed; });
    vkit::EditStep step{"marks", {}};
    for (const int nPage : {0, 1, 2}) {
        step.edits.push_back({AnnotEdit::Kind::Add, nPage, 0, {}, {}});
    }
    const auto fnRuns = [&] { return RunUntil([&] { return !edits.IsBusy(); }); };
    pages.nRefusing = 2;
    edits.Do(step);
    ASSERT_TRUE(fnRuns());
    EXPECT_EQ(nFailed, 1);
    EXPECT_TRUE(pages.shown.empty());
    EXPECT_FALSE(edits.History().IsModified());

    pages.nRefusing = -1;
    edits.Do(step);
    edits.Undo(); // before it is done
    edits.Redo();
    ASSERT_TRUE(fnRuns());
    EXPECT_EQ(pages.shown.size(), 3U);
    pages.nRefusing = 0; // of an undo the last page
    edits.Undo();
    ASSERT_TRUE(fnRuns());
    EXPECT_EQ(nFailed, 2);
    EXPECT_EQ(pages.shown.size(), 3U);
    EXPECT_NE(edits.History().ToUndo(), nullptr);

    edits.Undo();
    edits.Forget(); // another document comes
    EXPECT_EQ(edits.History().ToUndo(), nullptr);
    EXPECT_FALSE(edits.History().IsModified());
}

}
