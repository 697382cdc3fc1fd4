// A document whose file changes while it is read.
#include <gtest/gtest.h>

#include <QDeadlineTimer>
#include <QSignalSpy>
#include <QTest>
#include <filesystem>

#include "document/engine/AnnotEditor.h"
#include "tests/qt/ViewFixture.h"
#include "widget/edit/DocSaver.h"
#include "widget/edit/ViewEdits.h"
#include "widget/reload/DocReloader.h"
#include "widget/reload/Settling.h"
#include "widget/text/PageTexts.h"
#include "widget/text/ViewSelection.h"

namespace velko {
namespace {

using std::chrono::milliseconds;
using testing::RunUntil;
using vkit::DocReloader;
using vkit::Settling;
using View = vkit::VelkoPdfView;
using Why = DocReloader::Why;

class ReloadTest : public testing::ViewFixture {
protected:
    ReloadTest() {
        m_view.FollowFile(true);
        m_view.Reloader()->SetAutomatic(true);
        m_view.resize(500, 600);
        m_view.show();
    }

    // Pages of a colour, with names of their own so that places can be told.
    static std::string Pages(int nPages, const std::string& strColor) {
        testing::PdfPage page;
        page.strContent = strColor + " rg 0 0 612 792 re f";
        return testing::MakePdf(std::vector<testing::PdfPage>(nPages, page));
    }
    void Replace(const std::string& strBytes) {
        Write("aside", strBytes);
        std::filesystem::rename(m_folder.filePath("aside").toStdString(), Path());
    }
    std::string Path() const { return m_folder.filePath("doc.pdf").toStdString(); }
    bool Show(const std::string& strBytes) {
        return OpenUntilSharp(m_view, Write("doc.pdf", strBytes)) && Settles(m_view);
    }
    QColor Middle() { return m_view.grab().toImage().pixelColor(250, 300); }
    bool Comes(const QColor& color) {
        return RunUntil([&] { return Middle() == color && Settles(m_view); });
    }
    bool Tells(Why eWhy) {
        return RunUntil([&] { return m_view.Reloader()->WhyNot() == eWhy; });
    }
    // That somebody else has replaced the edited document.
    bool IsToldOf(const std::string& strBytes) {
        constexpr int kPatienceMs = 5'000;
        Replace(strBytes);
        const QDeadlineTimer deadline(kPatienceMs);
        return RunUntil([&] {
                   return m_view.Reloader()->WhyNot() == Why::Edited || deadline.hasExpired();
               }) &&
               m_view.Reloader()->WhyNot() == Why::Edited;
    }
    void AddNote() {
        pdf::AnnotRecord record;
        record.nType = 1;
        record.rcArea = {10.0F, 10.0F, 30.0F, 30.0F};
        m_view.Edits().Edits().Do(
            {"note", {{vkit::AnnotEdit::Kind::Add, 0, 0, {}, std::move(record)}}});
        ASSERT_TRUE(
            RunUntil([&] { return m_view.IsModified() && !m_view.Edits().Edits().IsBusy(); }));
    }

    View m_view;
    QSignalSpy m_reloads{&m_view, &View::Reloaded};
};

const std::string kRed = "1 0 0";
const std::string kBlue = "0 0 1";

Settling::Version Of(std::uint64_t nFile, std::uint64_t nSize) {
    return {1, nFile, nSize, 1};
}

}

TEST(SettlingTest, AVersionCountsOnceTheWriterRests) {
    using What = Settling::What;
    Settling settling;
    settling.Show(Of(1, 10));
    const auto fnAt = [&](int nMs, std::optional<Settling::Version> found) {
        return settling.Note(found, milliseconds(nMs)).eWhat;
    };
    EXPECT_EQ(fnAt(0, Of(1, 10)), What::Known);
    EXPECT_EQ(fnAt(100, Of(1, 20)), What::Wait);
    EXPECT_EQ(fnAt(240, Of(1, 30)), What::Wait) << "it grows";
    EXPECT_EQ(fnAt(391, Of(1, 30)), What::Settled);
    settling.Doubt(Of(1, 30), milliseconds(400));
    EXPECT_EQ(fnAt(2000, Of(1, 30)), What::Wait) << "it looks unfinished";
    EXPECT_EQ(fnAt(2401, Of(1, 30)), What::Final);
    settling.Refuse(Of(1, 30));
    EXPECT_EQ(fnAt(2500, Of(1, 30)), What::Refused);
    EXPECT_EQ(fnAt(3000, std::nullopt), What::Wait) << "editors remove a file first";
    EXPECT_EQ(fnAt(4001, std::nullopt), What::Gone);
    EXPECT_EQ(fnAt(4100, Of(1, 30)), What::Wait) << "what comes back is looked at anew";
    settling.Touch(milliseconds(4200), true);
    EXPECT_EQ(fnAt(4201, Of(2, 40)), What::Wait);
    EXPECT_EQ(fnAt(4222, Of(2, 40)), What::Settled) << "a rename needs no long rest";
    EXPECT_EQ(fnAt(4300, Of(1, 10)), What::Known);
    for (int nMs = 5000; nMs < 6900; nMs += 100) {
        EXPECT_EQ(fnAt(nMs, Of(3, static_cast<std::uint64_t>(nMs))), What::Wait);
    }
    EXPECT_EQ(fnAt(7001, Of(3, 7001)), What::Settled) << "a writer that never rests";
}

TEST_F(ReloadTest, AReplacedFileIsShownAtThePlaceWithoutABlankFrame) {
    ASSERT_TRUE(Show(Pages(20, kRed)));
    m_view.RotateBy(1);
    m_view.ZoomTo(1.7);
    m_view.JumpToPage(7);
    m_view.ScrollBy(30.0, 140.0);
    ASSERT_TRUE(Settles(m_view));
    const auto rcBefore = m_view.Control()->GetPageScreenRect(7);
    Replace(Pages(21, kBlue));
    int nOthers = 0;
    EXPECT_TRUE(RunUntil([&] {
        const QColor color = Middle();
        nOthers += color != Qt::red && color != Qt::blue ? 1 : 0;
        return color == Qt::blue && m_view.IsSharp();
    }));
    EXPECT_EQ(nOthers, 0);
    EXPECT_EQ(m_reloads.count(), 1);
    EXPECT_EQ(m_view.PageCount(), 21);
    EXPECT_EQ(m_view.CurrentPage(), 7);
    EXPECT_EQ(m_view.Rotation(), 1);
    const auto rcAfter = m_view.Control()->GetPageScreenRect(7);
    ASSERT_TRUE(rcBefore && rcAfter);
    EXPECT_NEAR(rcAfter->dbOffsetX, rcBefore->dbOffsetX, 1.0);
    EXPECT_NEAR(rcAfter->dbOffsetY, rcBefore->dbOffsetY, 1.0);
    EXPECT_EQ(rcAfter->nWidth, rcBefore->nWidth);
    EXPECT_TRUE(m_view.CanGoBack());
    m_view.SetLayoutMode(View::Layout::SinglePage);
    Replace(Pages(3, kRed)); // too short for the place
    EXPECT_TRUE(Comes(Qt::red));
    EXPECT_EQ(m_view.CurrentPage(), 2);
    EXPECT_EQ(m_view.LayoutMode(), View::Layout::SinglePage);
}

TEST_F(ReloadTest, ASelectionStaysWhereItsTextDoes) {
    const auto fnText = [](const std::string& strWords) {
        testing::PdfPage page;
        page.strContent = "BT /F1 24 Tf 72 700 Td (" + strWords + ") Tj ET";
        return testing::MakePdf({page, page});
    };
    ASSERT_TRUE(Show(fnText("words that stay as they are")));
    ASSERT_TRUE(RunUntil([&] { return m_view.Texts().OwnTextOf(1) != nullptr; }));
    const vkit::ViewSelection::Places places{{1, 2}, {1, 9}};
    m_view.Selection().Restore(places);
    Replace(fnText("words that stay as they are") + "\n");
    ASSERT_TRUE(RunUntil([&] { return m_reloads.count() == 1; }));
    EXPECT_TRUE(RunUntil([&] { return m_view.Selection().Now() == places; }));
    Replace(fnText("other words"));
    ASSERT_TRUE(RunUntil([&] { return m_reloads.count() == 2; }));
    ASSERT_TRUE(RunUntil([&] { return m_view.Texts().OwnTextOf(1) != nullptr; }));
    EXPECT_TRUE(m_view.Selection().IsEmpty());
}

TEST_F(ReloadTest, TheWordsInSightStayWherePagesComeBeforeThem) {
    ASSERT_TRUE(Show(testing::MakePdf(TextPages(20))));
    m_view.ZoomTo(1.3);
    m_view.GotoPage(7);
    m_view.ScrollBy(0.0, 263.0);
    ASSERT_TRUE(RunUntil([&] { return m_view.Texts().OwnTextOf(7) != nullptr; }));
    ASSERT_TRUE(Settles(m_view));
    const QImage before = m_view.grab().toImage();
    const auto rcBefore = m_view.Control()->GetPageScreenRect(7);
    Replace(testing::MakePdf(Joined(TextPages(3, 500), TextPages(20))));
    int nOthers = 0;
    ASSERT_TRUE(RunUntil([&] {
        nOthers += m_view.grab().toImage() == before ? 0 : 1;
        return m_reloads.count() == 1 && Settles(m_view);
    }));
    EXPECT_EQ(nOthers, 0) << "frames in which anything moved";
    EXPECT_EQ(m_view.CurrentPage(), 10);
    const auto rcAfter = m_view.Control()->GetPageScreenRect(10);
    ASSERT_TRUE(rcBefore && rcAfter);
    EXPECT_NEAR(rcAfter->dbOffsetY, rcBefore->dbOffsetY, 0.01);
    EXPECT_FALSE(m_view.CanGoBack());

    ASSERT_TRUE(RunUntil([&] { return m_view.Texts().OwnTextOf(10) != nullptr; }));
    m_view.Selection().Restore({{10, 2}, {10, 30}});
    Replace(testing::MakePdf(TextPages(20)));
    const vkit::ViewSelection::Places moved{{7, 2}, {7, 30}};
    ASSERT_TRUE(RunUntil([&] { return m_reloads.count() == 2; }));
    EXPECT_TRUE(RunUntil([&] { return m_view.Selection().Now() == moved; }));
    Replace(testing::MakePdf(TextPages(5, 10))); // without what is read
    ASSERT_TRUE(RunUntil([&] { return m_reloads.count() == 3; }));
    EXPECT_EQ(m_view.CurrentPage(), 4);
}

TEST_F(ReloadTest, WhatIsBeingWrittenOrCannotBeShownLeavesThePicture) {
    const std::string strNew = Pages(4, kBlue);
    ASSERT_TRUE(Show(Pages(4, kRed)));
    Write("doc.pdf", strNew.substr(0, strNew.size() / 2)); // in place
    EXPECT_TRUE(Tells(Why::Broken)) << "it rests for long";
    EXPECT_EQ(Middle(), QColor(Qt::red));
    Write("doc.pdf", strNew);
    EXPECT_TRUE(Comes(Qt::blue));
    EXPECT_EQ(m_view.Reloader()->WhyNot(), Why::None);
    std::filesystem::remove(Path());
    EXPECT_TRUE(Tells(Why::Gone));
    EXPECT_EQ(Middle(), QColor(Qt::blue));
    Replace(Pages(4, kRed));
    EXPECT_TRUE(Comes(Qt::red));
    std::filesystem::rename(Write("doc.pdf~", "no document at all").toStdString(), Path());
    EXPECT_TRUE(Tells(Why::Broken));
    std::filesystem::rename(WriteLocked(4).toStdString(), Path());
    EXPECT_TRUE(Tells(Why::Locked)) << "nobody is asked unasked";
    EXPECT_EQ(Middle(), QColor(Qt::red));
    Replace(Pages(4, kBlue));
    EXPECT_TRUE(Comes(Qt::blue));
    EXPECT_EQ(m_reloads.count(), 3);
}

TEST_F(ReloadTest, UnsavedChangesStayUntilTheReaderDecides) {
    ASSERT_TRUE(Show(Pages(2, kRed)));
    AddNote();
    m_view.Saver().Save();
    ASSERT_TRUE(RunUntil([&] { return !m_view.Saver().IsSaving() && !m_view.IsModified(); }));
    AddNote();
    // One in the very moment of a save counts as a part of it; the next does not.
    ASSERT_TRUE(IsToldOf(Pages(2, kBlue)) || IsToldOf(Pages(2, kBlue)));
    EXPECT_TRUE(m_view.IsModified());
    EXPECT_EQ(m_reloads.count(), 0) << "what was saved from here is no change either";
    m_view.Edits().Undo();
    EXPECT_TRUE(Comes(Qt::blue)) << "nothing is lost any more";
    AddNote();
    Replace(Pages(2, kRed));
    ASSERT_TRUE(Tells(Why::Edited));
    m_view.Reloader()->ReloadNow();
    EXPECT_TRUE(Comes(Qt::red));
    EXPECT_FALSE(m_view.IsModified());
}

TEST_F(ReloadTest, APressedButtonIsWaitedForAndManyChangesLeaveNothingBehind) {
    const auto fnDescriptors = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    m_view.Open(Write("doc.pdf", Pages(2, kRed)));
    ASSERT_TRUE(RunUntil([&] { return m_view.ViewState() == View::State::Shown; }));
    Replace(Pages(2, kBlue)); // before the file is followed
    ASSERT_TRUE(Comes(Qt::blue));
    const auto nBefore = fnDescriptors();
    for (int nTurn = 0; nTurn < 8; ++nTurn) {
        Replace(Pages(2, nTurn % 2 == 0 ? kRed : kBlue));
        ASSERT_TRUE(Comes(nTurn % 2 == 0 ? Qt::red : Qt::blue));
    }
    EXPECT_LE(fnDescriptors(), nBefore + 1);
    QTest::mousePress(&m_view.Window(), Qt::LeftButton, {}, {250, 300});
    const int nReloads = static_cast<int>(m_reloads.count());
    Replace(Pages(2, kRed));
    ASSERT_TRUE(RunUntil([&] { return m_view.Reloader()->IsChanging(); }));
    EXPECT_EQ(m_reloads.count(), nReloads);
    QTest::mouseRelease(&m_view.Window(), Qt::LeftButton, {}, {250, 300});
    EXPECT_TRUE(Comes(Qt::red));
}

}
