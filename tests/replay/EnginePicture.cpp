#include "tests/replay/EnginePicture.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include "document/engine/Bitmap.h"
#include "document/engine/PDFDoc.h"
#include "document/engine/Renderer.h"
#include "engines/mupdf/Register.h"
#include "platform/system/Activation.h"

namespace velko::testing {

namespace {

using velko::common::Bitmap;

class FileReader final : public velko::common::vxbase::IFileReaderCallback {
public:
    explicit FileReader(const std::string& strPath) {
        std::ifstream file(strPath, std::ios::binary);
        m_bytes.assign(std::istreambuf_iterator<char>(file), {});
    }
    std::uint32_t GetSize() override { return static_cast<std::uint32_t>(m_bytes.size()); }
    bool ReadBlock(std::span<std::uint8_t> destination, std::uint64_t nOffset,
                   std::uint32_t nSize) override {
        std::copy_n(m_bytes.begin() + static_cast<std::ptrdiff_t>(nOffset), nSize,
                    destination.begin());
        return true;
    }
    bool Release() override { return true; }

private:
    std::vector<char> m_bytes;
};

std::shared_ptr<velko::pdf::PDFDoc> Load(const std::string& strPath) {
    static const bool s_bRegistered = [] {
        velko::engines::mupdf::RegisterEngine();
        return true;
    }();
    static_cast<void>(s_bRegistered);
    auto pDoc = Platform::GetActivationFactory<velko::pdf::IPDFDocFactory>(velko::pdf::kPDFDocClass)
                    ->Create(std::make_shared<FileReader>(strPath));
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
