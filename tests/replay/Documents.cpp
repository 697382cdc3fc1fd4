#include "tests/replay/Documents.h"

#include <cstdlib>
#include <fstream>

namespace velko::testing {

DocumentsTest::DocumentsTest() {
    std::string strTemplate = (std::filesystem::temp_directory_path() / "velko-XXXXXX").string();
    EXPECT_NE(mkdtemp(strTemplate.data()), nullptr);
    m_folder = strTemplate;
}

DocumentsTest::~DocumentsTest() {
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

std::string DocumentsTest::Write(const std::string& strName, const std::string& strBytes) const {
    std::ofstream(PathOf(strName), std::ios::binary) << strBytes;
    return PathOf(strName);
}

std::string DocumentsTest::WritePages(const std::string& strName, int nPages) const {
    std::vector<PdfPage> pages;
    for (int n = 0; n < nPages; ++n) {
        pages.push_back(MarkedPage(n));
    }
    return Write(strName, MakePdf(pages));
}

PdfPage MarkedPage(int nPage) {
    PdfPage page;
    const std::string strShift = std::to_string(60 + nPage * 37 % 300);
    page.strContent = "1 0 0 rg 20 700 80 60 re f 0 0 1 rg 500 30 90 50 re f 0 0.6 0 rg " +
                      strShift + " 300 120 200 re f BT 0 0 0 rg /F1 24 Tf 72 640 Td (Page " +
                      std::to_string(nPage) + ") Tj ET";
    return page;
}

}
