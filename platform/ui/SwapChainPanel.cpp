#include "platform/ui/SwapChainPanel.h"

#include <utility>

#include "platform/foundation/FirstFailure.h"

namespace Windows::UI::Xaml::Controls {

void SwapChainPanel::CompositionScale(float fScaleX, float fScaleY) {
    ArrangeAtScale({static_cast<float>(ActualWidth()), static_cast<float>(ActualHeight())}, fScaleX,
                   fScaleY);
}

void SwapChainPanel::ArrangeAtScale(Foundation::Size size, float fScaleX, float fScaleY) {
    ArrangeAtScale(*this, size, fScaleX, fScaleY);
}

void SwapChainPanel::ArrangeAtScale(FrameworkElement& root, Foundation::Size size, float fScaleX,
                                    float fScaleY) {
    if (!(fScaleX > 0.0F && fScaleY > 0.0F)) {
        throw Platform::InvalidArgumentException("a composition scale is above 0");
    }
    const auto pSelf = shared_from_this();
    const auto pRoot = root.shared_from_this();
    SizeSteps steps;
    TakeSize(*this, size, steps);
    TakeSize(root, size, steps);
    const bool bScaleDiffers = fScaleX != m_fScaleX || fScaleY != m_fScaleY;
    m_fScaleX = fScaleX;
    m_fScaleY = fScaleY;
    Platform::FirstFailure failure;
    if (bScaleDiffers) {
        failure.Run([&] { CompositionScaleChanged.raise(); });
    }
    failure.Run([&] { RaiseSizeChanged(steps); });
    failure.Run([&] { pRoot->LayoutUpdated.raise(); });
    failure.Rethrow();
}

void SwapChainPanel::SetSwapChain(std::shared_ptr<Windows::Graphics::IDXGISwapChain2> pSwapChain) {
    m_pSwapChain = std::move(pSwapChain);
    SwapChainChanged.raise();
}

}
