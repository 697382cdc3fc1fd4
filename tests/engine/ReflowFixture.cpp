#include "tests/engine/ReflowFixture.h"

#include <utility>

#include "tests/support/pdf_writer/PdfWriter.h"

namespace velko::testing {

using engines::mupdf::reflow::Layout;
using engines::mupdf::reflow::ReflowedPage;
using pdf::ReflowPage;

std::shared_ptr<ReflowPage> CreateReflow(std::shared_ptr<pdf::PDFPage> pPage) {
    return Platform::GetActivationFactory<pdf::IReflowPageFactory>(pdf::kReflowPageClass)
        ->Create(std::move(pPage));
}

std::int32_t Parse(ReflowPage& page, const Wanted& wanted) {
    page.SetScreenSize(wanted.fWidth, wanted.fHeight);
    page.SetZoom(wanted.nPercent);
    page.SetSpacing1(wanted.fLineSpacing);
    page.SetSpacing2(wanted.fParagraphSpacing);
    page.SetParseFlags(wanted.nFlags);
    return page.StartParse(nullptr)->Continue();
}

std::shared_ptr<ReflowPage> ReflowOf(const std::string& strBytes, const Wanted& wanted) {
    const auto pDoc = OpenDoc(strBytes);
    if (!pDoc) {
        return nullptr;
    }
    auto pReflow = CreateReflow(pDoc->GetPage(0));
    Parse(*pReflow, wanted);
    return pReflow;
}

std::shared_ptr<const Layout> LayoutOf(const std::shared_ptr<ReflowPage>& pReflow) {
    return std::dynamic_pointer_cast<ReflowedPage>(pReflow)->Result();
}

std::string TextOf(const std::shared_ptr<ReflowPage>& pReflow) {
    return engines::mupdf::reflow::TextOf(*LayoutOf(pReflow)->pModel);
}

std::shared_ptr<common::Bitmap> DrawBand(const std::shared_ptr<ReflowPage>& pReflow, int nTop,
                                         int nHeight, std::uint32_t nBack, std::uint32_t nFore) {
    const int nWidth = pReflow->GetContentWidth();
    auto pBitmap = CreateBitmap(nWidth, nHeight);
    pBitmap->FillRect(nBack, {0, 0, nWidth, nHeight});
    const auto pRenderer = CreateRenderer(pBitmap);
    if (nBack != kWhite || nFore != kBlack) {
        pRenderer->SetColorMode(common::Renderer::kColorModeMapped);
        pRenderer->SetMappingModeColors(nBack, nFore);
    }
    auto matrix = pReflow->GetDisplayMatrix();
    matrix.F -= static_cast<float>(nTop);
    pRenderer->StartRenderReflowPage(pReflow, matrix, nullptr);
    return pBitmap;
}

int InkedPixels(common::Bitmap& bitmap, std::uint32_t nPaper) {
    int nInked = 0;
    for (int y = 0; y < bitmap.GetHeight(); ++y) {
        for (int x = 0; x < bitmap.GetWidth(); ++x) {
            nInked += PixelAt(bitmap, x, y) != nPaper ? 1 : 0;
        }
    }
    return nInked;
}

std::string TextAt(double x, double y, const std::string& strText, double dbSize) {
    return "BT /F1 " + std::to_string(dbSize) + " Tf 1 0 0 1 " + std::to_string(x) + " " +
           std::to_string(y) + " Tm (" + strText + ") Tj ET\n";
}

std::string OnePage(const std::string& strContent) {
    PdfPage page;
    page.strContent = strContent;
    return MakePdf({page});
}

std::string Illustrated(const std::string& strMore) {
    PdfOptions options;
    options.images.push_back({2, 2, "\x20\x60\xA0\x20\x60\xA0\x20\x60\xA0\x20\x60\xA0"});
    PdfPage page;
    for (int i = 0; i < 6; ++i) {
        page.strContent +=
            TextAt(60, 700 - 12 * i, "There are several lines of text above the picture,") +
            TextAt(60, 500 - 12 * i, "And there are lines below the picture above it.");
    }
    page.strContent += "q 180 0 0 100 100 525 cm /I1 Do Q\n" + strMore;
    return MakePdf({page}, options);
}

}
