// Saving by the control: its questions, what ends them, and edits that show.

#include <sys/stat.h>

#include "control/events/SaveProgressEventArgs.h"
#include "document/SaveInProgressException.h"
#include "document/engine/AnnotEditor.h"
#include "platform/fake/FakeDialogs.h"
#include "platform/storage/FileChangedException.h"
#include "platform/ui/Window.h"
#include "tests/control/ControlFixture.h"

namespace velko::testing {
namespace {

using pdf::IAnnotEditor;

velko::pdf::AnnotRecord Mark() {
    velko::pdf::AnnotRecord record;
    record.nType = 9;
    return record;
}

class SaveTest : public ControlFixture {
protected:
    using Saving = concurrency::task<bool>;

    SaveTest() {
        pWindow->Dialogs(pDialogs);
        Show();
        EXPECT_EQ(Open("a.pdf"), ErrorCode::e_ErrSuccess);
        strOld = folder.Read("a.pdf");
    }
    ~SaveTest() override { pWindow.reset(); }

    std::string Saved(int nEdits = 0) const {
        return strOld + "edits " + std::to_string(nEdits) + "\n";
    }
    template <class Task>
    void End(const Task& task) {
        ASSERT_TRUE(host.WaitUntil([&] { return task.is_done(); }));
        task.mark_observed();
    }
    bool Result(const Saving& saving) {
        End(saving);
        return saving.get();
    }
    Saving AskWhere() {
        ::chmod((folder / "a.pdf").c_str(), 0444);
        return pControl->SaveDocument();
    }
    // To the picker.
    Saving AskForFile() {
        Saving saving = AskWhere();
        pDialogs->Choose(0);
        return saving;
    }
    void ExpectNoDialog() {
        EXPECT_FALSE(pDialogs->IsMessageShown());
        EXPECT_FALSE(pDialogs->IsPickerShown());
    }
    void Edit(std::int32_t nPage) {
        const auto editing = pControl->EditPage(
            nPage, [=](IAnnotEditor& editor) { editor.AddAnnot(nPage, Mark()); });
        End(editing);
        editing.get();
        host.Drain();
    }

    const std::shared_ptr<Platform::Fake::FakeDialogs> pDialogs =
        std::make_shared<Platform::Fake::FakeDialogs>();
    std::shared_ptr<Windows::UI::Xaml::Window> pWindow =
        Windows::UI::Xaml::Window::Create(pControl);
    std::string strOld;
};

TEST_F(SaveTest, TheFileIsReplacedUnderARingWithProgress) {
    std::vector<float> progress;
    pControl->SaveProgressEvent.add([&](const auto&, const auto& pArgs) {
        EXPECT_EQ(pArgs->Document, pControl->GetPDFDoc());
        progress.push_back(pArgs->Done);
    });
    Edit(0);
    const Saving saving = pControl->SaveDocument();
    EXPECT_TRUE(Parts().IsProgressRingVisible());
    EXPECT_TRUE(Result(saving));
    EXPECT_FALSE(Parts().IsProgressRingVisible());
    EXPECT_EQ(progress.back(), 1.0F) << "told before the save ends";
    EXPECT_EQ(folder.Read("a.pdf"), Saved(1));
    EXPECT_TRUE(Result(pControl->SaveDocument()));
}

TEST_F(SaveTest, NothingIsSavedWithoutFileDocumentOrTheSettingsWish) {
    vkit::AppConfig::IsAutoSave(false);
    EXPECT_FALSE(Result(pControl->SaveDocument()));
    EXPECT_TRUE(Parts().IsProgressRingVisible()); // stays
    vkit::AppConfig::IsAutoSave(true);
    pControl->SetPDFDoc(pEngine->MakeLoadedDoc());
    EXPECT_FALSE(pControl->SaveDocument().get());
    pControl->CloseDocument();
    EXPECT_FALSE(pControl->SaveDocument().get());
    EXPECT_FALSE(pControl->SaveDocumentAs(File("b.pdf")).get());
    pControl->AcceptChangedFile().get();
    pControl->EditPage(0, [](IAnnotEditor&) { FAIL(); }).get();
    EXPECT_EQ(pEngine->Count(EngineOp::StartSaveAs), 0);
    pControl->Dispose();
    EXPECT_THROW(pControl->SaveDocument(), Platform::ObjectDisposedException);
}

TEST_F(SaveTest, AReadOnlyFileIsAskedFor) {
    Saving saving = AskWhere();
    EXPECT_FALSE(Parts().IsProgressRingVisible());
    const auto& question = pDialogs->Messages().back();
    EXPECT_EQ(question.strContent, "Save as annother PDF?");
    EXPECT_EQ(question.strTitle, "Save");
    EXPECT_EQ(question.labels, (Strings{"YES", "NO"}));
    EXPECT_EQ(question.nDefault, 0U);
    pDialogs->Choose(1);
    EXPECT_FALSE(Result(saving));
    saving = AskWhere();
    pDialogs->Choose(std::nullopt);
    EXPECT_FALSE(Result(saving));

    saving = AskForFile();
    const auto& picker = pDialogs->Pickers().back();
    EXPECT_EQ(picker.strName, "a.pdf");
    ASSERT_EQ(picker.types.size(), 1U);
    EXPECT_EQ(picker.types[0].strName, "PDF Files");
    EXPECT_EQ(picker.types[0].extensions, Strings{".pdf"});
    pDialogs->Pick(std::nullopt);
    End(saving);
    EXPECT_THROW(saving.get(), Platform::NullReferenceException);
    EXPECT_EQ(folder.Entries(), 1U);

    saving = AskForFile();
    pDialogs->Pick(folder / "copy.pdf");
    EXPECT_FALSE(Result(saving)); // although it is saved
    EXPECT_EQ(folder.Read("copy.pdf"), Saved());
    EXPECT_EQ(folder.Read("a.pdf"), strOld);
    EXPECT_EQ(pControl->GetDocumentFile()->Name(), "a.pdf");
    ExpectNoDialog();
}

// Whatever takes the document or the control away takes the question along.
TEST_F(SaveTest, AQuestionGoesWithWhateverItIsAbout) {
    const std::vector<std::function<void()>> ends = {
        [&] { pControl->CloseDocument(); },
        [&] { Open("b.pdf"); },
        [&] { pControl->SetPDFDoc(pEngine->MakeLoadedDoc()); },
        [&] { pControl->RaiseUnloaded(); },
        [&] { pControl->Dispose(); },
        [&] { pControl.reset(); }};
    for (const bool bAtPicker : {false, true}) {
        for (const auto& fnEnd : ends) {
            pWindow.reset();
            pControl = vkit::PDFViewCtrl::Create(); // each with one of its own
            pWindow = Windows::UI::Xaml::Window::Create(pControl);
            pWindow->Dialogs(pDialogs);
            Show();
            Open("a.pdf");
            const Saving saving = bAtPicker ? AskForFile() : AskWhere();
            ASSERT_TRUE(bAtPicker ? pDialogs->IsPickerShown() : pDialogs->IsMessageShown());
            if (&fnEnd == &ends.back()) {
                pWindow.reset(); // holds its content
            }
            fnEnd();
            End(saving);
            EXPECT_TRUE(saving.is_canceled());
            ExpectNoDialog();
        }
    }
    EXPECT_EQ(pEngine->Count(EngineOp::StartSaveAs), 0);
}

TEST_F(SaveTest, ClosingEndsASaveAndLeavesTheFile) {
    for (const bool bDispose : {false, true}) {
        pEngine->OnCall(EngineOp::SaveStep, [&](const auto& call) {
            if (call.nIndex == 0) {
                bDispose ? pControl->Dispose() : pControl->CloseDocument();
            }
        });
        Open("a.pdf");
        const Saving saving = pControl->SaveDocument();
        End(saving);
        EXPECT_TRUE(saving.is_canceled());
        EXPECT_EQ(folder.Read("a.pdf"), strOld);
    }
}

TEST_F(SaveTest, ASecondSaveIsRefusedAndHarmsNothing) {
    const Saving saving = pControl->SaveDocument();
    EXPECT_THROW(pControl->SaveDocument(), vkit::SaveInProgressException);
    EXPECT_THROW(pControl->SaveDocumentAs(File("b.pdf")), vkit::SaveInProgressException);
    EXPECT_TRUE(Result(saving));
    EXPECT_EQ(folder.Read("a.pdf"), Saved());
    const Saving asking = AskWhere();
    EXPECT_THROW(pControl->SaveDocument(), vkit::SaveInProgressException);
    pDialogs->Choose(1);
    EXPECT_FALSE(Result(asking));
    EXPECT_NO_THROW(AskWhere());
}

TEST_F(SaveTest, TheHostChecksAndAnswersForOthersWork) {
    pControl->SetSaveCheck([](const auto&) { throw std::runtime_error("not this one"); });
    Saving saving = pControl->SaveDocument();
    End(saving);
    EXPECT_THROW(saving.get(), std::runtime_error);
    EXPECT_FALSE(Parts().IsProgressRingVisible());
    pControl->SetSaveCheck(nullptr);
    folder.Replace("a.pdf", "of another program");
    saving = pControl->SaveDocument();
    End(saving);
    EXPECT_THROW(saving.get(), Platform::FileChangedException);
    EXPECT_EQ(folder.Read("a.pdf"), "of another program");
    End(pControl->AcceptChangedFile());
    EXPECT_TRUE(Result(pControl->SaveDocument()));
    EXPECT_EQ(folder.Read("a.pdf"), Saved());
}

TEST_F(SaveTest, SavedAsAnotherFileItIsThatFile) {
    EXPECT_TRUE(Result(pControl->SaveDocumentAs(StorageFile::FromPath(folder / "b.pdf"))));
    EXPECT_EQ(pControl->GetDocumentFile()->Name(), "b.pdf");
    Edit(0);
    EXPECT_TRUE(Result(pControl->SaveDocument()));
    EXPECT_EQ(folder.Read("b.pdf"), Saved(1));
    EXPECT_EQ(folder.Read("a.pdf"), strOld);
}

// --- edits that show ---

TEST_F(SaveTest, AnEditRendersItsPagesBlocksAlone) {
    for (const std::int32_t nMode : {1, 2, 3}) {
        pControl->SetPageLayoutMode(nMode);
        pControl->GotoFirstPage();
        host.Drain();
        pEngine->ClearLog();
        Edit(1);
        const int nOthers =
            pEngine->Count(EngineOp::StartRender) - pEngine->Count(EngineOp::StartRender, 1);
        EXPECT_EQ(nOthers, 0) << "layout " << nMode;
        const auto visible = pControl->GetVisiblePages();
        const bool bVisible = std::find(visible.begin(), visible.end(), 1) != visible.end();
        EXPECT_EQ(pEngine->Count(EngineOp::StartRender, 1) > 0, bVisible) << "layout " << nMode;
        EXPECT_TRUE(pControl->IsSharp());
    }
}

TEST_F(SaveTest, AnEditThatFailsHalfWayShowsItsHalf) {
    pEngine->ClearLog();
    const auto editing = pControl->EditPage(0, [](IAnnotEditor& editor) {
        editor.AddAnnot(0, Mark());
        throw std::runtime_error("half");
    });
    End(editing);
    host.Drain();
    EXPECT_THROW(editing.get(), std::runtime_error);
    EXPECT_GT(pEngine->Count(EngineOp::RenderAnnot, 0), 0);
}

TEST_F(SaveTest, AnEditOfADocumentThatGoesIsCancelled) {
    const auto editing = pControl->EditPage(0, [](IAnnotEditor&) { FAIL(); });
    pControl->CloseDocument();
    End(editing);
    EXPECT_TRUE(editing.is_canceled());
}

}
}
