// The pictures of first pages in the list of recent files.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QTest>

#include "app/viewer/RecentFiles.h"
#include "app/viewer/RecentList.h"
#include "app/viewer/RecentPictures.h"
#include "app/viewer/RecentRow.h"
#include "control/PDFViewCtrl.h"
#include "tests/qt/WindowFixture.h"
#include "widget/PagePicture.h"

namespace velko {
namespace {

using testing::RunUntil;
using View = vkit::VelkoPdfView;

class RecentPicturesTest : public testing::WindowFixture {
protected:
    RecentPicturesTest() { m_pWindow->KeepPlaces(); }

    View& TheView() { return m_pWindow->View(); }
    QDir Folder() const { return QDir(m_folder.filePath("data/pictures")); }
    QStringList Files() const { return Folder().entryList(QDir::Files | QDir::Hidden); }
    mode_t ModeOf(const QString& strPath) const {
        struct stat status {};
        return ::stat(QFile::encodeName(strPath).constData(), &status) == 0
                   ? status.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO)
                   : 0;
    }
    viewer::RecentList& List() { return *m_pWindow->findChild<viewer::RecentList*>(); }
    const QImage& PictureInRow(std::size_t nRow) { return List().Rows().at(nRow)->Picture(); }

    // Asks after all that was asked for before.
    static bool Has(const QString& strFile) {
        const auto stamping = viewer::RecentPictures::StampOf(strFile);
        EXPECT_TRUE(RunUntil([&] { return stamping.is_done(); }));
        const auto asking = viewer::RecentPictures::Has(strFile, stamping.get());
        EXPECT_TRUE(RunUntil([&] { return asking.is_done(); }));
        return asking.get();
    }
    bool ShowUntilPictured(const QString& strFile) {
        return ShowUntilSharp(strFile) && RunUntil([&] { return Has(strFile); });
    }
};

TEST_F(RecentPicturesTest, ADocumentsPaperIsInTheListAsLongAsItIsThatFile) {
    TheView().SetNightMode(true);
    testing::PdfPage wide;
    wide.mediaBox = {0, 0, 800, 400};
    wide.strContent = "1 0 0 rg 0 0 400 400 re f";
    const QString strFile = Write("wide.pdf", testing::MakePdf({wide}));
    ASSERT_TRUE(ShowUntilPictured(strFile));
    ASSERT_EQ(Files().size(), 1);
    EXPECT_EQ(ModeOf(m_folder.filePath("data")), mode_t{S_IRWXU});
    EXPECT_EQ(ModeOf(Folder().path()), mode_t{S_IRWXU});
    EXPECT_EQ(ModeOf(Folder().filePath(Files()[0])), mode_t{S_IRUSR | S_IWUSR});
    TheView().CloseDocument();
    ASSERT_TRUE(RunUntil([&] { return !PictureInRow(0).isNull(); }));
    EXPECT_EQ(PictureInRow(0).size(), QSize(96, 48));
    EXPECT_EQ(PictureInRow(0).pixelColor(20, 24), QColor(Qt::red));
    EXPECT_EQ(PictureInRow(0).pixelColor(80, 24), QColor(Qt::white));
    EXPECT_EQ(List().Rows()[0]->accessibleName(), "wide.pdf");

    WritePages("wide.pdf", 2);
    List().Fill();
    EXPECT_TRUE(RunUntil([&] { return PictureInRow(0).isNull(); })) << "it is another file";
    ASSERT_TRUE(ShowUntilPictured(strFile)) << "made anew";
    const QString strOther = WritePages("other.pdf", 1);
    ASSERT_TRUE(ShowUntilPictured(strOther));
    viewer::RecentFiles::Forget({strFile});
    EXPECT_FALSE(Has(strFile));
    EXPECT_TRUE(Has(strOther));
    viewer::RecentFiles::ForgetAll();
    EXPECT_TRUE(RunUntil([&] { return Files().isEmpty(); }));
}

TEST_F(RecentPicturesTest, AProtectedDocumentHasNoneAndLosesTheOneThatItHad) {
    testing::PdfOptions owned;
    owned.strOwnerPassword = "secret";
    testing::PdfOptions locked;
    locked.strUserPassword = "secret";
    for (const auto& options : {owned, locked}) {
        const QString strFile = WritePages("plain.pdf", 1);
        ASSERT_TRUE(ShowUntilPictured(strFile));
        TheView().CloseDocument();
        Write("plain.pdf", testing::MakePdf({testing::PdfPage()}, options));
        TheView().Open(strFile);
        EXPECT_TRUE(RunUntil([&] { return Files().isEmpty(); }));
        TheView().CloseDocument();
    }
}

TEST_F(RecentPicturesTest, WhatIsNoSoundPictureIsNoneAndGoes) {
    const QString strFile = WritePages("pages.pdf", 1);
    ASSERT_TRUE(ShowUntilPictured(strFile));
    QFile kept(Folder().filePath(Files()[0]));
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    const QByteArray sound = kept.readAll();
    kept.close();
    std::vector<QByteArray> damaged{QByteArray(), "text", QByteArray(1 << 20, 'x')};
    for (qsizetype n = 1; n < sound.size() - 12; n += sound.size() / 16) {
        damaged.push_back(sound.first(n));
    }
    for (const QByteArray& bytes : damaged) {
        ASSERT_TRUE(kept.open(QIODevice::WriteOnly));
        kept.write(bytes);
        kept.close();
        EXPECT_FALSE(Has(strFile)) << bytes.size();
        EXPECT_TRUE(Files().isEmpty());
    }
}

TEST_F(RecentPicturesTest, AsManyAsEntriesAreKeptAndThoseOfAnotherProcess) {
    const QString strFile = WritePages("pages.pdf", 1);
    const QImage image(9, 9, QImage::Format_RGB32);
    viewer::RecentPictures::Keep(strFile, {1, 1}, image);
    Has(strFile);
    for (const auto& [strName, nAge] : {std::pair{"old.png", 3600}, {"new.png", 0}}) {
        QFile file(Folder().filePath(strName));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.setFileTime(QDateTime::currentDateTime().addSecs(-nAge),
                         QFileDevice::FileModificationTime);
    }
    viewer::RecentPictures::Keep(strFile, {1, 1}, image);
    Has(strFile);
    EXPECT_FALSE(Files().contains("old.png"));
    EXPECT_TRUE(Files().contains("new.png"));
    for (int n = 0; n < 40; ++n) {
        viewer::RecentPictures::Keep(QString::number(n), {1, 1}, image);
    }
    Has(strFile);
    EXPECT_EQ(Files().size(), 25);
}

TEST_F(RecentPicturesTest, AFolderThatCannotBeMadeLeavesTheReadingAlone) {
    ASSERT_TRUE(QDir().mkpath(m_folder.filePath("data")));
    Write("data/pictures", "a file");
    const QString strFile = WritePages("pages.pdf", 1);
    ASSERT_TRUE(ShowUntilSharp(strFile));
    viewer::RecentPictures::Keep(strFile, {1, 1}, QImage(9, 9, QImage::Format_RGB32));
    EXPECT_FALSE(Has(strFile));
    EXPECT_EQ(m_pWindow->Notice(), "");
    EXPECT_TRUE(QFile::exists(m_folder.filePath("data/pictures")));
}

TEST_F(RecentPicturesTest, APictureThatTakesLongGivesWay) {
    ASSERT_TRUE(ShowUntilSharp(WritePages("heavy.pdf", 1, 1'000)));
    const concurrency::cancellation_token_source source;
    const auto drawing =
        vkit::DrawPage(*TheView().Control(), 0, {.largest = {4'000, 4'000}}, source.get_token());
    QTimer::singleShot(5, [&] { source.cancel(); }); // while it is being drawn
    ASSERT_TRUE(RunUntil([&] { return drawing.is_done(); }));
    EXPECT_TRUE(drawing.is_canceled());
}

}
}
