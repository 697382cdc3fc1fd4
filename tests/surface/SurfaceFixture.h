// A canvas on the recording device, in a panel of a window of 1000 x 800.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "document/engine/Bitmap.h"
#include "platform/fake/RecordingGraphicsFactory.h"
#include "platform/fake/TestHost.h"
#include "surface/PDFViewCanvas.h"

namespace velko::testing {

namespace Graphics = Windows::Graphics;
using Platform::Fake::GraphicsCall;
using Platform::Fake::RecordedCall;
using Windows::Foundation::Rect;
using Windows::UI::Xaml::Controls::SwapChainPanel;

inline constexpr Graphics::D2D_COLOR_F kGrey{0.5F, 0.5F, 0.5F, 1.0F};

// Draws what a test tells it to, on grey.
class TestClient final : public vkit::ICanvasClient {
public:
    using Draw = std::function<void(Graphics::ID2D1DeviceContext&)>;

    explicit TestClient(Draw fnDraw = {}) : m_fnDraw(std::move(fnDraw)) {}

    void OnRenderCanvas(const std::shared_ptr<vkit::WPRenderDC>& pDc) override {
        ++nFrames;
        pDc->m_pContext->BeginDraw();
        pDc->m_pContext->Clear(kGrey);
        if (m_fnDraw) {
            m_fnDraw(*pDc->m_pContext);
        }
        if (!bLeavesFrameOpen) {
            pDc->m_pContext->EndDraw();
        }
    }
    void ClearCanvas(const std::shared_ptr<vkit::WPRenderDC>& pDc) override {
        ++nClears;
        pDc->m_pContext->BeginDraw();
        pDc->m_pContext->Clear(kGrey);
        pDc->m_pContext->EndDraw();
    }
    void OnDeviceRemade() override { ++nDevicesRemade; }

    void SetDraw(Draw fnDraw) { m_fnDraw = std::move(fnDraw); }

    int nFrames = 0;
    int nClears = 0;
    int nDevicesRemade = 0;
    bool bLeavesFrameOpen = false;

private:
    Draw m_fnDraw;
};

// An engine's bitmap of one colour after another: pixel n has the value n.
class CountingBitmap final : public common::Bitmap {
public:
    CountingBitmap(std::int32_t nWidth, std::int32_t nHeight);
    std::span<std::uint8_t> GetBuffer() override { return m_bytes; }
    std::int32_t GetWidth() const override { return m_nWidth; }
    std::int32_t GetHeight() const override { return m_nHeight; }
    void FillRect(std::uint32_t nColor, const common::vxbase::RectI& rc) override;

private:
    std::int32_t m_nWidth;
    std::int32_t m_nHeight;
    std::vector<std::uint8_t> m_bytes;
};

class SurfaceTest : public ::testing::Test {
protected:
    SurfaceTest() { m_host.Environment().SetGraphicsFactory(m_pFactory); }

    Platform::Fake::RecordingGraphicsFactory& Device() { return *m_pFactory; }
    vkit::PDFViewCanvas& Canvas() { return *m_pCanvas; }

    // As a control does it: make, initialise, take a place in the window.
    void Start(float fWidth = 40.0F, float fHeight = 30.0F) {
        m_pCanvas->Initialize();
        m_pPanel->Arrange({fWidth, fHeight});
        m_host.Dispatcher().RunAll();
    }

    // That the frames asked for in `fnBody` fail nobody, and that the first
    // failure is told once, in these words.
    void ExpectTold(const std::function<void()>& fnBody, const std::string& strWords);

    // The names of the calls recorded since the last clear, in order.
    std::vector<std::string> CallNames() const;
    RecordedCall LastCall(GraphicsCall eCall) const;
    std::shared_ptr<Graphics::ID2D1Bitmap> MakeBitmap(std::uint32_t nWidth, std::uint32_t nHeight,
                                                      std::uint32_t nColor);
    // The pixel of the shown frame, 0xAARRGGBB.
    std::uint32_t Shown(std::uint32_t nX, std::uint32_t nY) const {
        return m_pFactory->FrontImage().At(nX, nY);
    }

    Platform::Fake::TestHost m_host;
    std::shared_ptr<Platform::Fake::RecordingGraphicsFactory> m_pFactory =
        std::make_shared<Platform::Fake::RecordingGraphicsFactory>();
    std::shared_ptr<SwapChainPanel> m_pPanel = std::make_shared<SwapChainPanel>();
    std::shared_ptr<vkit::PDFViewCanvas> m_pCanvas =
        std::make_shared<vkit::PDFViewCanvas>(m_pPanel);
};

// The failure code that `fnBody` raises; `S_OK` without one.
Platform::HRESULT CodeRaisedBy(const std::function<void()>& fnBody);

}
