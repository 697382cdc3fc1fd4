#include "tests/replay/EnginePicture.h"

#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

#include "document/engine/Bitmap.h"
#include "document/engine/PDFDoc.h"
#include "document/engine/Renderer.h"
#include "engines/mupdf/Register.h"
#include "platform/system/Activation.h"
#include "tests/engine/MemoryReader.h"

namespace velko::testing {

namespace {

using velko::common::Bitmap;

std::shared_ptr<MemoryReader> ReaderOf(const std::string& strPath) {
    std::ifstream file(strPath, std::ios::binary);
    return std::make_shared<MemoryReader>(
        std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()));
}

std::shared_ptr<velko::pdf::PDFDoc> Load(const std::string& strPath) {
    static const bool s_bRegistered = [] {
        velko::engines::mupdf::RegisterEngine();
        return true;
    }();
    static_cast<void>(s_bRegistered);
    auto pDoc = Platform::GetActivationFactory<velko::pdf::IPDFDocFactory>(velko::pdf::kPDFDocClass)
                    ->Create(ReaderOf(strPath));
    if (pDoc->Load("") != velko::common::ErrorCode::e_ErrSuccess) {
        throw std::runtime_error("cannot load " + strPath);
    }
    return pDoc;
}

std::shared_ptr<Bitmap> WhiteBitmap(int nWidth, int nHeight) {
    auto pBitmap =
        Platform::GetActivationFactory<velko::common::IBitmapFactory>(velko::common::kBitmapClass)
            ->Create(nWidth, nHeight, Bitmap::kFormat32, nullptr, 0);
    pBitmap->FillRect(0xFFFFFFFFU, {0, 0, nWidth, nHeight});
    return pBitmap;
}

}

QImage EnginePicture(const std::string& strPath, int nPage, int nWidth, int nHeight) {
    const auto pPage = Load(strPath)->GetPage(nPage);
    const auto pParse = pPage->StartParse(0, nullptr, 0);
    while (pParse->Continue() == velko::common::Progressive::kToBeContinued) {
    }
    const auto pBitmap = WhiteBitmap(nWidth, nHeight);
    Platform::GetActivationFactory<velko::common::IRendererFactory>(velko::common::kRendererClass)
        ->Create(pBitmap)
        ->StartRender(pPage, pPage->GetDisplayMatrix(0, 0, nWidth, nHeight, 0), nullptr);
    const QImage image(pBitmap->GetBuffer().data(), nWidth, nHeight, nWidth * 4,
                       QImage::Format_RGB32);
    return image.copy();
}

}
