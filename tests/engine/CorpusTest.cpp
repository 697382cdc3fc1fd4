// Files that other programs made: every kind of encryption, and whatever there is.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "document/engine/HostServices.h"
#include "tests/engine/EditFixture.h"
#include "tests/support/FileOnDisk.h"

namespace velko::testing {

using common::ErrorCode;
namespace fs = std::filesystem;

namespace {

std::string ReadFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

struct EncryptedFile {
    const char* szFile;
    const char* szUser;
    const char* szOwner;
    std::int32_t nType;
};

}

class CorpusTest : public MuPdfTest {};

TEST_F(CorpusTest, EveryKindOfEncryptionOpensAndSavesWithBothPasswords) {
    const fs::path folder = fs::path(VELKO_CORPUS) / "made";
    if (!fs::exists(folder)) {
        GTEST_SKIP() << "no corpus in " << folder;
    }
    for (const EncryptedFile& file :
         {EncryptedFile{"enc-rc4-40.pdf", "user", "owner", 1},
          EncryptedFile{"enc-rc4-128.pdf", "user", "owner", 2},
          EncryptedFile{"enc-aes-128.pdf", "user", "owner", 3},
          EncryptedFile{"enc-aes-256.pdf", "user", "owner", 5},
          EncryptedFile{"enc-aes-256-r5.pdf", "user", "owner", 5},
          EncryptedFile{"enc-owner-only.pdf", "", "owner", 5},
          EncryptedFile{"enc-utf8.pdf", "pa\xC3\x9Fw\xC3\xB6rt",
                        "\xD0\xBF\xD0\xB0\xD1\x80\xD0\xBE\xD0\xBB\xD1\x8C", 5}}) {
        SCOPED_TRACE(file.szFile);
        const auto pDoc = CreateDoc(std::make_shared<MemoryReader>(ReadFile(folder / file.szFile)));
        ASSERT_EQ(pDoc->Load("surely wrong"),
                  *file.szUser != '\0' ? ErrorCode::e_ErrPassword : ErrorCode::e_ErrSuccess);
        EXPECT_EQ(pDoc->GetEncryptionType(), file.nType) << "told before it opens";
        ASSERT_EQ(pDoc->Load(file.szUser), ErrorCode::e_ErrSuccess);
        EXPECT_EQ(pDoc->GetPasswordType(), 2);
        EXPECT_EQ(pDoc->GetEncryptionType(), file.nType);
        const TemporaryFolder saved;
        dynamic_cast<pdf::IAnnotEditor&>(*pDoc).AddAnnot(0, RecordOf(kNote));
        const auto pSave =
            pDoc->StartSaveAs(Windows::Storage::StorageFile::FromPath(saved / "a.pdf"),
                              pdf::PDFDoc::kIncremental, nullptr);
        while (pSave->Continue() == common::Progressive::kToBeContinued) {
        }
        for (const char* szPassword : {file.szUser, file.szOwner}) {
            const Opened again(saved.Read("a.pdf"), szPassword);
            const auto annots = again.Editor().ListAnnots(0);
            ASSERT_FALSE(annots.empty());
            EXPECT_EQ(annots.back().record.strContents, RecordOf(kNote).strContents);
        }
        ASSERT_EQ(pDoc->Load(file.szOwner), ErrorCode::e_ErrSuccess);
        EXPECT_EQ(pDoc->GetPasswordType(), 3);
        EXPECT_EQ(pDoc->GetUserPermissions(), 0xFFFFFFFFU);
    }
}

// Each that opens is saved with a mark on it, and opens again: those that are damaged too,
// of every kind of table of objects. Undamaged ones keep their own bytes.
TEST_F(CorpusTest, EveryFileIsSavedAsItIsWithAMarkOnIt) {
    const TemporaryFolder folder;
    int nSaved = 0;
    int nAnew = 0;
    for (const char* szFolder : {"made", "open"}) {
        const fs::path files = fs::path(VELKO_CORPUS) / szFolder;
        if (!fs::exists(files)) {
            GTEST_SKIP() << "no corpus in " << files;
        }
        for (const auto& file : fs::directory_iterator(files)) {
            const std::string strBytes = ReadFile(file.path());
            const Opened opened(strBytes);
            if (opened.pDoc->GetPageCount() == 0) {
                continue;
            }
            SCOPED_TRACE(file.path());
            const bool bRepaired = dynamic_cast<pdf::IRepair&>(*opened.pDoc).WasRepaired();
            opened.Editor().AddAnnot(0, RecordOf(kHighlight));
            const auto pSave =
                opened.pDoc->StartSaveAs(Windows::Storage::StorageFile::FromPath(folder / "a.pdf"),
                                         pdf::PDFDoc::kIncremental, nullptr);
            while (pSave->Continue() == common::Progressive::kToBeContinued) {
            }
            const std::string strSaved = folder.Read("a.pdf");
            const bool bUpdated = strSaved.compare(0, strBytes.size(), strBytes) == 0;
            EXPECT_TRUE(bUpdated || bRepaired);
            EXPECT_EQ(Opened(strSaved).ListWithoutIds(), opened.ListWithoutIds());
            ++nSaved;
            nAnew += bUpdated ? 0 : 1;
        }
    }
    EXPECT_GT(nSaved, 250);
    EXPECT_GT(nAnew, 5);
}

}
