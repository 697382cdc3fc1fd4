#include "tests/engine/EngineFixture.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace velko::testing {

std::shared_ptr<pdf::PDFDoc> CreateDoc(std::shared_ptr<MemoryReader> pReader) {
    return Platform::GetActivationFactory<pdf::IPDFDocFactory>(pdf::kPDFDocClass)
        ->Create(std::move(pReader));
}

std::shared_ptr<common::Bitmap> CreateBitmap(std::int32_t nWidth, std::int32_t nHeight) {
    return Platform::GetActivationFactory<common::IBitmapFactory>(common::kBitmapClass)
        ->Create(nWidth, nHeight, common::Bitmap::kFormat32, nullptr, 0);
}

std::shared_ptr<common::Renderer> CreateRenderer(std::shared_ptr<common::Bitmap> pBitmap) {
    return Platform::GetActivationFactory<common::IRendererFactory>(common::kRendererClass)
        ->Create(std::move(pBitmap));
}

std::shared_ptr<pdf::PDFDoc> OpenDoc(const std::string& strBytes, const std::string& strPassword) {
    auto pDoc = CreateDoc(std::make_shared<MemoryReader>(strBytes));
    return pDoc->Load(strPassword) == common::ErrorCode::e_ErrSuccess ? pDoc : nullptr;
}

View WholePage(const pdf::PDFPage& page, double dbScale, std::int32_t nRotate) {
    View view;
    view.nRotate = nRotate;
    view.nPageWidth = static_cast<std::int32_t>(std::lround(page.GetWidth() * dbScale));
    view.nPageHeight = static_cast<std::int32_t>(std::lround(page.GetHeight() * dbScale));
    if ((nRotate & 1) != 0) {
        std::swap(view.nPageWidth, view.nPageHeight);
    }
    view.nWidth = view.nPageWidth;
    view.nHeight = view.nPageHeight;
    return view;
}

std::shared_ptr<common::Bitmap> Render(const std::shared_ptr<pdf::PDFPage>& pPage,
                                       const View& view) {
    auto pBitmap = CreateBitmap(view.nWidth, view.nHeight);
    pBitmap->FillRect(view.nBackColor, {0, 0, view.nWidth, view.nHeight});
    const auto matrix = pPage->GetDisplayMatrix(-view.nLeft, -view.nTop, view.nPageWidth,
                                                view.nPageHeight, view.nRotate);
    const auto pRenderer = CreateRenderer(pBitmap);
    if (view.nBackColor != kWhite || view.nForeColor != kBlack) {
        pRenderer->SetColorMode(common::Renderer::kColorModeMapped);
        pRenderer->SetMappingModeColors(view.nBackColor, view.nForeColor);
        pRenderer->SetScanColors(view.eScanColors);
    }
    pRenderer->SetAbortFlag(view.pAbort);
    if (view.bContent) {
        pRenderer->SetRenderContentFlags(common::Renderer::kRenderContent);
        pRenderer->StartRender(pPage, matrix, nullptr);
    }
    for (std::int32_t i = 0; view.bAnnots && i < pPage->GetAnnotCount(); ++i) {
        if (auto pAnnot = pPage->GetAnnot(i)) {
            pRenderer->RenderAnnot(std::move(pAnnot), matrix);
        }
    }
    return pBitmap;
}

std::uint32_t PixelAt(common::Bitmap& bitmap, std::int32_t x, std::int32_t y) {
    const std::uint8_t* const pPixel =
        bitmap.GetBuffer().data() + (std::ptrdiff_t{y} * bitmap.GetWidth() + x) * 4;
    return pPixel[0] | std::uint32_t{pPixel[1]} << 8U | std::uint32_t{pPixel[2]} << 16U |
           std::uint32_t{pPixel[3]} << 24U;
}

Difference Compare(common::Bitmap& one, common::Bitmap& two) {
    Difference difference;
    const auto bytesOne = one.GetBuffer();
    const auto bytesTwo = two.GetBuffer();
    for (std::size_t i = 0; i + 3 < std::min(bytesOne.size(), bytesTwo.size()); i += 4) {
        int nMax = 0;
        for (std::size_t nChannel = i; nChannel < i + 4; ++nChannel) {
            nMax = std::max(nMax, std::abs(bytesOne[nChannel] - bytesTwo[nChannel]));
        }
        difference.nPixels += nMax != 0 ? 1 : 0;
        difference.nMax = std::max(difference.nMax, nMax);
    }
    return difference;
}

}
