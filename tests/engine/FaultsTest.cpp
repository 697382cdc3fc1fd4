// Reads that fail, memory that runs out, files that end early.

#include "engines/mupdf/Allocator.h"
#include "engines/mupdf/Context.h"
#include "tests/engine/MuPdfFixture.h"
#include "tests/support/pdf_writer/PdfWriter.h"

namespace velko::testing {

using common::ErrorCode;

namespace {

// Opens and draws two pages with their annotations; the code of the first
// failure. `pPicture` gets the picture of the second page.
ErrorCode Walk(pdf::PDFDoc& doc, std::shared_ptr<common::Bitmap>* pPicture) {
    const ErrorCode eLoad = doc.Load({});
    if (eLoad != ErrorCode::e_ErrSuccess) {
        return eLoad;
    }
    return EngineCodeOf([&] {
        for (std::int32_t i = 0; i < 2; ++i) {
            const auto pPage = doc.GetPage(i);
            View view = WholePage(*pPage);
            view.bAnnots = true;
            *pPicture = Render(pPage, view);
        }
    });
}

std::string WalkedDocument() {
    PdfOptions options;
    options.extraObjects = {FormObject(50, 50, "0 1 1")};
    std::vector<PdfPage> pages(3);
    for (PdfPage& page : pages) {
        page.mediaBox = {0, 0, 200, 200};
        page.annots = {AnnotDictionary("Square", {100, 100, 150, 150}, kFirstExtraObject)};
        page.strContent = "BT /F1 20 Tf 10 150 Td (text) Tj ET 1 0 0 rg 10 10 50 50 re f\n";
        page.strContent.append(40'000, ' '); // so that every page needs reads of its own
    }
    return MakePdf(pages, options);
}

bool IsHonestFailure(ErrorCode eCode) {
    return eCode == ErrorCode::e_ErrFile || eCode == ErrorCode::e_ErrOutOfMemory;
}

}

class FaultsTest : public MuPdfTest {
protected:
    void SetUp() override {
        MuPdfTest::SetUp();
        const auto pDoc = CreateDoc(std::make_shared<MemoryReader>(m_strBytes));
        ASSERT_EQ(Walk(*pDoc, &m_pWanted), ErrorCode::e_ErrSuccess);
    }

    const std::string m_strBytes = WalkedDocument();
    std::shared_ptr<common::Bitmap> m_pWanted;
};

// Never a wrong picture: either the failure shows, or the picture is whole.
TEST_F(FaultsTest, EveryFailedReadShowsAndPasses) {
    for (const auto eFault : {MemoryReader::Fault::Refuse, MemoryReader::Fault::Raise}) {
        bool bStruck = true;
        for (int nRead = 1; bStruck; ++nRead) {
            ASSERT_LT(nRead, 1000);
            const auto pReader = std::make_shared<MemoryReader>(m_strBytes);
            pReader->FailRead(nRead, false, eFault);
            const auto pDoc = CreateDoc(pReader);
            std::shared_ptr<common::Bitmap> pPicture;
            const ErrorCode eCode = Walk(*pDoc, &pPicture);
            bStruck = pReader->Faults() > 0;
            EXPECT_EQ(eCode, bStruck ? ErrorCode::e_ErrFile : ErrorCode::e_ErrSuccess) << nRead;
            pReader->StopFailing();

            ASSERT_EQ(Walk(*pDoc, &pPicture), ErrorCode::e_ErrSuccess) << nRead;
            EXPECT_EQ(Compare(*pPicture, *m_pWanted).nPixels, 0) << nRead;
        }
    }
}

// The document recovers by itself, without another `Load`.
TEST_F(FaultsTest, ALoadedDocumentComesBackAfterReadsFailed) {
    bool bStruck = true;
    for (int nRead = 1; bStruck; ++nRead) {
        ASSERT_LT(nRead, 1000);
        const auto pReader = std::make_shared<MemoryReader>(m_strBytes);
        const auto pDoc = CreateDoc(pReader);
        ASSERT_EQ(pDoc->Load({}), ErrorCode::e_ErrSuccess);
        const auto pPage = pDoc->GetPage(1);
        View view = WholePage(*pPage);
        view.bAnnots = true;
        pReader->FailRead(nRead, true);
        EngineCodeOf([&] { Render(pPage, view); });
        bStruck = pReader->Faults() > 0;
        if (bStruck) {
            EXPECT_EQ(EngineCodeOf([&] { Render(pPage, view); }), ErrorCode::e_ErrFile) << nRead;
        }
        pReader->StopFailing();
        EXPECT_EQ(Compare(*Render(pPage, view), *m_pWanted).nPixels, 0) << nRead;
    }
}

TEST_F(FaultsTest, AFileThatWasWrittenToIsNotCalledUnreadable) {
    const auto pReader = std::make_shared<MemoryReader>(m_strBytes);
    const auto pDoc = CreateDoc(pReader);
    pReader->FailRead(1, true, MemoryReader::Fault::Changed);
    EXPECT_EQ(pDoc->Load({}), ErrorCode::e_ErrConflict);
    pReader->StopFailing();
    ASSERT_EQ(pDoc->Load({}), ErrorCode::e_ErrSuccess);
    pReader->FailRead(1, true, MemoryReader::Fault::Changed);
    EXPECT_EQ(EngineCodeOf([&] { pDoc->GetPage(2)->StartParse(0, nullptr, 0); }),
              ErrorCode::e_ErrConflict);
}

TEST_F(FaultsTest, EveryRefusedAllocationIsSurvived) {
    bool bStruck = true;
    for (std::uint64_t nCall = 1; bStruck; nCall += 1 + nCall / 40) {
        engines::mupdf::EmptyStore();
        const auto pDoc = CreateDoc(std::make_shared<MemoryReader>(m_strBytes));
        std::shared_ptr<common::Bitmap> pPicture;
        engines::mupdf::RefuseAllocation(nCall);
        const ErrorCode eCode = Walk(*pDoc, &pPicture);
        bStruck = engines::mupdf::RefuseAllocation(0);
        if (bStruck && eCode != ErrorCode::e_ErrSuccess) {
            EXPECT_TRUE(IsHonestFailure(eCode)) << nCall << " " << common::ErrorCodeName(eCode);
        } else if (eCode == ErrorCode::e_ErrSuccess) {
            EXPECT_EQ(Compare(*pPicture, *m_pWanted).nPixels, 0) << nCall;
        }
        ASSERT_EQ(Walk(*pDoc, &pPicture), ErrorCode::e_ErrSuccess) << nCall;
        EXPECT_EQ(Compare(*pPicture, *m_pWanted).nPixels, 0) << nCall;
    }
}

TEST_F(FaultsTest, TruncatedAndMutatedFilesAnswerACode) {
    const std::string strWhole = MixedDocument(3);
    std::uint32_t nSeed = 12345;
    int nOpened = 0;
    for (int i = 0; i < 300; ++i) {
        std::string strBytes = strWhole;
        nSeed = nSeed * 1664525U + 1013904223U;
        if (i % 3 == 0) {
            strBytes.resize(nSeed % strWhole.size());
        } else {
            for (int nByte = 0; nByte < 1 + i % 20; ++nByte) {
                nSeed = nSeed * 1664525U + 1013904223U;
                strBytes[(nSeed >> 8U) % strBytes.size()] = static_cast<char>(nSeed >> 3U);
            }
        }
        const auto pReader = std::make_shared<MemoryReader>(strBytes);
        const auto pDoc = CreateDoc(pReader);
        const ErrorCode eCode = pDoc->Load({});
        if (eCode == ErrorCode::e_ErrSuccess) {
            ++nOpened;
            ASSERT_GT(pDoc->GetPageCount(), 0);
            for (std::int32_t nPage = 0; nPage < std::min(pDoc->GetPageCount(), 4); ++nPage) {
                const auto pPage = pDoc->GetPage(nPage);
                View view = WholePage(*pPage);
                view.nPageWidth = view.nWidth = 150;
                view.nPageHeight = view.nHeight = 100;
                EngineCodeOf([&] { Render(pPage, view); });
            }
        } else {
            EXPECT_TRUE(eCode == ErrorCode::e_ErrFormat || eCode == ErrorCode::e_ErrPassword)
                << common::ErrorCodeName(eCode);
            EXPECT_EQ(pDoc->GetPageCount(), 0);
        }
        EXPECT_EQ(pReader->BadReads(), 0);
    }
    EXPECT_GT(nOpened, 100) << "most damage is repaired";
}

// Page counts and trees that cannot be true.
TEST_F(FaultsTest, LyingFilesCostNothing) {
    PdfPage page;
    std::string strBytes = MakePdf({page, page});
    const std::size_t nCount = strBytes.find("/Count 2");
    ASSERT_NE(nCount, std::string::npos);
    for (const char* szCount : {"/Count 9", "/Count 1", "/Count 2000000000"}) {
        SCOPED_TRACE(szCount);
        std::string strLie = strBytes;
        strLie.replace(nCount, 8, szCount);
        const auto pDoc = OpenDoc(strLie);
        ASSERT_TRUE(pDoc);
        ASSERT_EQ(pDoc->GetPageCount(), 2);
        EXPECT_FLOAT_EQ(pDoc->GetPage(1)->GetWidth(), 612.0F);
        EXPECT_EQ(EngineCodeOf([&] { pDoc->GetPage(1)->StartParse(0, nullptr, 0); }),
                  ErrorCode::e_ErrSuccess);
    }
}

// No white paper for a page that is not there.
TEST_F(FaultsTest, PageTreesWithHolesAndWithoutAnEndAreLeft) {
    const std::string strBytes = MakePdf(std::vector<PdfPage>(3));
    const std::size_t nKids = strBytes.find("/Kids [10 0 R");
    ASSERT_NE(nKids, std::string::npos);
    for (const auto& [szKids, bOthersThere] : {std::pair("/Kids [99 0 R", true), // no such object
                                               std::pair("/Kids [02 0 R", false)}) { // its own root
        SCOPED_TRACE(szKids);
        std::string strBroken = strBytes;
        const auto pDoc = OpenDoc(strBroken.replace(nKids, 13, szKids));
        ASSERT_TRUE(pDoc);
        ASSERT_EQ(pDoc->GetPageCount(), 3) << "as the file says";
        for (std::int32_t i = 0; i < 3; ++i) {
            EXPECT_EQ(EngineCodeOf([&] { pDoc->GetPage(i)->StartParse(0, nullptr, 0); }),
                      i > 0 && bOthersThere ? ErrorCode::e_ErrSuccess : ErrorCode::e_ErrNotFound);
        }
    }

    // Branches that fan out: four to the sixtieth leaves, which are one page.
    PdfOptions options;
    for (int i = 0; i < 60; ++i) {
        const std::string strNext = std::to_string(kFirstExtraObject + i + 1) + " 0 R ";
        options.extraObjects.push_back("<< /Type /Pages /Count 1000000 /Kids [" + strNext +
                                       strNext + strNext + strNext + "] >>");
    }
    options.strCatalogExtra = "/Pages " + std::to_string(kFirstExtraObject) + " 0 R";
    const auto pFan = CreateDoc(std::make_shared<MemoryReader>(MakePdf({PdfPage()}, options)));
    EXPECT_EQ(pFan->Load({}), ErrorCode::e_ErrSuccess);
    EXPECT_LE(pFan->GetPageCount(), 100) << "no more than the file has objects";
}

}
