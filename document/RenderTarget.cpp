#include <utility>

#include "document/RenderTarget_p.h"
#include "platform/system/Activation.h"

namespace velko::vkit::detail {

using velko::common::Bitmap;
using velko::common::Renderer;

namespace {

constexpr std::uint32_t kWhite = 0xFFFFFFFFU;
constexpr std::uint32_t kBlack = 0xFF000000U;

}

std::shared_ptr<Bitmap> MakeFilledBitmap(std::int32_t nWidth, std::int32_t nHeight,
                                         std::uint32_t nColor) {
    auto pBitmap =
        Platform::GetActivationFactory<velko::common::IBitmapFactory>(velko::common::kBitmapClass)
            ->Create(nWidth, nHeight, Bitmap::kFormat32, nullptr, 0);
    pBitmap->FillRect(nColor, {0, 0, nWidth, nHeight});
    return pBitmap;
}

std::shared_ptr<Renderer> MakeRenderer(const RenderColors& colors,
                                       const concurrency::cancellation_token& token,
                                       std::shared_ptr<Bitmap> pBitmap) {
    auto pRenderer = Platform::GetActivationFactory<velko::common::IRendererFactory>(
                         velko::common::kRendererClass)
                         ->Create(std::move(pBitmap));
    pRenderer->SetAbortFlag(token.flag());
    if (colors.nBackColor == kWhite && colors.nForeColor == kBlack) {
        pRenderer->SetColorMode(Renderer::kColorModeNormal);
    } else {
        pRenderer->SetColorMode(Renderer::kColorModeMapped);
        pRenderer->SetMappingModeColors(colors.nBackColor, colors.nForeColor);
        pRenderer->SetScanColors(colors.eScanColors);
    }
    return pRenderer;
}

}
