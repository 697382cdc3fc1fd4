// Passwords in the ways in which programs wrote them into files.

#include "tests/engine/MuPdfFixture.h"
#include "tests/support/pdf_writer/PdfWriter.h"

namespace velko::testing {

namespace {

// As a program writes it that takes the bytes of a text for letters of their own.
constexpr const char* kBytesOfAccent = "caf\u00c3\u00a9";
constexpr const char* kAccent = "caf\u00e9";

struct PasswordCase {
    const char* szWritten;
    const char* szTyped;
};

}

class PasswordsTest : public MuPdfTest {};

TEST_F(PasswordsTest, OlderFilesOpenByLettersAndByBytes) {
    const PasswordCase cases[] = {
        {"plain", "plain"},
        {kAccent, kAccent},
        {kBytesOfAccent, kAccent},
        {"more than the thirty-two bytes that count", "more than the thirty-two bytes that are"},
    };
    PdfPage page;
    page.mediaBox = {0, 0, 20, 20};
    page.strContent = "1 0 0 rg 0 0 20 20 re f"; // which only the right key shows
    for (const auto eMethod :
         {PdfEncryption::Rc4Bits40, PdfEncryption::Rc4Bits128, PdfEncryption::AesBits128}) {
        for (const auto& test : cases) {
            for (const bool bOwner : {false, true}) {
                SCOPED_TRACE(std::to_string(static_cast<int>(eMethod)) +
                             (bOwner ? " owner " : " user ") + test.szWritten + " by " +
                             test.szTyped);
                PdfOptions options;
                options.eEncryption = eMethod;
                options.strUserPassword = bOwner ? "another" : test.szWritten;
                options.strOwnerPassword = bOwner ? test.szWritten : "another";
                const std::string strBytes = MakePdf({page}, options);
                EXPECT_FALSE(OpenDoc(strBytes, "cafe"));
                EXPECT_FALSE(OpenDoc(strBytes, "\u041f\u042d"));
                const auto pDoc = OpenDoc(strBytes, test.szTyped);
                ASSERT_TRUE(pDoc);
                EXPECT_EQ(pDoc->GetPasswordType(), bOwner ? 3 : 2);
                const auto pPage = pDoc->GetPage(0);
                EXPECT_EQ(PixelAt(*Render(pPage, WholePage(*pPage)), 10, 10), 0xFFFF0000U);
            }
        }
    }
}

}
