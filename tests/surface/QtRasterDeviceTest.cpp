// The raster device on Qt: pixels on their grid, frames that are not copied, counters.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <random>

#include "platform/foundation/Exception.h"
#include "platform/qt/QtGraphicsFactory.h"
#include "platform/qt/QtSwapChain.h"

namespace velko::testing {
namespace {

namespace Graphics = Windows::Graphics;
using Graphics::D2D1_INTERPOLATION_MODE;
using Platform::Qt::QtGraphicsFactory;
using Platform::Qt::QtSwapChain;

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

// Rectangles land on whole pixels, transformed ones too, and what lies beside a
// bitmap is not drawn.
TEST(QtRasterDeviceTest, WherePixelsLandAndWhatTheyBecome) {
    QtGraphicsFactory factory;
    const Screen screen(factory);
    const auto bytes = Noise(4, 2, true);
    const auto pBitmap = screen.pContext->CreateBitmap({4, 2}, bytes, 16, {});
    const auto nearest = D2D1_INTERPOLATION_MODE::NEAREST_NEIGHBOR;
    screen.Frame([&](Graphics::ID2D1DeviceContext& context) {
        context.Clear({1, 1, 1, 1});
        context.DrawBitmap(pBitmap, {3.4F, 2.6F, 7.4F, 4.6F}, 1.0F, nearest, {0, 0, 4, 2});
        context.DrawBitmap(pBitmap, {-2, 6, 2, 8}, 0.5F, nearest, {0, 0, 4, 2});
        context.DrawBitmap(pBitmap, {40, 2, 52, 8}, 1.0F, nearest, {0, 0, 4, 2});
        // A source larger than the bitmap, and one that lies beside it.
        context.DrawBitmap(pBitmap, {54, 2, 62, 6}, 1.0F, nearest, {0, 0, 8, 8});
        context.DrawBitmap(pBitmap, {54, 8, 62, 12}, 1.0F, nearest, {4, 0, 8, 8});
        const auto pBrush = context.CreateSolidColorBrush({0.0F, 0.0F, 0.0F, 1.0F});
        pBrush->SetOpacity(0.2F);
        context.FillRectangle({1.5F, 20.4F, 30.2F, 30.6F}, pBrush);
        context.FillRectangle({1.5F, 40.1F, 30.2F, 40.3F}, pBrush); // a hairline
        context.DrawRectangle({10.0F, 22.0F, 20.0F, 28.0F}, pBrush, 1.0F);
        context.SetTransform({0.5F, 0.0F, 0.0F, 0.5F, 32.0F, 0.25F});
        context.FillRectangle({4.0F, 60.0F, 40.0F, 80.0F}, pBrush);
        context.FillRectangle({0.0F, 0.0F, 90.0F, 90.0F}, nullptr);
        context.SetTransform({});
    });
    const auto pixels = screen.pContext->GetTarget()->ReadPixels();
    const auto fnShown = [&](std::size_t nX, std::size_t nY) {
        return std::vector<int>(&pixels[(nY * 64 + nX) * 4], &pixels[(nY * 64 + nX) * 4 + 3]);
    };
    const auto fnPixel = [&](std::size_t nX, std::size_t nY) {
        return std::vector<int>(&bytes[(nY * 4 + nX) * 4], &bytes[(nY * 4 + nX) * 4 + 3]);
    };
    const std::vector<int> white(3, 255);
    EXPECT_EQ(fnShown(3, 3), fnPixel(0, 0));
    EXPECT_EQ(fnShown(6, 4), fnPixel(3, 1));
    EXPECT_EQ(fnShown(7, 4), white);
    EXPECT_NEAR(fnShown(1, 6)[0], (fnPixel(3, 0)[0] + 255) / 2, 1) << "half of it, cut off";
    for (std::size_t nX = 0; nX < 12; ++nX) {
        EXPECT_EQ(fnShown(40 + nX, 7), fnPixel(nX / 3, 1)) << nX;
    }
    EXPECT_EQ(fnShown(61, 5), fnPixel(3, 1)) << "the bitmap fills the whole destination";
    EXPECT_EQ(fnShown(58, 10), white);
    EXPECT_NEAR(fnShown(2, 20)[0], 204, 1);
    EXPECT_EQ(fnShown(1, 20), white);
    EXPECT_EQ(fnShown(30, 25), white);
    EXPECT_EQ(fnShown(29, 31), white);
    EXPECT_NEAR(fnShown(2, 40)[0], 204, 1);
    EXPECT_NEAR(fnShown(10, 22)[0], 163, 1) << "painted once, also at its corner";
    EXPECT_NEAR(fnShown(11, 23)[0], 204, 1);
    EXPECT_NEAR(fnShown(34, 31)[0], 204, 1);
    EXPECT_EQ(fnShown(33, 31), white);
    EXPECT_EQ(fnShown(52, 35), white);
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

}
}
