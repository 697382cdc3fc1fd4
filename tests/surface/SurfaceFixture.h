// A canvas in a panel of a window of 1000 x 800, on a device without pixels or
// on another one.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "document/engine/Bitmap.h"
#include "platform/fake/CountingGraphicsFactory.h"
#include "platform/fake/TestHost.h"
#include "platform/foundation/Describe.h"
#include "surface/PDFViewCanvas.h"

namespace velko::testing {

namespace Graphics = Windows::Graphics;
using Platform::Fake::CountingGraphicsFactory;
using Platform::Fake::GraphicsCall;
using Windows::Foundation::Rect;
using Windows::UI::Xaml::Controls::SwapChainPanel;

inline constexpr Graphics::D2D_COLOR_F kGrey{0.5F, 0.5F, 0.5F, 1.0F};

// Draws what a test tells it to, on grey.
class TestClient final : public vkit::ICanvasClient {
public:
    using Draw = std::function<void(Graphics::ID2D1DeviceContext&)>;

    explicit TestClient(Draw fnDrawn = {}) : fnDraw(std::move(fnDrawn)) {}

    void OnRenderCanvas(const std::shared_ptr<vkit::WPRenderDC>& pDc) override {
        ++nFrames;
        pDc->m_pContext->BeginDraw();
        pDc->m_pContext->Clear(kGrey);
        if (fnDraw) {
            fnDraw(*pDc->m_pContext);
        }
        if (!bLeavesFrameOpen) {
            pDc->m_pContext->EndDraw();
        }
    }
    void ClearCanvas(const std::shared_ptr<vkit::WPRenderDC>& /*pDc*/) override { ++nClears; }
    void OnDeviceRemade() override { ++nDevicesRemade; }

    Draw fnDraw;
    int nFrames = 0;
    int nClears = 0;
    int nDevicesRemade = 0;
    bool bLeavesFrameOpen = false;
};

// An engine's bitmap, opaque, whose pixel n has the value n.
class NumberedBitmap final : public common::Bitmap {
public:
    NumberedBitmap(std::int32_t nWidth, std::int32_t nHeight)
        : m_nWidth(nWidth),
          m_nHeight(nHeight),
          m_bytes(static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight) * 4) {
        for (std::size_t nByte = 0; nByte < m_bytes.size(); ++nByte) {
            m_bytes[nByte] = nByte % 4 == 3 ? 0xFF : static_cast<std::uint8_t>(nByte / 4);
        }
    }
    std::span<std::uint8_t> GetBuffer() override { return m_bytes; }
    std::int32_t GetWidth() const override { return m_nWidth; }
    std::int32_t GetHeight() const override { return m_nHeight; }
    void FillRect(std::uint32_t /*nColor*/, const common::vxbase::RectI& /*rc*/) override {}

private:
    std::int32_t m_nWidth;
    std::int32_t m_nHeight;
    std::vector<std::uint8_t> m_bytes;
};

template <class Factory>
class CanvasTest : public ::testing::Test {
protected:
    CanvasTest() { m_host.Environment().SetGraphicsFactory(m_pFactory); }

    Factory& Device() { return *m_pFactory; }
    vkit::PDFViewCanvas& Canvas() { return *m_pCanvas; }

    // As a control does it: make, initialise, take a place in the window.
    void Start(float fWidth = 40.0F, float fHeight = 30.0F) {
        m_pCanvas->Initialize();
        m_pPanel->Arrange({fWidth, fHeight});
        m_host.Dispatcher().RunAll();
    }

    const std::shared_ptr<Factory> m_pFactory = std::make_shared<Factory>();
    Platform::Fake::TestHost m_host;
    std::shared_ptr<SwapChainPanel> m_pPanel = std::make_shared<SwapChainPanel>();
    std::shared_ptr<vkit::PDFViewCanvas> m_pCanvas =
        std::make_shared<vkit::PDFViewCanvas>(m_pPanel);
};

class SurfaceTest : public CanvasTest<CountingGraphicsFactory> {
protected:
    // That the frames asked for in `fnBody` fail nobody, and that the first
    // failure is told once, in these words.
    void ExpectTold(const std::function<void()>& fnBody, const std::string& strWords) {
        std::vector<std::string> told;
        Canvas().OnFrameFailed = [&](const std::exception_ptr& pFailure) {
            told.push_back(Platform::Describe(pFailure));
        };
        EXPECT_NO_THROW(fnBody());
        ASSERT_EQ(told.size(), 1U);
        EXPECT_NE(told[0].find(strWords), std::string::npos) << told[0];
        Canvas().OnFrameFailed = nullptr;
    }
    std::size_t Presents() { return Device().Count(GraphicsCall::Present1); }
};

// The failure code that `fnBody` raises; `S_OK` without one.
inline Platform::HRESULT CodeRaisedBy(const std::function<void()>& fnBody) {
    try {
        fnBody();
    } catch (const Platform::Exception& e) {
        return e.HResult();
    }
    return Platform::S_OK;
}

}
