// Saving what a reader has changed, and leaving what is not saved.
#include <gtest/gtest.h>

#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <filesystem>

#include "document/engine/AnnotEditor.h"
#include "document/engine/PDFDoc.h"
#include "platform/storage/StorageFile.h"
#include "tests/qt/WindowFixture.h"
#include "widget/edit/DocSaver.h"
#include "widget/edit/SavedCopyCheck.h"
#include "widget/edit/ViewEdits.h"

namespace velko {
namespace {

using testing::RunUntil;
using View = vkit::VelkoPdfView;

class SavingTest : public testing::WindowFixture {
protected:
    View& TheView() { return m_pWindow->View(); }

    static std::size_t AnnotsOf(View& view) {
        const auto pEditor =
            std::dynamic_pointer_cast<pdf::IAnnotEditor>(view.Control()->GetPDFDoc());
        return pEditor->ListAnnots(0).size();
    }
    // As a reader who opens the file finds it.
    std::size_t AnnotsIn(const QString& strFile) {
        View other;
        other.resize(300, 300);
        other.show();
        EXPECT_TRUE(OpenUntilSharp(other, strFile));
        return AnnotsOf(other);
    }
    void AddNote() {
        pdf::AnnotRecord record;
        record.nType = 1;
        record.rcArea = {100.0F, 100.0F, 120.0F, 120.0F};
        record.strContents = "a note";
        TheView().Edits().Edits().Do(
            {"note", {{vkit::AnnotEdit::Kind::Add, 0, 0, {}, std::move(record)}}});
    }
    bool ShowChanged(const QString& strFile) {
        const bool bShown = ShowUntilSharp(strFile);
        AddNote();
        return bShown && RunUntil([&] {
                   return m_pWindow->isWindowModified() && !TheView().Edits().Edits().IsBusy();
               });
    }
    void Save() {
        m_pWindow->activateWindow(); // keys are the active window's
        ASSERT_TRUE(RunUntil([&] { return m_pWindow->isActiveWindow(); }));
        QTest::keyClick(&TheView().Window(), Qt::Key_S, Qt::ControlModifier);
    }
    bool IsSaved() {
        return RunUntil(
            [&] { return !TheView().Saver().IsSaving() && !m_pWindow->isWindowModified(); });
    }
    template <class Dialog>
    Dialog* Asked() {
        Dialog* pDialog = nullptr;
        RunUntil([&] {
            pDialog = m_pWindow->findChild<Dialog*>();
            return pDialog != nullptr && pDialog->isVisible();
        });
        return pDialog;
    }
    template <class Dialog>
    bool IsGone() {
        return RunUntil([&] { return m_pWindow->findChild<Dialog*>() == nullptr; });
    }
    void Answer(QMessageBox::ButtonRole eRole) {
        auto* const pBox = Asked<QMessageBox>();
        ASSERT_NE(pBox, nullptr);
        for (QAbstractButton* const pButton : pBox->buttons()) {
            if (pBox->buttonRole(pButton) == eRole) {
                pButton->click();
                break;
            }
        }
        EXPECT_TRUE(IsGone<QMessageBox>());
    }
    void GiveUp() {
        QTest::keyClick(Asked<QMessageBox>(), Qt::Key_Escape);
        EXPECT_TRUE(IsGone<QMessageBox>());
    }
    void Choose(const QString& strFile) {
        auto* const pDialog = Asked<QFileDialog>();
        ASSERT_NE(pDialog, nullptr);
        pDialog->selectFile(strFile);
        QMetaObject::invokeMethod(pDialog, "accept");
        EXPECT_TRUE(IsGone<QFileDialog>());
    }
    static std::string BytesOf(const QString& strFile) {
        QFile file(strFile);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll().toStdString();
    }
};

}

TEST_F(SavingTest, WhatStandsWhenTheSaveBeginsIsInTheFile) {
    const QString strFile = WritePages("a.pdf", 3);
    ASSERT_TRUE(ShowChanged(strFile));
    Save();
    AddNote(); // while it runs
    EXPECT_TRUE(RunUntil([&] { return !TheView().Saver().IsSaving(); }));
    EXPECT_EQ(m_pWindow->Notice(), "");
    EXPECT_EQ(AnnotsIn(strFile), 1U);
    EXPECT_TRUE(TheView().IsModified());
    TheView().Edits().Undo();
    EXPECT_TRUE(IsSaved()) << "back to what is in the file";
    TheView().Edits().Undo();
    ASSERT_TRUE(RunUntil([&] { return m_pWindow->isWindowModified(); }));
    Save();
    ASSERT_TRUE(IsSaved());
    EXPECT_EQ(AnnotsIn(strFile), 0U);
}

// The history lives on in the file that was chosen, and the old one stays as it was.
TEST_F(SavingTest, AFileThatMayNotBeWrittenLeadsToAnother) {
    const QString strFile = WritePages("a.pdf", 1);
    const std::string strBefore = BytesOf(strFile);
    QFile::setPermissions(strFile, QFile::ReadOwner);
    const QString strOther = m_folder.filePath("b.pdf");
    ASSERT_TRUE(ShowChanged(strFile));
    Save();
    Choose(m_folder.filePath("b")); // the ending comes by itself
    ASSERT_TRUE(IsSaved());
    EXPECT_EQ(TheView().File().Text(), strOther);
    EXPECT_TRUE(m_pWindow->windowTitle().contains("b.pdf"));
    EXPECT_EQ(BytesOf(strFile), strBefore);
    EXPECT_EQ(AnnotsIn(strOther), 1U);
    TheView().Edits().Undo();
    ASSERT_TRUE(RunUntil([&] { return m_pWindow->isWindowModified(); }));
    Save();
    ASSERT_TRUE(IsSaved());
    EXPECT_EQ(AnnotsIn(strOther), 0U);
}

TEST_F(SavingTest, WorkOfAnotherProgramIsReplacedOnlyOnPurpose) {
    const QString strFile = WritePages("a.pdf", 1);
    ASSERT_TRUE(ShowChanged(strFile));
    QFile::remove(strFile);
    WritePages("a.pdf", 2);
    const std::string strTheirs = BytesOf(strFile);
    Save();
    GiveUp();
    EXPECT_TRUE(TheView().IsModified());
    EXPECT_EQ(BytesOf(strFile), strTheirs);
    Save();
    Answer(QMessageBox::DestructiveRole);
    ASSERT_TRUE(IsSaved());
    EXPECT_EQ(AnnotsIn(strFile), 1U);
}

TEST_F(SavingTest, NothingIsLeftWithChangesUnlessTheReaderSaysSo) {
    const QString strFile = WritePages("a.pdf", 1);
    const QString strOther = WritePages("other.pdf", 2);
    ASSERT_TRUE(ShowChanged(strFile));
    for (const bool bClose : {true, false}) {
        bClose ? static_cast<void>(m_pWindow->close()) : m_pWindow->OpenFile(strOther);
        GiveUp();
        EXPECT_TRUE(m_pWindow->isVisible());
        EXPECT_EQ(TheView().PageCount(), 1);
    }
    m_pWindow->OpenFile(strOther);
    Answer(QMessageBox::DestructiveRole);
    ASSERT_TRUE(RunUntil([&] { return TheView().PageCount() == 2; }));
    EXPECT_FALSE(TheView().IsModified());
    EXPECT_EQ(AnnotsIn(strFile), 0U);

    ASSERT_TRUE(ShowChanged(strFile));
    m_pWindow->close();
    Answer(QMessageBox::AcceptRole);
    ASSERT_TRUE(RunUntil([&] { return !m_pWindow->isVisible(); })) << "once it is saved";
    EXPECT_EQ(AnnotsIn(strFile), 1U);
}

// A failing save keeps the window, which had been asked to go.
TEST_F(SavingTest, AFailureIsToldAndNothingIsLost) {
    const QString strFolder = m_folder.filePath("gone");
    std::filesystem::create_directory(strFolder.toStdString());
    const QString strFile = WritePages("gone/a.pdf", 1);
    ASSERT_TRUE(ShowChanged(strFile));
    std::filesystem::rename(strFolder.toStdString(), m_folder.filePath("away").toStdString());
    m_pWindow->close();
    Answer(QMessageBox::AcceptRole);
    ASSERT_TRUE(RunUntil([&] {
        return !m_pWindow->Notice().isEmpty() || m_pWindow->findChild<QMessageBox*>() != nullptr;
    }));
    EXPECT_TRUE(m_pWindow->isVisible());
    EXPECT_TRUE(TheView().IsModified());
    EXPECT_EQ(AnnotsOf(TheView()), 1U);
}

TEST_F(SavingTest, AWrittenFileThatIsNotTheDocumentIsRefused) {
    ASSERT_TRUE(ShowUntilSharp(WritePages("a.pdf", 2)));
    const auto pDocument = TheView().Control()->GetPDFDoc();
    const auto fnIsGood = [&](const QString& strFile) {
        const auto pFile = Windows::Storage::StorageFile::FromPath(strFile.toStdString());
        const auto looking = concurrency::create_task([pFile, pDocument] {
            try {
                vkit::CheckSavedCopy(*pFile, *pDocument);
                return true;
            } catch (const vkit::BadSaveException&) {
                return false;
            }
        });
        RunUntil([&] { return looking.is_done(); });
        return looking.get();
    };
    testing::PdfPage wide;
    wide.mediaBox = {0, 0, 700, 792};
    const std::string strGood = BytesOf(m_folder.filePath("a.pdf"));
    EXPECT_TRUE(fnIsGood(m_folder.filePath("a.pdf")));
    EXPECT_FALSE(fnIsGood(WritePages("three.pdf", 3)));
    EXPECT_FALSE(fnIsGood(Write("wide.pdf", testing::MakePdf({{}, wide}))));
    EXPECT_FALSE(fnIsGood(Write("cut.pdf", strGood.substr(0, 60))));
    EXPECT_FALSE(fnIsGood(WriteLocked(2))) << "which the document is not";
    EXPECT_FALSE(fnIsGood(m_folder.filePath("none.pdf")));
}

}
