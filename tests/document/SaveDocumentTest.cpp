// Saving: what is where after each step, whatever ends it; edits between renders.
#include <algorithm>

#include "document/SaveInProgressException.h"
#include "document/VXDocUtil.h"
#include "document/engine/AnnotClasses.h"
#include "document/engine/AnnotEditor.h"
#include "platform/foundation/Exception.h"
#include "platform/storage/FileChangedException.h"
#include "tests/document/DocumentFixture.h"

namespace velko::testing {
namespace {

using common::EngineException;
using common::ErrorCode;
using pdf::IAnnotEditor;
using vkit::VLK_Document;
using vkit::VXDocUtil;

constexpr const char* kOld = "the bytes that were opened\n";
constexpr const char* kSaved = "the bytes that were opened\nedits 0\n";
constexpr const char* kTemp = "/temperFile.pdf";

pdf::AnnotRecord Mark() {
    pdf::AnnotRecord record;
    record.nType = 9;
    return record;
}

class HostsOwnFailure : public std::runtime_error {
public:
    HostsOwnFailure() : std::runtime_error("the host does not want that file") {}
};

class SaveDocumentTest : public SteppedDocumentTest {
protected:
    SaveDocumentTest() {
        m_folder.Write("a.pdf", kOld);
        std::filesystem::create_directories(m_host.Data().LocalFolder());
        m_pDocument = Open();
    }
    ~SaveDocumentTest() override { m_pDocument->Dispose(); }

    DocumentPtr Open() {
        const auto pFile = TemporaryFolder::File(m_folder / "a.pdf");
        const auto nSize = static_cast<std::uint32_t>(m_folder.Read("a.pdf").size());
        const auto pDocument = Await(VLK_Document::OpenAsync(pFile, nSize, ""))->m_pDocument;
        pDocument->SetOwner(m_pOwner);
        return pDocument;
    }

    std::string TempPath() const { return m_host.Data().LocalFolder() + kTemp; }
    bool HasTemp() const { return std::filesystem::exists(TempPath()); }
    std::string Temp() const {
        std::ifstream in(TempPath(), std::ios::binary);
        return HasTemp() ? std::string(std::istreambuf_iterator<char>(in), {}) : "none";
    }
    void WriteTemp(const char* szBytes) const { std::ofstream(TempPath()) << szBytes; }

    void End(const concurrency::task<void>& saving) {
        ASSERT_TRUE(m_host.WaitUntil([&] { return saving.is_done(); }));
        saving.mark_observed();
        m_host.Drain();
    }
    void Save() { Await(m_pDocument->SaveAndReplaceAsync()); }

    DocumentPtr m_pDocument;
};

TEST_F(SaveDocumentTest, AFileIsReplacedAndTheDocumentReadsOnWhatItOpened) {
    WriteTemp("left by a save that was killed");
    std::string strChecked;
    bool bReplacedBefore = true;
    const auto fnCheck = [&](const auto& pFile) {
        strChecked = pFile->Path();
        bReplacedBefore = m_folder.Read("a.pdf") != kOld;
    };
    Await(m_pDocument->SaveAndReplaceAsync(fnCheck));
    EXPECT_EQ(m_folder.Read("a.pdf"), kSaved);
    EXPECT_FALSE(HasTemp());
    EXPECT_EQ(strChecked, TempPath());
    EXPECT_FALSE(bReplacedBefore);
    const Texts log = m_host.DebugOutput();
    EXPECT_EQ(Texts(log.end() - 2, log.end()),
              (Texts{"Prepare to copy and replace file.\n", "Prepare to delete temp file.\n"}));

    m_host.Drain();
    const std::vector<float> progress = m_pOwner->TakeProgress();
    EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
    EXPECT_EQ(progress.back(), 1.0F);
    EXPECT_GT(progress.size(), 2U);

    Save(); // always from the bytes that were opened, into the file that was saved
    EXPECT_EQ(m_folder.Read("a.pdf"), kSaved);
}

// A step of the chain: how it fails, and what that leaves.
struct Step {
    const char* szName;
    const char* szCall; // of the storage; empty: the engine or the check fails
    int nNth;
    const char* szFile;
    const char* szTemp;
};

class SaveStepTest : public SaveDocumentTest, public ::testing::WithParamInterface<Step> {};

TEST_P(SaveStepTest, FailsAndTheNextSaveIsGood) {
    const Step& step = GetParam();
    WriteTemp("stale");
    StorageCalls calls;
    VLK_Document::SaveCheck fnCheck;
    if (step.szCall[0] != '\0') {
        calls.Fail(step.szCall, ENOSPC, step.nNth);
    } else if (step.szName == std::string("Engine")) {
        m_pEngine->FailCall(EngineOp::SaveStep, 2, ErrorCode::e_ErrFile);
    } else {
        fnCheck = [](const auto&) { throw HostsOwnFailure(); };
    }
    const auto saving = m_pDocument->SaveAndReplaceAsync(fnCheck);
    End(saving);
    EXPECT_TRUE(saving.is_failure());
    EXPECT_EQ(m_folder.Read("a.pdf"), step.szFile);
    EXPECT_EQ(Temp(), step.szTemp);
    EXPECT_EQ(m_folder.Entries(), 1U);
    calls.Pass();
    Save();
    EXPECT_EQ(m_folder.Read("a.pdf"), kSaved);
    EXPECT_FALSE(HasTemp());
}

INSTANTIATE_TEST_SUITE_P(Steps, SaveStepTest,
                         ::testing::Values(Step{"Clear", "unlink", 1, kOld, "stale"},
                                           Step{"Create", "create", 1, kOld, "none"},
                                           Step{"Copy", "rename", 1, kOld, ""},
                                           Step{"Engine", "", 1, kOld, kOld},
                                           Step{"Check", "", 1, kOld, kSaved},
                                           Step{"Replace", "rename", 2, kOld, kSaved},
                                           Step{"Delete", "unlink", 2, kSaved, kSaved}),
                         [](const auto& info) { return std::string(info.param.szName); });

// Stops at the N-th system call, or step of the engine, for N = 1, 2, ... until a save
// meets none, and closes the document there.
TEST_F(SaveDocumentTest, ClosingAnywhereLeavesTheOldFileOrTheNewOne) {
    int nCancelled = 0;
    int nSaved = 0;
    for (int nStop = 1; nStop < 200 && nSaved < 5; ++nStop) {
        m_folder.Replace("a.pdf", kOld);
        m_pDocument = Open();
        StorageCalls calls;
        concurrency::event reached;
        concurrency::event goOn;
        std::atomic<bool> bReached = false;
        calls.Before(
            "",
            [&] {
                bReached = true;
                goOn.wait();
            },
            nStop);
        const auto saving = m_pDocument->SaveAndReplaceAsync();
        ASSERT_TRUE(m_host.WaitUntil([&] { return bReached || saving.is_done(); }));
        m_pDocument->Dispose();
        goOn.set();
        End(saving);
        EXPECT_FALSE(saving.is_failure()) << "at call " << nStop;
        EXPECT_EQ(m_folder.Read("a.pdf"), saving.is_value() ? kSaved : kOld) << "at " << nStop;
        EXPECT_EQ(m_folder.Entries(), 1U);
        nCancelled += saving.is_canceled() ? 1 : 0;
        nSaved += saving.is_value() ? 1 : 0;
        m_pOwner->TakeProgress();
    }
    EXPECT_GT(nCancelled, 5);
    EXPECT_EQ(nSaved, 5);
}

TEST_F(SaveDocumentTest, WhatTheEngineOnlyReportsEndsNoChain) {
    m_pEngine->SetSave({3, 0}); // failed, without raising
    Save();
    EXPECT_EQ(m_folder.Read("a.pdf"), kOld); // by way of the copy
    const auto pOther = Windows::Storage::StorageFile::FromPath(m_folder / "b.pdf");
    EXPECT_FALSE(Await(m_pDocument->SaveToFileAsync(pOther)));
    m_pEngine->SetSave({0, 0}); // nothing to save
    EXPECT_TRUE(Await(m_pDocument->SaveToFileAsync(pOther)));
    EXPECT_TRUE(Await(VXDocUtil::SaveDocument(m_pDocument->PdfDoc(), pOther, 1)));
    EXPECT_FALSE(Await(VXDocUtil::SaveDocument(nullptr, pOther, 1)));
    EXPECT_FALSE(Await(VXDocUtil::SaveDocument(m_pDocument->PdfDoc(), nullptr, 1)));
    EXPECT_EQ(m_folder.Entries(), 1U);
}

TEST_F(SaveDocumentTest, SomebodyElsesWorkIsNotReplaced) {
    m_folder.Replace("a.pdf", "another program's\n");
    EXPECT_THROW(Save(), Platform::FileChangedException);
    EXPECT_EQ(m_folder.Read("a.pdf"), "another program's\n");
    Await(m_pDocument->AcceptChangedFile());
    Save();
    EXPECT_EQ(m_folder.Read("a.pdf"), kSaved);
    m_folder.Write("a.pdf", "and again, in place, with another length\n");
    EXPECT_THROW(Save(), Platform::FileChangedException);
    std::filesystem::remove(m_folder / "a.pdf");
    EXPECT_THROW(Save(), Platform::FileNotFoundException);
    EXPECT_THROW(Await(m_pDocument->AcceptChangedFile()), Platform::FileNotFoundException);
}

TEST_F(SaveDocumentTest, AnotherFileBecomesTheDocumentsFile) {
    WriteTemp("another save's");
    const auto pOther = Windows::Storage::StorageFile::FromPath(m_folder / "b.pdf");
    EXPECT_TRUE(Await(m_pDocument->SaveToFileAsync(pOther)));
    EXPECT_EQ(Temp(), "another save's");
    Await(m_pDocument->RebindFile(pOther));
    m_folder.Write("a.pdf", "of no concern any more");
    Await(m_pDocument->EditAsync([](IAnnotEditor& editor) { editor.AddAnnot(0, Mark()); }));
    m_folder.Replace("a.pdf", kOld);
    Save();
    EXPECT_EQ(m_folder.Read("b.pdf"), std::string(kOld) + "edits 1\n");
    EXPECT_EQ(m_folder.Read("a.pdf"), kOld);
}

TEST_F(SaveDocumentTest, OneSaveAtATime) {
    auto pSave = m_pDocument->BeginSave();
    EXPECT_THROW(m_pDocument->BeginSave(), vkit::SaveInProgressException);
    pSave.reset();
    EXPECT_TRUE(m_pDocument->BeginSave());
    const auto pWithoutFile = WrapDocument();
    EXPECT_THROW(Await(pWithoutFile->SaveAndReplaceAsync()), Platform::NullReferenceException);
    EXPECT_THROW(Await(pWithoutFile->SaveToFileAsync(nullptr)), Platform::NullReferenceException);
    pWithoutFile->Dispose();
}

// --- edits ---

TEST_F(SaveDocumentTest, EditsRunInOrderAndPagesForgetWhatTheyKnew) {
    const auto pEntry = m_pDocument->EnsurePageEntry(0);
    m_pDocument->GetPageSize(0);
    EXPECT_TRUE(pEntry->m_bAnnotsLoaded);
    std::string strOrder;
    const auto first = m_pDocument->EditAsync([&](IAnnotEditor& editor) {
        strOrder += "1";
        editor.AddAnnot(0, Mark());
        throw HostsOwnFailure();
    });
    const auto second = m_pDocument->EditAsync([&](IAnnotEditor&) { strOrder += "2"; });
    EXPECT_THROW(Await(first), HostsOwnFailure);
    Await(second);
    EXPECT_EQ(strOrder, "12");
    EXPECT_FALSE(pEntry->m_bAnnotsLoaded);
    EXPECT_EQ(pEntry->m_pPageHandle->m_pPage->GetAnnotCount(), 1);
    m_pDocument->GetPageSize(0);
    EXPECT_TRUE(pEntry->m_bAnnotsLoaded);

    bool bRan = false;
    const auto late = m_pDocument->EditAsync([&](IAnnotEditor&) { bRan = true; });
    m_pDocument->Dispose();
    End(late);
    EXPECT_TRUE(late.is_canceled());
    EXPECT_FALSE(bRan);
}

class ReadOnlyDoc final : public pdf::PDFDoc {
public:
    ErrorCode Load(const std::string&) override { return ErrorCode::e_ErrSuccess; }
    std::int32_t GetPageCount() const override { return 1; }
    std::shared_ptr<pdf::PDFPage> GetPage(std::int32_t) override { return nullptr; }
    std::int32_t GetPasswordType() const override { return kNoPassword; }
    std::uint32_t GetUserPermissions() const override { return 0; }
    std::int32_t GetEncryptionType() const override { return 0; }
    std::shared_ptr<common::Progressive> StartSaveAs(std::shared_ptr<Windows::Storage::StorageFile>,
                                                     std::uint32_t,
                                                     common::IPauseCallback*) override {
        throw EngineException(ErrorCode::e_ErrUnsupported, "nothing is saved");
    }
};

TEST_F(SaveDocumentTest, AnEngineThatEditsNothingSaysSo) {
    const auto pDocument = std::make_shared<VLK_Document>(std::make_shared<ReadOnlyDoc>());
    try {
        Await(pDocument->EditAsync([](IAnnotEditor&) { FAIL(); }));
        FAIL();
    } catch (const EngineException& error) {
        EXPECT_EQ(error.Code(), ErrorCode::e_ErrUnsupported);
    }
    pDocument->Dispose();
}

using SaveThreadsTest = ThreadedDocumentTest;

TEST_F(SaveThreadsTest, AnEditWaitsForTheBlockThatIsDrawn) {
    const auto pDocument = WrapDocument();
    const auto pGate = m_pEngine->Hold(EngineOp::StartRender);
    const auto pPage = pDocument->PdfDoc()->GetPage(0);
    const auto rendering = concurrency::create_task([=] {
        vkit::BitmapBox box;
        return pDocument->RenderPageBlock(Block(pPage, 0, 0, 8, 8), box);
    });
    ASSERT_TRUE(pGate->WaitUntilReached());
    std::atomic<bool> bEdited = false;
    const auto editing =
        pDocument->EditAsync([&](IAnnotEditor&) { bEdited = rendering.is_done(); });
    pGate->Open();
    Await(editing);
    Await(rendering);
    EXPECT_EQ(m_pEngine->PeakRenders(), 1);
    pDocument->Dispose();
}

// --- typed annotations ---

struct NamedAnnot final : pdf::IAnnot {
    explicit NamedAnnot(std::int32_t nOfType) : nType(nOfType) {}
    std::int32_t GetType() const override { return nType; }
    const std::int32_t nType;
};

class NamedFactory final : public pdf::IAnnotFactory {
public:
    std::shared_ptr<pdf::IAnnot> Create(std::shared_ptr<pdf::IAnnot> pAnnot) override {
        pGiven = std::move(pAnnot);
        return pMade;
    }
    std::shared_ptr<pdf::IAnnot> pGiven;
    const std::shared_ptr<pdf::IAnnot> pMade = std::make_shared<NamedAnnot>(9);
};

TEST(GetAnnotObject, GivesTheObjectOfTheKindsClass) {
    const auto pFactory = std::make_shared<NamedFactory>();
    Platform::RegisterActivationFactory("velko.pdf.annots.Highlight", pFactory);
    const auto pHighlight = std::make_shared<NamedAnnot>(9);
    EXPECT_EQ(VXDocUtil::GetAnnotObject(pHighlight), pFactory->pMade);
    EXPECT_EQ(pFactory->pGiven, pHighlight);
    Platform::UnregisterActivationFactory("velko.pdf.annots.Highlight");
    EXPECT_THROW(VXDocUtil::GetAnnotObject(pHighlight), Platform::ClassNotRegisteredException);
    for (const std::int32_t nType : {18, 19, 22, 25, 0, -1, 28, 1 << 30}) {
        const auto pOther = std::make_shared<NamedAnnot>(nType);
        EXPECT_EQ(VXDocUtil::GetAnnotObject(pOther), pOther);
    }
    EXPECT_THROW(VXDocUtil::GetAnnotObject(std::shared_ptr<pdf::IAnnot>()),
                 Platform::InvalidCastException);
    EXPECT_THROW(VXDocUtil::GetAnnotObject(std::make_shared<ReadOnlyDoc>()),
                 Platform::InvalidCastException);
}

}
}
