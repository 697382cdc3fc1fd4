#include "tests/engine/MuPdfFixture.h"

#include "engines/mupdf/Context.h"
#include "engines/mupdf/PageCache.h"
#include "engines/mupdf/Register.h"
#include "tests/support/pdf_writer/PdfWriter.h"

namespace velko::testing {

void MuPdfTest::SetUp() {
    engines::mupdf::RegisterEngine();
}

void MuPdfTest::TearDown() {
    engines::mupdf::SetBudgets({});
    engines::mupdf::PageCache::Instance().SetLimits({});
}

std::string MixedDocument(int nPages) {
    PdfOptions options;
    PdfImage image{16, 16, {}};
    for (int i = 0; i < 16 * 16; ++i) {
        image.strPixels += static_cast<char>(i);
        image.strPixels += static_cast<char>(255 - i);
        image.strPixels += static_cast<char>(i * 7);
    }
    options.images.push_back(image);
    std::vector<PdfPage> pages(static_cast<std::size_t>(nPages));
    for (int i = 0; i < nPages; ++i) {
        PdfPage& page = pages[static_cast<std::size_t>(i)];
        page.mediaBox = {0.0, 0.0, 300.0, 200.0};
        page.strContent = "BT /F1 18 Tf 20 160 Td (Page " + std::to_string(i + 1) +
                          " of a document) Tj 0 -22 Td (with more than one line) Tj ET\n"
                          "0.2 0.4 0.8 RG 3 w 20 20 m 80 120 140 -40 200 100 c S\n"
                          "0.9 0.3 0.1 rg 30 40 60 30 re f\n"
                          "q 60 0 0 60 210 20 cm /I1 Do Q\n";
    }
    return MakePdf(pages, options);
}

std::string StrokesDocument(int nStrokes) {
    PdfPage page;
    page.strContent = "0.5 w\n";
    for (int i = 0; i < nStrokes; ++i) {
        const std::string strA = std::to_string(i * 37 % 612);
        const std::string strB = std::to_string(i * 101 % 792);
        page.strContent += strA + " 0 m " + strB + " 300 " + strA + " 500 612 " + strB + " c S\n";
    }
    return MakePdf({page});
}

std::string NestedFormsDocument(int nDepth, int nFurtherPages) {
    PdfOptions options;
    for (int i = 0; i < nDepth; ++i) {
        std::string strContent;
        for (int nCall = 0; nCall < 10; ++nCall) {
            strContent += i + 1 < nDepth ? "/X Do " : "0 0 5 5 re f ";
        }
        options.extraObjects.push_back(
            "<< /Type /XObject /Subtype /Form /BBox [0 0 612 792] /Resources << /XObject << /X " +
            std::to_string(kFirstExtraObject + i + 1) + " 0 R >> >> /Length " +
            std::to_string(strContent.size()) + " >>\nstream\n" + strContent + "\nendstream");
    }
    PdfPage page;
    page.strContent = "1 0 0 rg 0 692 100 100 re f /X Do";
    page.strExtra = "/Resources << /XObject << /X " + std::to_string(kFirstExtraObject) +
                    " 0 R >> >>"; // the later entry of a dictionary counts
    std::vector<PdfPage> pages = {page};
    for (int i = 1; i <= nFurtherPages; ++i) {
        pages.emplace_back().mediaBox.dbRight = 100.0 + i;
    }
    return MakePdf(pages, options);
}

}
