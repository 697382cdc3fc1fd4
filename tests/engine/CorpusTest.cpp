// Every kind of encryption, by files that other programs made.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/engine/MuPdfFixture.h"

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

TEST_F(CorpusTest, EveryKindOfEncryptionOpensWithBothPasswords) {
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
        ASSERT_EQ(pDoc->Load(file.szOwner), ErrorCode::e_ErrSuccess);
        EXPECT_EQ(pDoc->GetPasswordType(), 3);
        EXPECT_EQ(pDoc->GetUserPermissions(), 0xFFFFFFFFU);
    }
}

}
