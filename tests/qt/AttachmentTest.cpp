// The files attached to a document: their names, and how they are saved.
#include <gtest/gtest.h>

#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <algorithm>

#include "app/viewer/side/AttachmentPane.h"
#include "tests/qt/WindowFixture.h"

namespace velko {
namespace {

using testing::RunUntil;
using vkit::AttachmentSaver;
using vkit::SafeFileName;

TEST(AttachmentNameTest, WhatADocumentNamesIsMadeSafeToShowAndToSaveBy) {
    const std::vector<std::pair<QString, const char*>> cases{
        {"report.txt", "report.txt"},
        {"../../.bashrc", "bashrc"},
        {"C:\\Windows\\evil.exe", "evil.exe"},
        {QString::fromUtf8("invoice\u202Efdp.exe"), "invoicefdp.exe"},
        {QString::fromUtf8("a\u2066b\u200F\n\t.pdf"), "ab.pdf"},
        {"..", "attachment"},
        {"folder/", "attachment"},
        {"", "attachment"}};
    for (const auto& [strName, szSafe] : cases) {
        EXPECT_EQ(SafeFileName(strName), szSafe) << strName.toStdString();
    }
    const QString strLong = SafeFileName(QString(500, QChar(0x00E4)) + ".pdf");
    EXPECT_LE(strLong.toUtf8().size(), 200);
    EXPECT_TRUE(strLong.endsWith(".pdf"));
}

class AttachmentTest : public testing::WindowFixture {
protected:
    static std::string Ref(int nExtra) {
        return std::to_string(testing::kFirstExtraObject + nExtra) + " 0 R";
    }
    // One that is there, and one whose bytes are missing.
    QString WriteWithFiles() {
        testing::PdfOptions options;
        options.strCatalogExtra =
            "/Names << /EmbeddedFiles << /Names [(a) " + Ref(0) + " (b) " + Ref(2) + "] >> >>";
        options.extraObjects = {
            "<< /Type /Filespec /F (../notes.txt) /Desc (words) /EF << /F " + Ref(1) + " >> >>",
            "<< /Type /EmbeddedFile /Params << /Size 5 >> /Length 5 >> stream\nhello\nendstream",
            "<< /Type /Filespec /F (empty.txt) /EF << /F " + Ref(3) + " >> >>",
            "<< /Type /EmbeddedFile /Length 0 >> stream\n\nendstream"};
        return Write("with.pdf", testing::MakePdf({{}}, options));
    }
    viewer::AttachmentPane* Pane() { return m_pWindow->findChild<viewer::AttachmentPane*>(); }
    QToolButton* TabButton() {
        for (auto* const pButton : m_pWindow->findChildren<QToolButton*>()) {
            if (pButton->accessibleName() == "Attachments") {
                return pButton;
            }
        }
        return nullptr;
    }
    QByteArray BytesOf(const QString& strFile) {
        QFile file(strFile);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(nothing)");
    }
    std::shared_ptr<pdf::PDFDoc> Document() { return m_pWindow->View().Control()->GetPDFDoc(); }
};

TEST_F(AttachmentTest, TheTabIsThereWhereThereAreFilesAndSavesWhereTheReaderSays) {
    ASSERT_TRUE(ShowUntilSharp(WritePages("plain.pdf", 1)));
    QTest::keyClick(m_pWindow->focusWidget(), Qt::Key_F9);
    ASSERT_TRUE(RunUntil([&] { return TabButton() != nullptr; }));
    EXPECT_FALSE(TabButton()->isVisible());
    ASSERT_TRUE(ShowUntilSharp(WriteWithFiles()));
    ASSERT_TRUE(RunUntil([&] { return TabButton()->isVisible(); }));
    TabButton()->click();
    auto* const pList = Pane()->findChild<QListView*>();
    ASSERT_TRUE(RunUntil([&] { return pList->model()->rowCount() == 2; }));
    EXPECT_TRUE(pList->model()->index(0, 0).data().toString().startsWith("notes.txt\n"));
    EXPECT_TRUE(m_pWindow->findChildren<QFileDialog*>().isEmpty());
    QTest::mouseClick(pList->viewport(), Qt::LeftButton, Qt::NoModifier,
                      pList->visualRect(pList->model()->index(0, 0)).center());
    EXPECT_TRUE(m_pWindow->findChildren<QFileDialog*>().isEmpty()) << "a click chooses only";
    QTest::keyClick(pList, Qt::Key_Return);
    auto* const pDialog = m_pWindow->findChild<QFileDialog*>();
    ASSERT_NE(pDialog, nullptr);
    const QString strTarget = m_folder.filePath("saved.txt");
    emit pDialog->fileSelected(strTarget);
    EXPECT_TRUE(RunUntil([&] { return BytesOf(strTarget) == "hello"; }));
    const QString strOwn = m_pWindow->View().File().Text();
    const QByteArray own = BytesOf(strOwn);
    emit pDialog->fileSelected(strOwn);
    const auto labels = Pane()->findChildren<QLabel*>();
    EXPECT_TRUE(std::any_of(labels.begin(), labels.end(), [](const QLabel* pLabel) {
        return pLabel->text().contains("open document");
    }));
    EXPECT_EQ(BytesOf(strOwn), own);
    pDialog->close();
    ASSERT_TRUE(ShowUntilSharp(m_folder.filePath("plain.pdf")));
    ASSERT_TRUE(RunUntil([&] { return !TabButton()->isVisible(); }));
    ASSERT_TRUE(ShowUntilSharp(strOwn));
    EXPECT_TRUE(RunUntil([&] { return Pane()->isVisible(); })) << "the tab that was chosen";
    m_pWindow->View().CloseDocument();
    EXPECT_TRUE(RunUntil([&] { return !TabButton()->isVisible(); }));
}

TEST_F(AttachmentTest, ASaveEndsWhateverHappensToTheDocumentAndSaysWhatFailed) {
    ASSERT_TRUE(ShowUntilSharp(WriteWithFiles()));
    AttachmentSaver saver;
    QStringList told;
    QObject::connect(&saver, &AttachmentSaver::Saved,
                     [&](const QString& strFile) { told << "saved " + strFile; });
    QObject::connect(&saver, &AttachmentSaver::Failed,
                     [&](const QString& strFile, const QString& strReason) {
                         told << "failed " + strFile;
                         EXPECT_FALSE(strReason.isEmpty());
                     });
    const QString strTarget = Write("over.txt", "what stood there before, and was longer");
    const auto pDocument = Document();
    ASSERT_TRUE(saver.Save(pDocument, 0, strTarget));
    EXPECT_FALSE(saver.Save(pDocument, 0, strTarget)) << "one at a time";
    m_pWindow->View().CloseDocument();
    ASSERT_TRUE(RunUntil([&] { return !saver.IsSaving(); }));
    EXPECT_EQ(BytesOf(strTarget), "hello");
    ASSERT_TRUE(saver.Save(pDocument, 0, m_folder.filePath("no/such/folder/x.txt")));
    ASSERT_TRUE(RunUntil([&] { return !saver.IsSaving(); }));
    ASSERT_TRUE(saver.Save(pDocument, 7, strTarget)); // the document has no such file
    ASSERT_TRUE(RunUntil([&] { return !saver.IsSaving(); }));
    EXPECT_EQ(BytesOf(strTarget), "hello") << "a failed save leaves what was there";
    EXPECT_EQ(told, QStringList({"saved over.txt", "failed x.txt", "failed over.txt"}));
    ASSERT_TRUE(saver.Save(pDocument, 1, m_folder.filePath("empty.txt")));
    ASSERT_TRUE(RunUntil([&] { return !saver.IsSaving(); }));
    EXPECT_EQ(BytesOf(m_folder.filePath("empty.txt")), "");
    const QStringList left = QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden);
    EXPECT_EQ(left.filter(QRegularExpression("^\\.")), QStringList()) << "nothing is left aside";
}

}
}
