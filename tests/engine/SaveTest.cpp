// Documents that are written into files, and what is left when that fails.

#include <exception>
#include <functional>

#include "document/engine/HostServices.h"
#include "document/engine/SaveProgress.h"
#include "platform/foundation/Exception.h"
#include "tests/engine/EditFixture.h"
#include "tests/support/FileOnDisk.h"

namespace velko::testing {

using common::ErrorCode;
using common::Progressive;

namespace {

constexpr std::uint32_t kUpdate = pdf::PDFDoc::kIncremental;

std::shared_ptr<Progressive> Start(const Opened& opened, const std::string& strPath,
                                   std::uint32_t nFlags = kUpdate) {
    return opened.pDoc->StartSaveAs(Windows::Storage::StorageFile::FromPath(strPath), nFlags,
                                    nullptr);
}

// To its end: the last answer.
std::int32_t Finish(Progressive& progress) {
    std::int32_t nState = Progressive::kToBeContinued;
    while (nState == Progressive::kToBeContinued) {
        nState = progress.Continue();
    }
    return nState;
}

void Edit(const Opened& opened) {
    pdf::IAnnotEditor& editor = opened.Editor();
    const auto annots = editor.ListAnnots(0);
    editor.AddAnnot(0, RecordOf(kHighlight));
    pdf::AnnotRecord line = annots[1].record;
    line.nColor = 0x00FF00;
    editor.ChangeAnnot(0, annots[1].nId, line);
    editor.RemoveAnnot(0, annots[3].nId);
    editor.AddAnnot(1, RecordOf(kFreeText));
}

bool WasRepaired(const Opened& opened) {
    return dynamic_cast<pdf::IRepair&>(*opened.pDoc).WasRepaired();
}

// The document, with an error in its table of objects.
std::string Damaged(std::string strBytes) {
    strBytes.replace(strBytes.rfind("startxref"), 14, "startxref\n7777");
    return strBytes;
}

}

class SaveTest : public MuPdfTest {
protected:
    const TemporaryFolder m_folder;
};

// Saved, opened, edited and saved again, however the bytes came to be.
TEST_F(SaveTest, WhatWasSavedIsTheEditedDocument) {
    PdfOptions locked;
    locked.strUserPassword = "user";
    locked.strOwnerPassword = "owner";
    const std::string strPlain = AnnotatedDocument();
    struct Case {
        const char* szWhat;
        std::string strBytes;
        std::string strPassword;
        std::uint32_t nFlags;
        bool bUpdates;
    };
    const std::vector<Case> cases = {
        {"plain", strPlain, "", kUpdate, true},
        {"anew", strPlain, "", 0, false},
        {"encrypted", AnnotatedDocument(locked), "user", kUpdate, true},
        {"encrypted, by the owner", AnnotatedDocument(locked), "owner", kUpdate, true},
        {"encrypted, anew", AnnotatedDocument(locked), "user", 0, false},
        {"more behind its end", strPlain + "\nand more", "", kUpdate, true},
        {"more before its start", "and more\n" + strPlain, "", kUpdate, false},
        {"damaged", Damaged(strPlain), "", kUpdate, false},
        {"of several pieces", strPlain + std::string(3'000'000, '\n'), "", 0, false},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.szWhat);
        std::string strBytes = one.strBytes;
        for (int nRound = 0; nRound < 3; ++nRound) {
            const Opened opened(strBytes, one.strPassword);
            Edit(opened);
            const auto pSave = Start(opened, m_folder / "a.pdf", one.nFlags);
            ASSERT_EQ(Finish(*pSave), Progressive::kFinished);
            EXPECT_EQ(pSave->Continue(), Progressive::kFinished);
            EXPECT_EQ(dynamic_cast<common::ISaveProgress&>(*pSave).Share(), 1.0F);
            const std::string strSaved = m_folder.Read("a.pdf");
            const bool bUpdated = one.bUpdates || (nRound > 0 && one.nFlags == kUpdate);
            EXPECT_EQ(strSaved.compare(0, strBytes.size(), strBytes) == 0, bUpdated);
            const Opened again(strSaved, one.strPassword);
            ASSERT_EQ(again.pDoc->GetPageCount(), 2);
            EXPECT_FALSE(WasRepaired(again));
            EXPECT_EQ(again.pDoc->GetEncryptionType(), opened.pDoc->GetEncryptionType());
            for (const std::int32_t nPage : {0, 1}) {
                EXPECT_EQ(again.ListWithoutIds(nPage), opened.ListWithoutIds(nPage));
                EXPECT_EQ(Compare(*again.Picture(nPage), *opened.Picture(nPage)).nPixels, 0);
            }
            strBytes = strSaved;
        }
    }
    EXPECT_EQ(m_folder.Entries(), 1U);
}

TEST_F(SaveTest, EditsThatComeToNothingLeaveTheBytesAlone) {
    const std::string strBytes = Damaged(AnnotatedDocument());
    const Opened opened(strBytes);
    pdf::IAnnotEditor& editor = opened.Editor();
    const auto annots = editor.ListAnnots(0);
    for (int nRound = 0; nRound < 2; ++nRound) {
        ASSERT_EQ(Finish(*Start(opened, m_folder / "a.pdf")), Progressive::kFinished);
        EXPECT_EQ(m_folder.Read("a.pdf"), strBytes);
        const pdf::AnnotId nAdded = editor.AddAnnot(0, RecordOf(kInk));
        editor.RemoveAnnot(0, annots[0].nId);
        pdf::AnnotRecord line = annots[1].record;
        line.strContents = "not for long";
        editor.ChangeAnnot(0, annots[1].nId, line);
        editor.ChangeAnnot(0, annots[1].nId, annots[1].record);
        editor.RestoreAnnot(0, annots[0].nId);
        editor.RemoveAnnot(0, nAdded);
    }
}

// The file has what was there when the save began; what comes meanwhile waits for nothing.
TEST_F(SaveTest, EditsAndRendersGoOnBetweenItsSteps) {
    const Opened opened(AnnotatedDocument());
    opened.Editor().AddAnnot(0, RecordOf(kHighlight));
    const std::string strThen = opened.ListWithoutIds();
    const auto pThen = opened.Picture();
    const auto pSave = Start(opened, m_folder / "a.pdf");
    float fShare = 0.0F;
    for (std::int32_t nStep = 1; nStep != Progressive::kFinished;) {
        opened.Editor().AddAnnot(0, RecordOf(kSquare));
        opened.Picture(1);
        nStep = pSave->Continue();
        const float fNow = dynamic_cast<common::ISaveProgress&>(*pSave).Share();
        EXPECT_GE(fNow, fShare);
        fShare = fNow;
    }
    const Opened saved(m_folder.Read("a.pdf"));
    EXPECT_EQ(saved.ListWithoutIds(), strThen);
    EXPECT_EQ(Compare(*saved.Picture(), *pThen).nPixels, 0);
    EXPECT_EQ(opened.Editor().ListAnnots(1).size(), 1U);
}

// Whichever step is the last that is taken, and whichever read or call of the system
// fails: the file that was there is there, alone, or the new one is, whole.
TEST_F(SaveTest, OneThatDoesNotEndLeavesTheOldFile) {
    const std::string strBytes = AnnotatedDocument() + std::string(100'000, '\n');
    const Opened opened(strBytes);
    Edit(opened);
    const auto fnUntouched = [&] {
        EXPECT_EQ(m_folder.Read("a.pdf"), "old");
        EXPECT_EQ(m_folder.Entries(), 1U);
    };
    m_folder.Write("a.pdf", "old");
    for (int nSteps = 0;; ++nSteps) {
        const auto pSave = Start(opened, m_folder / "a.pdf");
        std::int32_t nState = Progressive::kToBeContinued;
        for (int i = 0; i < nSteps && nState == Progressive::kToBeContinued; ++i) {
            nState = pSave->Continue();
        }
        if (nState == Progressive::kFinished) {
            EXPECT_GT(nSteps, 10);
            break;
        }
        ASSERT_EQ(m_folder.Read("a.pdf"), "old");
    }
    m_folder.Write("a.pdf", "old");
    fnUntouched();
    for (const auto eFault :
         {MemoryReader::Fault::Refuse, MemoryReader::Fault::Raise, MemoryReader::Fault::Changed}) {
        for (int nRead = 1;; ++nRead) {
            ASSERT_LT(nRead, 1000);
            const int nFaults = opened.pReader->Faults();
            opened.pReader->FailRead(nRead, false, eFault);
            const auto pSave = Start(opened, m_folder / "a.pdf");
            const ErrorCode eCode = EngineCodeOf([&] { Finish(*pSave); });
            opened.pReader->StopFailing();
            if (opened.pReader->Faults() == nFaults) {
                EXPECT_EQ(eCode, ErrorCode::e_ErrSuccess);
                break;
            }
            EXPECT_EQ(eCode, eFault == MemoryReader::Fault::Changed ? ErrorCode::e_ErrConflict
                                                                    : ErrorCode::e_ErrFile);
            EXPECT_EQ(pSave->Continue(), 0) << "it has failed";
            fnUntouched();
        }
        m_folder.Write("a.pdf", "old");
    }
    bool bFailed = true;
    for (int nCall = 1; bFailed; ++nCall) {
        ASSERT_LT(nCall, 1000);
        StorageCalls calls;
        calls.Fail("pwrite", ENOSPC, nCall);
        bool bFull = false;
        try {
            Finish(*Start(opened, m_folder / "a.pdf"));
        } catch (const common::EngineException& error) {
            EXPECT_EQ(error.Code(), ErrorCode::e_ErrFile);
            try {
                std::rethrow_if_nested(error);
            } catch (const Platform::DiskFullException&) {
                bFull = true;
            }
        }
        bFailed = calls.Struck() != 0;
        EXPECT_EQ(bFull, bFailed) << "a host can tell what it was";
        if (bFailed) {
            fnUntouched();
        }
    }
}

// What the disk gives back is looked at, not what was meant to be written.
TEST_F(SaveTest, AFileThatIsNoGoodReplacesNone) {
    const Opened opened(AnnotatedDocument());
    Edit(opened);
    m_folder.Write("a.pdf", "old");
    int nFailed = 0;
    for (int nCall = 1; nCall <= 3; ++nCall) {
        StorageCalls calls;
        calls.Fail("pread", EIO, nCall);
        const ErrorCode eCode = EngineCodeOf([&] { Finish(*Start(opened, m_folder / "a.pdf")); });
        nFailed += eCode == ErrorCode::e_ErrFile ? 1 : 0;
        EXPECT_EQ(m_folder.Read("a.pdf") == "old", eCode == ErrorCode::e_ErrFile);
    }
    EXPECT_GT(nFailed, 0);
    const auto fnCode = [&](const std::string& strPath) {
        return EngineCodeOf([&] { Finish(*Start(opened, strPath)); });
    };
    EXPECT_EQ(fnCode(m_folder / "nowhere/a.pdf"), ErrorCode::e_ErrFile);
    EXPECT_EQ(fnCode(m_folder.Path()), ErrorCode::e_ErrFile);
    EXPECT_EQ(EngineCodeOf([&] { opened.pDoc->StartSaveAs(nullptr, 1, nullptr); }),
              ErrorCode::e_ErrParam);
}

}
