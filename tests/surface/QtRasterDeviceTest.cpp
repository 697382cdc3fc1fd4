// The raster device on Qt: the same pixels as the recording device, sharp and
// seamless blocks, frames that are not copied, faults and counters.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>

#include "platform/fake/RecordingGraphicsFactory.h"
#include "platform/fake/TestHost.h"
#include "platform/foundation/Exception.h"
#include "platform/qt/QtGraphicsFactory.h"
#include "platform/qt/QtSwapChain.h"
#include "surface/PDFViewCanvas.h"

namespace velko::testing {
namespace {

namespace Graphics = Windows::Graphics;
using Graphics::D2D1_INTERPOLATION_MODE;
using Platform::Qt::QtGraphicsFactory;
using Platform::Qt::QtSwapChain;

// What two painters may differ by: the rounding of a blend per channel, and no
// pixel by more. (The stretches have no destination pixel whose centre falls
// between two source pixels: there either one is nearest.)
constexpr int kChannelTolerance = 2;
constexpr int kPixelTolerance = 0;

// A device, a chain of 64 x 48 and a context on it.
struct Screen {
    explicit Screen(Graphics::IGraphicsFactory& factory) {
        Graphics::DeviceRequest request;
        request.eDriver = Graphics::D3D_DRIVER_TYPE::WARP;
        factory.D3D11CreateDevice(request, pDevice);
        Graphics::DXGI_SWAP_CHAIN_DESC1 description;
        description.Width = 64;
        description.Height = 48;
        pChain = factory.CreateSwapChainForComposition(pDevice, description);
        pFactory2D = factory.D2D1CreateFactory();
        pContext = pFactory2D->CreateDevice(pDevice)->CreateDeviceContext();
        pContext->SetTarget(
            pFactory2D->CreateBitmapFromDxgiSurface(*pContext, pChain->GetBuffer(0), {}));
    }

    void Frame(const std::function<void(Graphics::ID2D1DeviceContext&)>& fnDraw) const {
        pContext->BeginDraw();
        fnDraw(*pContext);
        pContext->EndDraw();
        pChain->Present1(1, 0);
    }

    std::shared_ptr<Graphics::ID3D11Device1> pDevice;
    std::shared_ptr<Graphics::IDXGISwapChain2> pChain;
    std::shared_ptr<Graphics::ID2D1Factory2> pFactory2D;
    std::shared_ptr<Graphics::ID2D1DeviceContext> pContext;
};

std::vector<std::uint8_t> Noise(std::uint32_t nWidth, std::uint32_t nHeight, bool bOpaque) {
    std::mt19937 random(nWidth * 31 + nHeight);
    std::vector<std::uint8_t> bytes(std::size_t{nWidth} * nHeight * 4);
    for (std::size_t nAt = 0; nAt < bytes.size(); nAt += 4) {
        const std::uint32_t nAlpha = bOpaque ? 255 : random() % 256;
        for (std::size_t nChannel = 0; nChannel < 3; ++nChannel) {
            bytes[nAt + nChannel] = static_cast<std::uint8_t>(random() % (nAlpha + 1));
        }
        bytes[nAt + 3] = static_cast<std::uint8_t>(nAlpha);
    }
    return bytes;
}

using Scene = std::function<void(Graphics::ID2D1DeviceContext&)>;

std::vector<std::uint8_t> Painted(Graphics::IGraphicsFactory& factory, const Scene& fnScene) {
    const Screen screen(factory);
    screen.Frame(fnScene);
    return screen.pContext->GetTarget()->ReadPixels();
}

void ExpectSamePixels(const Scene& fnScene, const char* szScene) {
    QtGraphicsFactory raster;
    Platform::Fake::RecordingGraphicsFactory recording;
    const auto actual = Painted(raster, fnScene);
    const auto expected = Painted(recording, fnScene);
    ASSERT_EQ(actual.size(), expected.size());
    int nFarPixels = 0;
    std::size_t nFirst = 0;
    for (std::size_t nAt = 0; nAt < actual.size(); nAt += 4) {
        bool bFar = false;
        for (std::size_t nChannel = 0; nChannel < 4; ++nChannel) {
            bFar = bFar ||
                   std::abs(actual[nAt + nChannel] - expected[nAt + nChannel]) > kChannelTolerance;
        }
        nFirst = bFar && nFarPixels == 0 ? nAt / 4 : nFirst;
        nFarPixels += bFar ? 1 : 0;
    }
    EXPECT_LE(nFarPixels, kPixelTolerance)
        << szScene << ": first at " << nFirst % 64 << ", " << nFirst / 64 << ": "
        << int{actual[nFirst * 4]} << " for " << int{expected[nFirst * 4]};
}

TEST(QtRasterDeviceTest, PaintsThePixelsOfTheRecordingDevice) {
    const auto fnBitmap = [](Graphics::ID2D1DeviceContext& context, bool bOpaque) {
        return context.CreateBitmap({20, 10}, Noise(20, 10, bOpaque), 80, {});
    };
    const auto fnBlit = [&](Graphics::ID2D1DeviceContext& context) {
        context.Clear({0.2F, 0.4F, 0.6F, 1.0F});
        context.DrawBitmap(fnBitmap(context, true), {3.4F, 2.6F, 23.4F, 12.6F}, 1.0F,
                           D2D1_INTERPOLATION_MODE::LINEAR, {0, 0, 20, 10});
        context.DrawBitmap(fnBitmap(context, false), {-5.5F, 20.5F, 14.5F, 30.5F}, 0.5F,
                           D2D1_INTERPOLATION_MODE::NEAREST_NEIGHBOR, {0, 0, 20, 10});
    };
    ExpectSamePixels(fnBlit, "blits, some translucent, some off the screen");

    const auto fnStretch = [&](D2D1_INTERPOLATION_MODE eMode, Graphics::D2D_RECT_F rcSource) {
        return [=](Graphics::ID2D1DeviceContext& context) {
            context.Clear({1, 1, 1, 1});
            context.DrawBitmap(fnBitmap(context, true), {2.3F, 1.2F, 57.8F, 41.4F}, 1.0F, eMode,
                               rcSource);
        };
    };
    ExpectSamePixels(fnStretch(D2D1_INTERPOLATION_MODE::NEAREST_NEIGHBOR, {0, 0, 20, 10}),
                     "a nearest stretch");
    ExpectSamePixels(fnStretch(D2D1_INTERPOLATION_MODE::NEAREST_NEIGHBOR, {0, 0, 60, 40}),
                     "a source larger than the bitmap");

    const auto fnShapes = [](Graphics::ID2D1DeviceContext& context) {
        context.Clear({1, 1, 1, 1});
        const auto pBrush = context.CreateSolidColorBrush({0.2F, 0.8F, 0.0F, 1.0F});
        pBrush->SetOpacity(0.3F);
        context.FillRectangle({1.5F, 1.4F, 30.2F, 20.6F}, pBrush);
        context.FillRectangle({1.5F, 30.1F, 30.2F, 30.3F}, pBrush);
        context.DrawRectangle({10.0F, 10.0F, 50.0F, 40.0F}, pBrush, 1.0F);
        context.SetTransform({0.5F, 0.0F, 0.0F, 0.5F, 32.0F, 0.25F});
        context.FillRectangle({0.0F, 0.0F, 40.0F, 40.0F}, pBrush);
        context.DrawRectangle({4.0F, 4.0F, 40.0F, 40.0F}, pBrush, 6.0F);
        context.FillRectangle({0.0F, 0.0F, 40.0F, 40.0F}, nullptr);
    };
    ExpectSamePixels(fnShapes, "fills and outlines");
}

TEST(QtRasterDeviceTest, ALinearStretchIsSmoothAndStaysWithinItsEdges) {
    QtGraphicsFactory factory;
    const Screen screen(factory);
    // Left half black, right half white.
    std::vector<std::uint8_t> bytes(std::size_t{16} * 16 * 4, 0xFF);
    for (std::size_t nPixel = 0; nPixel < 256; ++nPixel) {
        if (nPixel % 16 < 8) {
            std::memset(&bytes[nPixel * 4], 0, 3);
        }
    }
    screen.Frame([&](Graphics::ID2D1DeviceContext& context) {
        context.Clear({1, 0, 0, 1});
        context.DrawBitmap(context.CreateBitmap({16, 16}, bytes, 64, {}), {0, 0, 64, 48}, 1.0F,
                           D2D1_INTERPOLATION_MODE::LINEAR, {0, 0, 16, 16});
    });
    const auto pixels = screen.pContext->GetTarget()->ReadPixels();
    int nLast = 0;
    int nBetween = 0;
    for (std::size_t nX = 0; nX < 64; ++nX) {
        const std::uint8_t* const pPixel = &pixels[(24 * 64 + nX) * 4];
        EXPECT_EQ(pPixel[0], pPixel[2]) << "the red of the ground shows at " << nX;
        EXPECT_GE(pPixel[0], nLast) << nX;
        nLast = pPixel[0];
        nBetween += pPixel[0] > 8 && pPixel[0] < 247 ? 1 : 0;
    }
    EXPECT_GE(nBetween, 3) << "an edge four times as wide has steps in between";
    EXPECT_LE(nBetween, 4);
}

// Four blocks as a page has them, at offsets as a scroll gives them.
TEST(QtRasterDeviceTest, BlocksAreSharpAndLeaveNoSeamAtAnyOffset) {
    QtGraphicsFactory factory;
    const Screen screen(factory);
    std::mt19937 random(7);
    std::uniform_real_distribution<double> offset(-3.0, 3.0);
    const auto bytes = Noise(16, 12, true);
    const auto pBlock = screen.pContext->CreateBitmap({16, 12}, bytes, 64, {});
    for (int nRound = 0; nRound < 200; ++nRound) {
        const double dbX = 10.0 + (nRound < 8 ? nRound / 8.0 : offset(random));
        const double dbY = 10.0 + (nRound < 8 ? nRound / 8.0 : offset(random));
        screen.Frame([&](Graphics::ID2D1DeviceContext& context) {
            context.Clear({1, 0, 0, 1});
            for (int nBlock = 0; nBlock < 4; ++nBlock) {
                const auto fX = static_cast<float>(dbX + (nBlock % 2) * 16.0);
                const auto fY = static_cast<float>(dbY + (nBlock / 2) * 12.0);
                const auto fRight = static_cast<float>(dbX + (nBlock % 2) * 16.0 + 16.0);
                const auto fBottom = static_cast<float>(dbY + (nBlock / 2) * 12.0 + 12.0);
                context.DrawBitmap(pBlock, {fX, fY, fRight, fBottom}, 1.0F,
                                   D2D1_INTERPOLATION_MODE::LINEAR, {0, 0, 16, 12});
            }
        });
        const auto pixels = screen.pContext->GetTarget()->ReadPixels();
        const auto nLeft = static_cast<std::size_t>(std::floor(dbX + 0.5));
        const auto nTop = static_cast<std::size_t>(std::floor(dbY + 0.5));
        for (std::size_t nY = 0; nY < 24; ++nY) {
            for (std::size_t nX = 0; nX < 32; ++nX) {
                ASSERT_EQ(std::memcmp(&pixels[((nTop + nY) * 64 + nLeft + nX) * 4],
                                      &bytes[(nY % 12 * 16 + nX % 16) * 4], 4),
                          0)
                    << "offset " << dbX << ", " << dbY << " at " << nX << ", " << nY;
            }
        }
    }
}

TEST(QtRasterDeviceTest, AFrameIsShownWithoutACopyAndStaysWhatItWas) {
    QtGraphicsFactory factory;
    const Screen screen(factory);
    auto& chain = dynamic_cast<QtSwapChain&>(*screen.pChain);
    int nPresented = 0;
    chain.OnPresented = [&] { ++nPresented; };
    EXPECT_TRUE(chain.FrontImage().isNull());

    const auto fnFill = [&](float fRed) {
        screen.Frame([&](Graphics::ID2D1DeviceContext& context) {
            context.Clear({fRed, 0.0F, 0.0F, 1.0F});
        });
        return chain.FrontImage().constBits();
    };
    const uchar* const pFirst = fnFill(0.0F);
    EXPECT_EQ(fnFill(0.2F), pFirst) << "a buffer that nobody holds is drawn over";
    EXPECT_EQ(fnFill(0.6F), pFirst);

    const QImage held = chain.FrontImage();
    const auto pSnapshot = screen.pContext->CreateBitmap({64, 48}, {}, 0, {});
    pSnapshot->CopyFromRenderTarget(*screen.pContext);
    fnFill(0.8F);
    fnFill(1.0F);
    EXPECT_EQ(qRed(held.pixel(5, 5)), 153) << "a frame that someone holds is not drawn over";
    EXPECT_EQ(pSnapshot->ReadPixels()[2], 153) << "the snapshot is that of its time";
    EXPECT_EQ(qRed(chain.FrontImage().pixel(5, 5)), 255);

    screen.Frame([](Graphics::ID2D1DeviceContext&) {}); // an older buffer must not come back
    EXPECT_EQ(qRed(chain.FrontImage().pixel(5, 5)), 255);
    EXPECT_EQ(chain.Present1(1, 0), Platform::S_OK); // nothing was drawn since
    EXPECT_EQ(qRed(chain.FrontImage().pixel(5, 5)), 255);
    EXPECT_EQ(nPresented, 6);
    EXPECT_EQ(chain.PresentCount(), 6U);
}

// A frame of a few parts, much like the one of the round before it.
class SceneOfParts {
public:
    explicit SceneOfParts(Graphics::ID2D1DeviceContext& context) {
        for (const bool bOpaque : {true, false}) {
            m_bitmaps.push_back(context.CreateBitmap({20, 10}, Noise(20, 10, bOpaque), 80, {}));
        }
    }

    void Change(std::mt19937& random) {
        const std::size_t nKept = random() % (m_parts.size() + 1);
        m_parts.erase(m_parts.begin() + static_cast<std::ptrdiff_t>(nKept), m_parts.end());
        for (std::size_t n = random() % 3; n > 0; --n) {
            const auto fX = static_cast<float>(static_cast<int>(random() % 80) - 20);
            const auto fY = static_cast<float>(static_cast<int>(random() % 60) - 20);
            m_parts.push_back({random() % 4, fX, fY, static_cast<float>(random() % 30),
                               random() % 5 == 0 ? 0.4F : 0.0F});
        }
    }

    void Draw(Graphics::ID2D1DeviceContext& context) const {
        context.Clear({0.9F, 0.9F, 0.9F, 1.0F});
        const auto pBrush = context.CreateSolidColorBrush({0.1F, 0.4F, 0.7F, 1.0F});
        for (const Part& part : m_parts) {
            const Graphics::D2D_RECT_F rc = {part.fX, part.fY, part.fX + part.fSide,
                                             part.fY + part.fSide};
            context.SetTransform({1.0F, part.fTurn, -part.fTurn, 1.0F, 0.0F, 0.0F});
            if (part.nKind < 2) {
                context.DrawBitmap(m_bitmaps[part.nKind], rc, 1.0F,
                                   D2D1_INTERPOLATION_MODE::NEAREST_NEIGHBOR, {0, 0, 20, 10});
            } else if (part.nKind == 2) {
                context.FillRectangle(rc, pBrush);
            } else {
                context.DrawRectangle(rc, pBrush, 2.0F);
            }
        }
        context.SetTransform({});
    }

private:
    struct Part {
        std::size_t nKind;
        float fX;
        float fY;
        float fSide;
        float fTurn;
    };
    std::vector<std::shared_ptr<Graphics::ID2D1Bitmap>> m_bitmaps;
    std::vector<Part> m_parts;
};

// Whatever was shown before, held by somebody or copied in the middle of a
// frame, a frame ends as if it were the first; and the window is told of every
// pixel that changed.
TEST(QtRasterDeviceTest, DrawingOnlyWhatChangedGivesThePixelsOfAFreshFrame) {
    QtGraphicsFactory factory;
    const Screen screen(factory);
    auto& chain = dynamic_cast<QtSwapChain&>(*screen.pChain);
    SceneOfParts scene(*screen.pContext);
    std::mt19937 random(3);
    QImage held;
    QImage before;
    int nPartial = 0;
    for (int nRound = 0; nRound < 600; ++nRound) {
        scene.Change(random);
        const auto pCopy = screen.pContext->CreateBitmap({64, 48}, {}, 0, {});
        screen.Frame([&](Graphics::ID2D1DeviceContext& context) {
            scene.Draw(context);
            if (nRound % 17 == 0) {
                pCopy->CopyFromRenderTarget(context);
            }
        });
        const Screen fresh(factory);
        fresh.Frame([&](Graphics::ID2D1DeviceContext& context) { scene.Draw(context); });
        const auto expected = fresh.pContext->GetTarget()->ReadPixels();
        ASSERT_EQ(screen.pContext->GetTarget()->ReadPixels(), expected) << "round " << nRound;
        if (nRound % 17 == 0) {
            ASSERT_EQ(pCopy->ReadPixels(), expected) << "round " << nRound;
        }
        const QImage now = chain.FrontImage().copy();
        nPartial += chain.PresentedRect() != now.rect() ? 1 : 0;
        for (int nAt = 0; !before.isNull() && nAt < 64 * 48; ++nAt) {
            const QPoint pt(nAt % 64, nAt / 64);
            ASSERT_TRUE(now.pixel(pt) == before.pixel(pt) || chain.PresentedRect().contains(pt))
                << "round " << nRound << " at " << pt.x() << ", " << pt.y();
        }
        before = now;
        held = nRound % 5 == 0 ? chain.FrontImage() : QImage();
    }
    EXPECT_GT(nPartial, 300);
}

TEST(QtRasterDeviceTest, TheLastFrameOutlivesAResize) {
    QtGraphicsFactory factory;
    const Screen screen(factory);
    auto& chain = dynamic_cast<QtSwapChain&>(*screen.pChain);
    screen.Frame([](Graphics::ID2D1DeviceContext& context) { context.Clear({0, 1, 0, 1}); });
    screen.pContext->SetTarget(nullptr);
    ASSERT_EQ(chain.ResizeBuffers(2, 80, 20, 87, 0), Platform::S_OK);
    EXPECT_EQ(chain.ResizeBuffers(2, 0, 20, 87, 0), Graphics::DXGI_ERROR_INVALID_CALL);
    EXPECT_EQ(chain.FrontImage().size(), QSize(64, 48)) << "shown until the next present";
    screen.pContext->SetTarget(
        screen.pFactory2D->CreateBitmapFromDxgiSurface(*screen.pContext, chain.GetBuffer(0), {}));
    const auto pSnapshot = screen.pContext->CreateBitmap({80, 20}, {}, 0, {});
    pSnapshot->CopyFromRenderTarget(*screen.pContext);
    EXPECT_EQ(pSnapshot->ReadPixels()[63 * 4 + 1], 0xFF);
    EXPECT_EQ(pSnapshot->ReadPixels()[64 * 4 + 1], 0x00);
    screen.Frame([](Graphics::ID2D1DeviceContext& context) { context.Clear({0, 0, 1, 1}); });
    EXPECT_EQ(chain.FrontImage().size(), QSize(80, 20));
}

TEST(QtRasterDeviceTest, CountsItsBitmapsAndRefusesWrongOnes) {
    QtGraphicsFactory factory;
    const Screen screen(factory);
    {
        const auto pBitmap = screen.pContext->CreateBitmap({3, 2}, Noise(3, 2, false), 12, {});
        EXPECT_EQ(pBitmap->ReadPixels(), Noise(3, 2, false));
        EXPECT_EQ(factory.State()->nLiveBitmaps, 1);
        EXPECT_EQ(factory.State()->nLiveBitmapBytes, 24);
    }
    EXPECT_EQ(factory.State()->nLiveBitmaps, 0);
    EXPECT_EQ(factory.State()->nLiveBitmapBytes, 0);
    const auto bytes = Noise(3, 2, true);
    for (const auto& [size, nPitch] :
         {std::pair{Graphics::D2D_SIZE_U{0, 2}, 12U}, std::pair{Graphics::D2D_SIZE_U{3, 3}, 12U},
          std::pair{Graphics::D2D_SIZE_U{3, 2}, 8U},
          std::pair{Graphics::D2D_SIZE_U{40000, 1}, 12U}}) {
        EXPECT_THROW(screen.pContext->CreateBitmap(size, bytes, nPitch, {}),
                     Platform::InvalidArgumentException);
    }
}

TEST(QtRasterDeviceTest, ACanvasOnItSurvivesTheFaultsThatAScriptSets) {
    Platform::Fake::TestHost host;
    const auto pFactory = std::make_shared<QtGraphicsFactory>();
    host.Environment().SetGraphicsFactory(pFactory);
    const auto pPanel = std::make_shared<Windows::UI::Xaml::Controls::SwapChainPanel>();
    const auto pCanvas = std::make_shared<vkit::PDFViewCanvas>(pPanel);
    pCanvas->Initialize(); // no hardware device: the raster one stands in
    pPanel->Arrange({30.0F, 20.0F});
    const auto pBitmap = pCanvas->GetDeviceContext()->CreateBitmap({1, 1}, {}, 0, {});

    pFactory->State()->nPresentsUntilLoss = 1;
    pCanvas->ClearAndPresent();
    EXPECT_TRUE(pBitmap->IsDeviceAlive());
    pCanvas->ClearAndPresent();
    EXPECT_FALSE(pBitmap->IsDeviceAlive());
    host.Dispatcher().RunAll();
    const auto pChain = std::dynamic_pointer_cast<QtSwapChain>(pPanel->SwapChain());
    ASSERT_NE(pChain, nullptr);
    EXPECT_EQ(pChain->FrontImage().size(), QSize(30, 20));
    EXPECT_EQ(pChain->FrontImage().pixel(29, 19), 0xFFFFFFFFU);
    EXPECT_EQ(pFactory->State()->nDevicesLost, 1U);

    pFactory->State()->nPresentsUntilFailure = 0;
    pCanvas->ClearAndPresent();
    EXPECT_EQ(pFactory->State()->nPresents, 3U) << "tried again";
}

}
}
