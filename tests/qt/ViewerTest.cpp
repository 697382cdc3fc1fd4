// The desktop viewer: its window, its command line, and the program itself.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QPointer>
#include <QProcess>
#include <QUrl>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "app/viewer/CommandBar.h"
#include "app/viewer/CommandLine.h"
#include "app/viewer/MainWindow.h"
#include "app/viewer/ViewerSettings.h"
#include "app/viewer/WindowList.h"
#include "tests/qt/WindowFixture.h"

namespace velko {
namespace {

using testing::RunUntil;
using viewer::CommandBar;
using viewer::CommandLine;
using viewer::MainWindow;
using State = vkit::VelkoPdfView::State;

class MainWindowTest : public testing::WindowFixture {
protected:
    void Drop(const QString& strFile) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(strFile)});
        QDragEnterEvent enter({100, 100}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_pWindow.get(), &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDropEvent drop({100, 100}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_pWindow.get(), &drop);
    }
    bool ShowsMessageWith(const QString& strWords) {
        return RunUntil([&] { return m_pWindow->Message().contains(strWords); });
    }
};

TEST_F(MainWindowTest, ADroppedFileOpens) {
    EXPECT_TRUE(m_pWindow->Message().contains("Ctrl+O"));
    Drop(WritePages("dropped.pdf", 4));
    ASSERT_TRUE(RunUntil([&] { return m_pWindow->View().ViewState() == State::Shown; }));
    EXPECT_TRUE(m_pWindow->Message().isEmpty());
    EXPECT_TRUE(m_pWindow->windowTitle().startsWith("dropped.pdf"))
        << m_pWindow->windowTitle().toStdString();
    m_pWindow->CompleteBar();
    const auto* pBar = m_pWindow->findChild<CommandBar*>();
    ASSERT_NE(pBar, nullptr);
    EXPECT_EQ(pBar->CountText(), "of 4");
    EXPECT_EQ(pBar->PageText(), "1");
    m_pWindow->View().GotoPage(3);
    EXPECT_TRUE(RunUntil([&] { return pBar->PageText() == "4"; }));
}

TEST_F(MainWindowTest, TheFirstLayoutHasTheWindowsFinalSizeBeforeItIsShown) {
    auto pControl = vkit::VelkoPdfView::CreateControl();
    auto opening = vkit::VelkoPdfView::BeginOpen(*pControl, WritePages("pages.pdf", 3));
    MainWindow window(pControl, QSize(612, 792 + CommandBar::kHeight));
    window.Begin("pages.pdf", std::move(opening));
    EXPECT_EQ(pControl->GetCanvasSize(), (Windows::Foundation::Size{612.0F, 792.0F}));
    ASSERT_TRUE(RunUntil([&] { return window.View().IsSharp(); })) << "while it is hidden";
    const float fScale = pControl->GetScale();
    EXPECT_FLOAT_EQ(fScale, 0.75F);
    window.show();
    EXPECT_TRUE(window.View().IsSharp()) << "nothing is laid out anew";
    EXPECT_EQ(pControl->GetScale(), fScale);
}

TEST_F(MainWindowTest, ADocumentThatCameBeforeItsWindowIsShown) {
    const QString strFile = WritePages("pages.pdf", 3);
    auto pControl = vkit::VelkoPdfView::CreateControl();
    auto opening = vkit::VelkoPdfView::BeginOpen(*pControl, strFile);
    ASSERT_TRUE(RunUntil([&] { return opening.is_done(); }));
    MainWindow window(pControl, QSize(600, 400));
    window.Begin(strFile, std::move(opening));
    window.show();
    EXPECT_TRUE(RunUntil([&] { return window.View().IsSharp(); }));
    EXPECT_EQ(window.View().ViewState(), State::Shown);
    EXPECT_EQ(window.View().PageCount(), 3);
}

TEST_F(MainWindowTest, AFailedOpenShowsTheReasonAndTheFilesName) {
    Drop(Write("broken <b>.pdf", "no document"));
    ASSERT_TRUE(ShowsMessageWith("not a PDF"));
    EXPECT_TRUE(m_pWindow->Message().contains("broken &lt;b&gt;.pdf"));
    EXPECT_TRUE(m_pWindow->Message().contains(m_folder.path())) << "where it was looked for";
    Drop(WriteLocked());
    ASSERT_TRUE(RunUntil([&] { return m_pWindow->View().ViewState() == State::PasswordNeeded; }));
    EXPECT_TRUE(m_pWindow->Message().isEmpty()) << "nothing lies over the question";

    Drop(WritePages("good.pdf", 1));
    ASSERT_TRUE(RunUntil([&] { return m_pWindow->View().ViewState() == State::Shown; }));
    EXPECT_TRUE(m_pWindow->Message().isEmpty());
    Drop(m_folder.filePath("missing.pdf"));
    ASSERT_TRUE(RunUntil([&] { return !m_pWindow->Notice().isEmpty(); }));
    EXPECT_TRUE(m_pWindow->Notice().contains("missing.pdf"));
    EXPECT_TRUE(m_pWindow->Message().isEmpty()) << "the document that is shown stays in sight";
    EXPECT_TRUE(m_pWindow->windowTitle().startsWith("good.pdf"))
        << m_pWindow->windowTitle().toStdString();
}

TEST_F(MainWindowTest, WindowsOnOneFileShareTheColoursAndEndOneByOne) {
    const QString strFile = WritePages("twice.pdf", 6);
    viewer::WindowList windows;
    const auto fnShown = [](const MainWindow& window) {
        return RunUntil([&] { return window.View().IsSharp() && window.View().PageCount() == 6; });
    };
    const QPointer<MainWindow> pOne = &windows.Open(strFile);
    ASSERT_TRUE(fnShown(*pOne));
    QPointer<MainWindow> pOther;
    pOne->resize(500, 400);
    emit pOne->WindowWanted(strFile);
    for (QWidget* const pWidget : QApplication::topLevelWidgets()) {
        if (pWidget != pOne && pWidget != m_pWindow.get() && !pOther) {
            pOther = qobject_cast<MainWindow*>(pWidget);
        }
    }
    ASSERT_TRUE(pOther && fnShown(*pOther));
    pOne->View().GotoPage(5);
    pOne->View().SetNightMode(true);
    EXPECT_TRUE(RunUntil([&] { return pOther->View().NightMode(); }));
    EXPECT_EQ(pOther->View().CurrentPage(), 0) << "each has its own place";
    pOne->close();
    EXPECT_TRUE(RunUntil([&] { return pOne.isNull(); }));
    EXPECT_TRUE(fnShown(*pOther));
    EXPECT_EQ(viewer::ViewerSettings::WindowSize(), QSize(500, 400));
    pOther->View().SetNightMode(false);
    windows.CloseAll();
    EXPECT_TRUE(RunUntil([&] { return pOther.isNull(); }));
}

TEST(CommandLineTest, UnderstandsItsOptionsAndLeavesThoseOfQt) {
    QString strComplaint;
    const auto options =
        viewer::ParseCommandLine({"-platform", "offscreen", "--screenshot", "a.png", "--page", "3",
                                  "--size", "640x480", "--time-to-ink=5", "--", "-odd.pdf"},
                                 strComplaint);
    ASSERT_TRUE(options) << strComplaint.toStdString();
    ASSERT_EQ(options->files.size(), 1U);
    EXPECT_EQ(options->files[0].Bytes(), "-odd.pdf");
    EXPECT_EQ(options->strScreenshot, "a.png");
    EXPECT_EQ(options->nPage, 3);
    EXPECT_EQ(options->size, QSize(640, 480));
    EXPECT_EQ(options->nStartedAt, 5);
    EXPECT_FALSE(viewer::ParseCommandLine({"a.pdf"}, strComplaint)->nPage) << "the kept place";
    const auto several = viewer::ParseCommandLine(
        {"a.pdf", "file:///tmp/a%20b.pdf", "https://example.org/c.pdf", "file://far/d.pdf"},
        strComplaint);
    ASSERT_TRUE(several && several->files.size() == 2U) << strComplaint.toStdString();
    EXPECT_EQ(several->files[1].Bytes(), "/tmp/a b.pdf");
    EXPECT_EQ(several->foreign, QStringList({"https://example.org/c.pdf", "file://far/d.pdf"}));
}

TEST(CommandLineTest, NamesWhatItDoesNotUnderstand) {
    const QList<QByteArrayList> lines{{"--pages"},
                                      {"--page", "0"},
                                      {"--page"},
                                      {"--size", "9x9"},
                                      {"--size", "640"},
                                      {"--screenshot", "p.png", "a", "b"},
                                      {"--screenshot", "p.png", "https://example.org/a"}};
    for (const QByteArrayList& line : lines) {
        QString strComplaint;
        EXPECT_FALSE(viewer::ParseCommandLine(line, strComplaint)) << line.join(' ').toStdString();
        EXPECT_FALSE(strComplaint.isEmpty());
    }
}

class ViewerProgramTest : public testing::ViewFixture {
protected:
    int Run(const QStringList& arguments) {
        QProcess program;
        program.start(VELKO_VIEWER, arguments);
        EXPECT_TRUE(program.waitForFinished(60'000));
        m_strErrors = QString::fromUtf8(program.readAllStandardError());
        return program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -1;
    }
    QString m_strErrors;
};

TEST_F(ViewerProgramTest, WritesASharpPictureOfThePageAskedFor) {
    const QString strPicture = m_folder.filePath("picture.png");
    ASSERT_EQ(Run({"--screenshot", strPicture, "--page", "2", "--size", "612x832",
                   WritePages("pages.pdf", 3)}),
              0)
        << m_strErrors.toStdString();
    const QImage picture(strPicture);
    ASSERT_EQ(picture.size(), QSize(612, 832));
    EXPECT_EQ(picture.pixelColor(306, 40 + 396), QColor(255, 0, 0));
}

TEST_F(ViewerProgramTest, OpensAFileWhoseNameIsNoText) {
    const std::string strName = m_folder.filePath("caf").toStdString() + "\xE9.pdf";
    ASSERT_EQ(std::rename(WritePages("a.pdf", 1).toStdString().c_str(), strName.c_str()), 0);
    const std::string strPicture = m_folder.filePath("picture.png").toStdString();
    const std::string strLine = std::string(VELKO_VIEWER) + " --screenshot " + strPicture +
                                " --size 300x300 '" + strName + "'";
    EXPECT_EQ(std::system(strLine.c_str()), 0); // a QProcess would change the name
    EXPECT_TRUE(QFileInfo::exists(QString::fromStdString(strPicture)));
}

TEST_F(ViewerProgramTest, SaysWhyThereIsNoPicture) {
    const QString strPicture = m_folder.filePath("picture.png");
    EXPECT_EQ(Run({"--screenshot", strPicture, Write("text.pdf", "hello")}), 1);
    EXPECT_TRUE(m_strErrors.contains("not a PDF")) << m_strErrors.toStdString();
    EXPECT_FALSE(QFileInfo::exists(strPicture));
    EXPECT_EQ(Run({"--no-such-option"}), 2);
    EXPECT_EQ(Run({"--screenshot", m_folder.filePath("no/folder.png"), WritePages("a.pdf", 1)}), 1);
}

}
}
