// The reader's place, from one opening to the next and through a killed viewer.
#include <gtest/gtest.h>

#include <QDir>
#include <QProcess>
#include <cmath>
#include <filesystem>

#include "component/DocIdentity.h"
#include "component/KeptView.h"
#include "control/ControlParts.h"
#include "control/IJudgePasswordHelper.h"
#include "platform/storage/ApplicationData.h"
#include "tests/qt/ViewFixture.h"
#include "viewers/core/IPDFViewer.h"
#include "widget/places/SnippetFinder.h"

namespace velko {
namespace {

using testing::RunUntil;
using View = vkit::VelkoPdfView;

class KeptPlaceTest : public testing::ViewFixture {
protected:
    std::unique_ptr<View> MakeView(QSize size) {
        auto pView = std::make_unique<View>();
        pView->KeepPlace(true);
        pView->resize(size);
        pView->show();
        return pView;
    }
    // Page, place on the screen, zoom and rotation.
    static std::vector<double> PlaceOf(View& view) {
        auto& control = *view.Control();
        const auto pPosition = vkit::ControlParts(control).Viewer()->GetPagePosition();
        return {static_cast<double>(pPosition->nPageIndex), std::round(pPosition->dbOffsetX),
                std::round(pPosition->dbOffsetY), control.GetScale(),
                static_cast<double>(control.GetRotate())};
    }
    void Start(QProcess& program, const QStringList& arguments) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("XDG_DATA_HOME", m_folder.filePath("home"));
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        program.setProcessEnvironment(environment);
        program.start(VELKO_VIEWER, arguments);
    }
    // With its words, and so far below the page's top.
    static bool Keeps(const QString& strFile, int nPage, double dbDown = -1.0) {
        return RunUntil([&] {
            const auto kept = vkit::FindView(strFile.toStdString());
            return kept && kept->pValues->HasKey("Widget.Place.Text") &&
                   kept->pValues->Lookup("CurrentPageIndex").Get<std::int32_t>() == nPage &&
                   (dbDown < 0.0 ||
                    std::abs(kept->pValues->Lookup("OffsetY").Get<double>() + dbDown) < 1.0);
        });
    }
    // As a process sees it that starts now.
    static std::int32_t KeptPage(const std::string& strStore, const QString& strFile) {
        using Windows::Storage::ApplicationData;
        ApplicationData::SetCurrent(Windows::Storage::OpenApplicationData(strStore));
        const auto kept = vkit::FindView(strFile.toStdString());
        return kept ? kept->pValues->Lookup("CurrentPageIndex").Get<std::int32_t>() : -1;
    }
};

TEST_F(KeptPlaceTest, ADocumentComesUpWhereItWasLeftInOneStep) {
    const QString strFile = WritePages("pages.pdf", 20);
    std::vector<double> left;
    {
        const auto pView = MakeView({500, 600});
        ASSERT_TRUE(OpenUntilSharp(*pView, strFile));
        pView->RotateBy(3);
        pView->ZoomTo(1.6);
        pView->GotoPage(7);
        pView->ScrollBy(61.0, 173.0);
        ASSERT_TRUE(Settles(*pView));
        left = PlaceOf(*pView);
    } // what is not stored yet is stored here
    const auto pView = MakeView({500, 600});
    int nElsewhere = 0;
    int nFrames = 0;
    QObject::connect(pView.get(), &View::Painted, pView.get(), [&] {
        if (pView->Control()->GetPageCount() > 0) {
            ++nFrames;
            nElsewhere += PlaceOf(*pView) == left ? 0 : 1;
        }
    });
    ASSERT_TRUE(OpenUntilSharp(*pView, strFile));
    ASSERT_TRUE(RunUntil([&] { return nFrames > 0; }));
    EXPECT_EQ(nElsewhere, 0) << "frames that showed another place";
    EXPECT_EQ(PlaceOf(*pView), left);
    EXPECT_EQ(pView->Zoom(), static_cast<double>(1.6F));

    // Lying the other way only page and rotation come back.
    const auto pWide = MakeView({900, 500});
    ASSERT_TRUE(OpenUntilSharp(*pWide, strFile));
    EXPECT_EQ(pWide->Control()->GetCurrentPageIndex(), static_cast<int>(left[0]));
    EXPECT_EQ(pWide->Rotation(), 3);
    EXPECT_NE(pWide->Zoom(), static_cast<double>(1.6F));
}

TEST_F(KeptPlaceTest, ADocumentThatWaitedForItsPasswordComesUpWhereItWasLeft) {
    const QString strFile = WriteLocked(9);
    std::vector<double> left;
    {
        const auto pView = MakeView({500, 600});
        pView->Open(strFile, "secret");
        ASSERT_TRUE(RunUntil([&] { return pView->PageCount() == 9; }));
        pView->SetLayoutMode(View::Layout::SinglePage);
        pView->ZoomTo(1.6);
        pView->GotoPage(5);
        pView->ScrollBy(0.0, 100.0);
        ASSERT_TRUE(Settles(*pView));
        left = PlaceOf(*pView);
    }
    const auto pView = MakeView({500, 600});
    pView->Open(strFile);
    ASSERT_TRUE(RunUntil([&] { return pView->ViewState() == View::State::PasswordNeeded; }));
    const auto pJudge = pView->Control()->PasswordJudge();
    ASSERT_TRUE(pJudge && pJudge->JudgePassword("secret"));
    pJudge->OnPasswordOK();
    ASSERT_TRUE(RunUntil([&] { return pView->ViewState() == View::State::Shown; }));
    EXPECT_EQ(PlaceOf(*pView), left);
    EXPECT_EQ(pView->LayoutMode(), View::Layout::SinglePage);
}

TEST_F(KeptPlaceTest, AFitComesBackAsAFitAndAnotherDocumentDoesNotTakeThePlace) {
    const QString strFile = WritePages("pages.pdf", 20);
    {
        const auto pView = MakeView({500, 600});
        ASSERT_TRUE(OpenUntilSharp(*pView, strFile));
        pView->FitWidth();
        pView->GotoPage(4);
        ASSERT_TRUE(OpenUntilSharp(*pView, WritePages("short.pdf", 2)));
    }
    const auto pView = MakeView({612, 700});
    ASSERT_TRUE(OpenUntilSharp(*pView, strFile));
    EXPECT_EQ(pView->FitMode(), View::Fit::Width);
    EXPECT_NEAR(pView->Zoom(), 0.75, 0.001) << "of the new width";
    EXPECT_EQ(pView->Control()->GetCurrentPageIndex(), 4);
    WritePages("pages.pdf", 3); // the document has become shorter
    ASSERT_TRUE(OpenUntilSharp(*pView, strFile));
    EXPECT_EQ(pView->PageCount(), 3);
}

TEST_F(KeptPlaceTest, APlaceHoldsOverARenameAndAMove) {
    const std::string strFile = WritePages("pages.pdf", 20).toStdString();
    const std::string strOther = m_folder.filePath("other.pdf").toStdString();
    const auto fnOpen = [&](const std::string& strPath) {
        auto pView = MakeView({500, 600});
        EXPECT_TRUE(OpenUntilSharp(*pView, QString::fromStdString(strPath)));
        return pView;
    };
    const auto fnIsKnown = [](const std::string& strPath) { // by its bytes, with its place
        return RunUntil([&] {
            const auto kept = vkit::FindView(strPath);
            return kept && vkit::ReadIdentity(*kept->pValues).nFingerprint != 0;
        });
    };
    std::vector<double> left;
    {
        const auto pView = fnOpen(strFile);
        pView->SetLayoutMode(View::Layout::SinglePage);
        pView->ZoomTo(1.6);
        pView->GotoPage(7);
        ASSERT_TRUE(Settles(*pView));
        left = PlaceOf(*pView);
        ASSERT_TRUE(fnIsKnown(strFile));
    }
    std::filesystem::rename(strFile, strOther);
    {
        const auto pView = fnOpen(strOther);
        EXPECT_EQ(PlaceOf(*pView), left) << "at once";
        EXPECT_EQ(pView->LayoutMode(), View::Layout::SinglePage);
        EXPECT_TRUE(RunUntil([&] { return vkit::RecentFiles() == std::vector{strOther}; }))
            << "the list names it once";
        ASSERT_TRUE(fnIsKnown(strOther));
    }
    std::filesystem::copy_file(strOther, strFile);
    std::filesystem::remove(strOther); // as a move to another disk does
    const auto pView = fnOpen(strFile);
    EXPECT_TRUE(RunUntil([&] { return PlaceOf(*pView) == left; }));
    const std::string strCopy = m_folder.filePath("copy.pdf").toStdString();
    std::filesystem::copy_file(strFile, strCopy);
    const auto pCopy = fnOpen(strCopy);
    ASSERT_TRUE(fnIsKnown(strCopy));
    EXPECT_EQ(pCopy->CurrentPage(), 0) << "of a file that is there";
}

TEST_F(KeptPlaceTest, AChangedDocumentComesUpAtTheWordsThatWereRead) {
    const QString strFile = Write("text.pdf", testing::MakePdf(TextPages(20)));
    const auto longer = Joined(TextPages(3, 500), TextPages(20));
    for (const auto eLayout :
         {View::Layout::Continuous, View::Layout::SinglePage, View::Layout::Text}) {
        SCOPED_TRACE(static_cast<int>(eLayout));
        Write("text.pdf", testing::MakePdf(TextPages(20)));
        std::vector<double> left;
        {
            const auto pView = MakeView({500, 600});
            ASSERT_TRUE(OpenUntilSharp(*pView, strFile));
            pView->SetLayoutMode(eLayout);
            pView->ZoomTo(1.6);
            pView->GotoPage(7);
            pView->ScrollBy(0.0, 173.0);
            ASSERT_TRUE(Settles(*pView));
            ASSERT_TRUE(Keeps(strFile, 7));
            left = PlaceOf(*pView);
        }
        Write("text.pdf", testing::MakePdf(longer));
        {
            const auto pView = MakeView({500, 600});
            pView->Open(strFile);
            ASSERT_TRUE(RunUntil([&] { return pView->ViewState() == View::State::Shown; }));
            EXPECT_EQ(PlaceOf(*pView), left) << "at once";
            pView->CloseDocument(); // while it is looked for
        }
        const auto pView = MakeView({500, 600});
        ASSERT_TRUE(OpenUntilSharp(*pView, strFile));
        left[0] = 10.0;
        EXPECT_TRUE(RunUntil([&] { return PlaceOf(*pView) == left; }));
        EXPECT_FALSE(pView->CanGoBack());
    }
}

TEST_F(KeptPlaceTest, AReaderWhoHasGoneOnIsLeftAlone) {
    const QString strFile = Write("text.pdf", testing::MakePdf(TextPages(20)));
    {
        const auto pView = MakeView({500, 600});
        ASSERT_TRUE(OpenUntilSharp(*pView, strFile));
        pView->GotoPage(7);
        ASSERT_TRUE(Keeps(strFile, 7));
    }
    Write("text.pdf", testing::MakePdf(Joined(TextPages(3, 500), TextPages(20))));
    const auto pView = MakeView({500, 600});
    pView->Open(strFile);
    ASSERT_TRUE(RunUntil([&] { return pView->ViewState() == View::State::Shown; }));
    pView->ScrollBy(0.0, 90.0);
    const std::vector<double> gone = PlaceOf(*pView);
    EXPECT_TRUE(Keeps(strFile, 7, -gone[2])) << "as the place of what is shown now";
    EXPECT_EQ(PlaceOf(*pView), gone);
}

TEST_F(KeptPlaceTest, WordsAreFoundNearestFirstAndByHalves) {
    using vkit::SnippetFinder;
    const auto fnPage = [](const std::string& strWords) {
        testing::PdfPage page;
        page.strContent = "BT /F1 12 Tf 72 700 Td (" + strWords + ") Tj ET";
        return page;
    };
    const std::string strOne = "These are the words that begin ";
    const std::string strTwo = "and others are what ends it all";
    testing::PdfPage scan;
    scan.strContent = "q 600 0 0 700 0 0 cm /I1 Do Q";
    const std::vector<testing::PdfPage> pages{fnPage(strOne + strTwo),
                                              scan,
                                              fnPage(strOne + "but go on otherwise"),
                                              {},
                                              fnPage(strOne + strTwo),
                                              fnPage("Here " + strTwo),
                                              scan};
    const auto pView = MakeView({500, 600});
    testing::PdfOptions options;
    options.images.push_back({1, 1, "abc"});
    ASSERT_TRUE(OpenUntilSharp(*pView, Write("words.pdf", testing::MakePdf(pages, options))));
    const auto fnFind = [&](int nPage, const std::string& strText, std::size_t nHalf, int nMost) {
        const auto pAbort = std::make_shared<std::atomic<bool>>(false);
        const vkit::PlaceSnippet snippet{strText, 72, 700, static_cast<int>(nHalf), 200, 700};
        SnippetFinder finder(pView->Control()->GetPDFDoc(), {{nPage, snippet}}, pAbort,
                             {nMost, std::chrono::seconds(60)});
        while (finder.Run()) {
        }
        return finder.Found()[0] ? finder.Found()[0]->nPage : -1;
    };
    EXPECT_EQ(fnFind(1, strOne + strTwo, strOne.size(), 9), 0);
    EXPECT_EQ(fnFind(3, "THESE are the w\u00F6rds that begin " + strTwo, 0, 9), 4) << "folded";
    EXPECT_EQ(fnFind(90, strOne + strTwo, strOne.size(), 9), 4) << "the document is shorter";
    EXPECT_EQ(fnFind(6, strOne + "with other words there", strOne.size(), 9), 4);
    EXPECT_EQ(fnFind(3, strOne + "with other words there", strOne.size(), 9), 4);
    EXPECT_EQ(fnFind(6, "A beginning of its own " + strTwo, 23, 9), 5);
    EXPECT_EQ(fnFind(6, strOne + strTwo, strOne.size(), 2), 5) << "no further than two pages";
    EXPECT_EQ(fnFind(3, "Words that stand nowhere in it any more", 21, 9), -1);
}

TEST_F(KeptPlaceTest, AStoreThatCannotBeWrittenIsToldOnceAndTheReadingGoesOn) {
    const auto pView = MakeView({500, 600});
    QStringList failures;
    QObject::connect(pView.get(), &View::Failed, pView.get(),
                     [&](const QString& strReason) { failures << strReason; });
    pView->Open(WritePages("pages.pdf", 5));
    ASSERT_TRUE(RunUntil([&] { return pView->PageCount() == 5; }));
    ASSERT_TRUE(QDir(m_folder.path()).mkpath("data/settings.db")); // a folder in its place
    EXPECT_TRUE(RunUntil([&] { return !failures.isEmpty(); }));
    pView->GotoPage(3);
    EXPECT_TRUE(RunUntil([&] { return pView->CurrentPage() == 3 && pView->IsSharp(); }));
    pView->SetNightMode(true);
    pView->CloseDocument();
    Windows::Storage::ApplicationData::Current()->Flush();
    View late; // hears of it too
    int nHeardLate = 0;
    QObject::connect(&late, &View::Failed, &late, [&] { ++nHeardLate; });
    EXPECT_TRUE(RunUntil([&] { return nHeardLate > 0; }));
    ASSERT_EQ(failures.size(), 1) << failures.join('\n').toStdString();
    EXPECT_TRUE(failures[0].contains("could not be kept"));
}

TEST_F(KeptPlaceTest, AViewerWithoutUsableSettingsStillShowsTheDocument) {
    ASSERT_TRUE(QDir(m_folder.path()).mkpath("home/velko-vkit/settings.db"));
    QProcess program;
    Start(program, {"--time-to-ink", WritePages("pages.pdf", 2)});
    ASSERT_TRUE(program.waitForFinished(60'000));
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_TRUE(program.readAllStandardOutput().startsWith("time to ink"));
}

TEST_F(KeptPlaceTest, AKilledViewerLosesNeitherTheStoreNorTheStoredPlace) {
    const QString strFile = WritePages("pages.pdf", 9);
    const std::string strStore = m_folder.filePath("home/velko-vkit").toStdString();
    for (const int nPage : {3, 6}) {
        QProcess program;
        Start(program, {"--page", QString::number(nPage), strFile});
        ASSERT_TRUE(program.waitForStarted());
        EXPECT_TRUE(RunUntil([&] { return KeptPage(strStore, strFile) == nPage - 1; }));
        program.kill(); // SIGKILL
        ASSERT_TRUE(program.waitForFinished());
        EXPECT_EQ(program.exitStatus(), QProcess::CrashExit);
        EXPECT_EQ(KeptPage(strStore, strFile), nPage - 1);
        EXPECT_EQ(vkit::RecentFiles(), std::vector{strFile.toStdString()});
    }
    EXPECT_TRUE(QDir(m_folder.filePath("home/velko-vkit")).entryList({"*.corrupt*"}).isEmpty());
}

}
}
