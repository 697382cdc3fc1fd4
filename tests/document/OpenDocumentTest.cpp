// From a file and a password to a document, or to the reason why not.
#include <regex>

#include "platform/foundation/Exception.h"
#include "tests/document/DocumentFixture.h"

namespace velko::testing {
namespace {

using common::ErrorCode;
using vkit::VLK_Document;
using ResultPtr = std::shared_ptr<vkit::VLK_DocOpenResult>;

class OpenDocumentTest : public SteppedDocumentTest {
protected:
    ResultPtr Open(const std::shared_ptr<Windows::Storage::StorageFile>& pFile,
                   const std::string& strPassword = {}) {
        const auto nSize = static_cast<std::uint32_t>(std::filesystem::file_size(pFile->Path()));
        return Await(VLK_Document::OpenAsync(pFile, nSize, strPassword));
    }

    StorageCalls m_calls;
};

TEST_F(OpenDocumentTest, WithoutAFileItEndsAtOnce) {
    const auto pending = VLK_Document::OpenAsync(nullptr, 100, "");
    ASSERT_TRUE(pending.is_done());
    EXPECT_EQ(pending.get()->m_nErrorCode, ErrorCode::e_ErrUnknown);
    EXPECT_EQ(pending.get()->m_pDocument, nullptr);
    EXPECT_TRUE(m_host.DebugOutput().empty());
}

TEST_F(OpenDocumentTest, GoodFileOpensOnThePoolAndTellsItsFacts) {
    m_pEngine->SetLoadReads(true);
    m_pEngine->SetPasswords("user", "owner");
    m_pEngine->SetPermissions(0xFFFFF0C0U);
    const auto pFile = MakeFile();
    const auto pending = VLK_Document::OpenAsync(pFile, 2000, "user");
    EXPECT_TRUE(m_pEngine->Calls().empty() && m_calls.Count("pread") == 0)
        << "the caller's thread does nothing";
    const ResultPtr pResult = Await(pending);
    ASSERT_EQ(pResult->m_nErrorCode, ErrorCode::e_ErrSuccess);
    const VLK_Document& document = *pResult->m_pDocument;
    EXPECT_EQ(document.PageCount(), 3);
    EXPECT_EQ(document.PasswordType(), 2);
    EXPECT_EQ(document.Permissions(), static_cast<std::int32_t>(0xFFFFF0C0U));
    EXPECT_EQ(document.FileSize(), 2000U);
    EXPECT_EQ(document.File(), pFile);
    EXPECT_EQ(document.RenderFlags(), 3U);
    EXPECT_EQ(m_calls.Count("pread"), 1) << "the engine reads from the head in memory";
    EXPECT_EQ(m_pEngine->Count(EngineOp::GetPage), 0) << "no page is touched";
}

TEST_F(OpenDocumentTest, LogsTheLoadAndItsTimeAroundIt) {
    std::size_t nLinesAtLoad = 0;
    m_pEngine->OnCall(EngineOp::Load,
                      [&](const EngineCall&) { nLinesAtLoad = m_host.DebugOutput().size(); });
    Open(MakeFile());
    const Texts texts = m_host.DebugOutput();
    ASSERT_EQ(texts.size(), 2U);
    EXPECT_EQ(nLinesAtLoad, 1U);
    EXPECT_EQ(texts[0], "Doc start load: \n");
    EXPECT_TRUE(std::regex_match(texts[1], std::regex("Doc load use: [0-9]+\n"))) << texts[1];
}

TEST_F(OpenDocumentTest, RefusedFileGivesTheCodeAndTheDocument) {
    for (const ErrorCode eCode : {ErrorCode::e_ErrFile, ErrorCode::e_ErrFormat,
                                  ErrorCode::e_ErrPassword, ErrorCode::e_ErrOutOfMemory}) {
        m_pEngine->QueueLoadResult(eCode);
        const ResultPtr pResult = Open(MakeFile());
        EXPECT_EQ(pResult->m_nErrorCode, eCode);
        ASSERT_NE(pResult->m_pDocument, nullptr);
        EXPECT_EQ(pResult->m_pDocument->PageCount(), 0);
        EXPECT_EQ(pResult->m_pDocument->PasswordType(), 1);
    }
}

TEST_F(OpenDocumentTest, PasswordCanBeTriedAgain) {
    m_pEngine->SetPasswords("user", "owner");
    const ResultPtr pResult = Open(MakeFile(), "wrong");
    ASSERT_EQ(pResult->m_nErrorCode, ErrorCode::e_ErrPassword);
    VLK_Document& document = *pResult->m_pDocument;
    EXPECT_FALSE(document.ReloadWithPassword("wrong too"));
    EXPECT_EQ(document.PageCount(), 0);
    EXPECT_FALSE(document.PasswordApplied());
    EXPECT_TRUE(document.ReloadWithPassword("owner"));
    EXPECT_EQ(document.PageCount(), 3);
    EXPECT_EQ(document.PasswordType(), 3);
    EXPECT_TRUE(document.PasswordApplied());
    EXPECT_FALSE(document.ReloadWithPassword("wrong again"));
    EXPECT_EQ(document.PageCount(), 3) << "a failed try leaves all as it was";
    EXPECT_TRUE(document.PasswordApplied());
}

TEST_F(OpenDocumentTest, FailureThatIsNoAnswerEndsTheTaskAndLeavesNothing) {
    m_pEngine->FailCall(EngineOp::CreateDoc, 1);
    EXPECT_THROW(Open(MakeFile()), common::EngineException);
    EXPECT_EQ(m_pEngine->LiveDocs(), 0);
    Platform::UnregisterActivationFactory(pdf::kPDFDocClass);
    EXPECT_THROW(Open(MakeFile()), Platform::ClassNotRegisteredException);
}

TEST_F(OpenDocumentTest, FileTooLargeIsRefusedBeforeTheEngineSeesIt) {
    EXPECT_THROW(Await(VLK_Document::OpenAsync(MakeFile(), 0x80000000U, "")),
                 Platform::InvalidArgumentException);
    // The size handed over is the low half of the real one.
    const auto pCut = MakeFile((std::uint64_t{1} << 32U) + 2000);
    EXPECT_THROW(Await(VLK_Document::OpenAsync(pCut, 2000, "")),
                 Platform::InvalidArgumentException);
    EXPECT_EQ(m_pEngine->Count(EngineOp::CreateDoc), 0);
}

// The head, the engine's read at the end: whichever of them fails, the open
// ends, and the document stays good for another try.
TEST_F(OpenDocumentTest, EveryFailingReadLeavesAUsableDocument) {
    m_pEngine->SetLoadReads(true);
    const auto pFile = MakeFile(31457280 + 1000);
    int nUnreadable = 0;
    bool bMet = true;
    for (int nRead = 1; bMet; ++nRead) {
        ASSERT_LT(nRead, 10);
        m_calls.Fail("pread", EIO, nRead);
        const ResultPtr pResult = Open(pFile);
        bMet = m_calls.Struck() > 0;
        m_calls.Pass();
        nUnreadable += pResult->m_nErrorCode == ErrorCode::e_ErrFile ? 1 : 0;
        EXPECT_TRUE(nRead > 1 || pResult->m_nErrorCode == ErrorCode::e_ErrSuccess)
            << "a lost head is read anew";
        ASSERT_NE(pResult->m_pDocument, nullptr);
        EXPECT_TRUE(pResult->m_pDocument->ReloadWithPassword("")) << "after read " << nRead;
        EXPECT_EQ(pResult->m_pDocument->PageCount(), 3);
    }
    EXPECT_EQ(nUnreadable, 1);
    m_calls.Fail("pread", EIO, 1, true);
    for (const std::uint64_t nSize : {2000, 31457280 + 1000}) {
        EXPECT_EQ(Open(MakeFile(nSize))->m_nErrorCode, ErrorCode::e_ErrFile) << nSize;
    }
}

TEST_F(OpenDocumentTest, AnEncryptionThatIsNotKnownIsAKindOfItsOwn) {
    for (const auto& [nType, nKind] : {std::pair(-2, 0), std::pair(-1, 4), std::pair(3, 3)}) {
        m_pEngine->SetEncryptionType(nType);
        EXPECT_EQ(WrapDocument()->GetEncryptKind(), nKind) << nType;
    }
}

}
}
