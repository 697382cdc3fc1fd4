// The drawing context of the raster device: it gathers a frame and draws it at
// its end, on the target's image.
#pragma once

#include <memory>

#include "platform/graphics/PixelGrid.h"
#include "platform/qt/QtFrameScript_p.h"
#include "platform/qt/QtGraphicsBitmap_p.h"

namespace Platform::Qt {

class QtGraphicsBrush final : public Windows::Graphics::ID2D1SolidColorBrush {
public:
    explicit QtGraphicsBrush(const Windows::Graphics::D2D_COLOR_F& color) : m_color(color) {}
    Windows::Graphics::D2D_COLOR_F GetColor() const override { return m_color; }
    void SetOpacity(float fOpacity) override { m_fOpacity = fOpacity; }
    float GetOpacity() const override { return m_fOpacity; }

private:
    const Windows::Graphics::D2D_COLOR_F m_color;
    float m_fOpacity = 1.0F;
};

class QtGraphicsContext final : public Windows::Graphics::ID2D1DeviceContext {
public:
    using Bitmap = std::shared_ptr<Windows::Graphics::ID2D1Bitmap>;
    using Brush = std::shared_ptr<Windows::Graphics::ID2D1SolidColorBrush>;

    QtGraphicsContext(std::shared_ptr<QtGraphicsState> pState,
                      std::shared_ptr<QtDeviceState> pDevice);

    // The context knows pixels alone and draws no text: these change nothing.
    void SetUnitMode(std::uint32_t /*nMode*/) override {}
    void SetTextAntialiasMode(std::uint32_t /*nMode*/) override {}
    void SetDpi(float /*fDpiX*/, float /*fDpiY*/) override {}

    void SetTarget(Bitmap pTarget) override;
    Bitmap GetTarget() const override { return m_pTarget; }
    Bitmap CreateBitmap(Windows::Graphics::D2D_SIZE_U size, std::span<const std::uint8_t> pixels,
                        std::uint32_t nPitch,
                        const Windows::Graphics::D2D1_BITMAP_PROPERTIES& properties) override;
    Bitmap CreateSharedBitmap(Windows::Graphics::D2D_SIZE_U size,
                              std::shared_ptr<const void> pOwner,
                              std::span<const std::uint8_t> pixels, std::uint32_t nPitch,
                              const Windows::Graphics::D2D1_BITMAP_PROPERTIES& properties) override;
    Brush CreateSolidColorBrush(const Windows::Graphics::D2D_COLOR_F& color) override;
    void BeginDraw() override;
    void EndDraw() override;
    bool IsDrawing() const override { return m_bDrawing; }
    void Clear(const Windows::Graphics::D2D_COLOR_F& color) override;
    void SetTransform(const Windows::Graphics::D2D_MATRIX_3X2_F& matrix) override;
    void DrawBitmap(const Bitmap& pBitmap, const Windows::Graphics::D2D_RECT_F& rcDestination,
                    float fOpacity, Windows::Graphics::D2D1_INTERPOLATION_MODE eInterpolation,
                    const Windows::Graphics::D2D_RECT_F& rcSource) override;
    void FillRectangle(const Windows::Graphics::D2D_RECT_F& rc, const Brush& pBrush) override;
    void DrawRectangle(const Windows::Graphics::D2D_RECT_F& rc, const Brush& pBrush,
                       float fStrokeWidth) override;

    // Draws what was gathered so far: somebody reads the target in mid-frame.
    void DrawGathered();

private:
    void RequireFrame() const;
    void CheckNewBitmap(Windows::Graphics::D2D_SIZE_U size,
                        const Windows::Graphics::D2D1_BITMAP_PROPERTIES& properties) const;
    void AddFill(const QRect& rc, const QColor& color);
    QtFrameScript::Part& AddTurned(QtFrameScript::Kind eKind,
                                   const Windows::Graphics::D2D_RECT_F& rc);
    bool DrawDifference(QtSwapBuffers& buffers);

    const std::shared_ptr<QtGraphicsState> m_pState;
    const std::shared_ptr<QtDeviceState> m_pDevice;
    std::shared_ptr<QtGraphicsBitmap> m_pTarget;
    Windows::Graphics::D2D_MATRIX_3X2_F m_matrix;
    QtFrameScript m_script;
    bool m_bDrawing = false;
    bool m_bDrawnInPart = false; // the target holds the frame up to some point
};

}
