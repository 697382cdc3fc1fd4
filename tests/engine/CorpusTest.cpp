// Real and broken files: each ends as its index says.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>

#include "tests/engine/MuPdfFixture.h"

namespace velko::testing {

using common::ErrorCode;
namespace fs = std::filesystem;

namespace {

using Row = std::map<std::string, std::string>;

std::vector<std::string> Columns(const std::string& strLine) {
    std::vector<std::string> columns;
    std::istringstream line(strLine);
    for (std::string strColumn; std::getline(line, strColumn, '\t');) {
        columns.push_back(strColumn);
    }
    return columns;
}

std::vector<Row> ReadIndex(const fs::path& path) {
    std::ifstream file(path);
    std::string strLine;
    std::getline(file, strLine);
    const std::vector<std::string> names = Columns(strLine);
    std::vector<Row> rows;
    while (std::getline(file, strLine)) {
        const std::vector<std::string> columns = Columns(strLine);
        Row row;
        for (std::size_t i = 0; i < std::min(names.size(), columns.size()); ++i) {
            row[names[i].substr(0, names[i].find(' '))] = columns[i];
        }
        rows.push_back(row);
    }
    return rows;
}

std::string ReadFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The user's password of "user / owner", or the only one.
std::string PasswordOf(const Row& row) {
    const std::string& strBoth = row.at("password");
    return strBoth.substr(0, strBoth.find(" / "));
}

void DrawFirstPages(pdf::PDFDoc& doc) {
    constexpr std::int32_t kMaxPages = 3;
    constexpr std::int32_t kSide = 400;
    for (std::int32_t i = 0; i < std::min(doc.GetPageCount(), kMaxPages); ++i) {
        const auto pPage = doc.GetPage(i);
        View view = WholePage(*pPage);
        view.nWidth = view.nPageWidth = kSide;
        view.nHeight = view.nPageHeight = kSide;
        view.bAnnots = true;
        EXPECT_EQ(EngineCodeOf([&] { Render(pPage, view); }), ErrorCode::e_ErrSuccess);
        view.nBackColor = kBlack;
        view.nForeColor = kWhite;
        EXPECT_EQ(EngineCodeOf([&] { Render(pPage, view); }), ErrorCode::e_ErrSuccess);
    }
}

void CheckRow(const fs::path& folder, const Row& row) {
    const auto pReader = std::make_shared<MemoryReader>(ReadFile(folder / row.at("file")));
    const auto pDoc = CreateDoc(pReader);
    const std::string& strExpected = row.at("expected");
    ErrorCode eCode = pDoc->Load({});
    if (strExpected == "format error") {
        EXPECT_EQ(eCode, ErrorCode::e_ErrFormat);
        return;
    }
    if (strExpected == "password") {
        EXPECT_EQ(eCode, ErrorCode::e_ErrPassword);
        EXPECT_EQ(pDoc->Load("surely wrong"), ErrorCode::e_ErrPassword);
        EXPECT_NE(pDoc->GetEncryptionType(), 0) << "told before it opens";
        eCode = pDoc->Load(PasswordOf(row));
        EXPECT_NE(pDoc->GetPasswordType(), pdf::PDFDoc::kNoPassword);
    }
    ASSERT_EQ(eCode, ErrorCode::e_ErrSuccess);
    EXPECT_EQ(pDoc->GetPageCount(), std::stoi(row.at("pages")));
    DrawFirstPages(*pDoc);
    EXPECT_EQ(pReader->BadReads(), 0);
}

}

class CorpusTest : public MuPdfTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(CorpusTest, EveryFileEndsAsItsIndexSays) {
    const fs::path folder = fs::path(VELKO_CORPUS) / GetParam();
    if (!fs::exists(folder / "INDEX.tsv")) {
        GTEST_SKIP() << "no corpus in " << folder;
    }
    // A page that takes for ever is cut short; the files stay what they are.
    engines::mupdf::SetBudgets(
        {.parse = std::chrono::milliseconds(2000), .render = std::chrono::milliseconds(1000)});
    int nFiles = 0;
    for (const Row& row : ReadIndex(folder / "INDEX.tsv")) {
        if (fs::exists(folder / row.at("file"))) {
            SCOPED_TRACE(row.at("file"));
            CheckRow(folder, row);
            ++nFiles;
        }
    }
    EXPECT_GT(nFiles, 0);
}

INSTANTIATE_TEST_SUITE_P(Folders, CorpusTest, ::testing::Values("made", "open"));

struct EncryptedFile {
    const char* szFile;
    const char* szUser;
    const char* szOwner;
    std::int32_t nType;
};

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
        ASSERT_EQ(pDoc->Load(file.szUser), ErrorCode::e_ErrSuccess);
        EXPECT_EQ(pDoc->GetPasswordType(), 2);
        EXPECT_EQ(pDoc->GetEncryptionType(), file.nType);
        ASSERT_EQ(pDoc->Load(file.szOwner), ErrorCode::e_ErrSuccess);
        EXPECT_EQ(pDoc->GetPasswordType(), 3);
        EXPECT_EQ(pDoc->GetUserPermissions(), 0xFFFFFFFFU);
    }
}

}
