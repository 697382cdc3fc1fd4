// The drawing context of the recording device, and its brush.
#pragma once

#include <memory>

#include "platform/fake/RecordingBitmap_p.h"

namespace Platform::Fake {

class RecordingBrush final : public Windows::Graphics::ID2D1SolidColorBrush {
public:
    RecordingBrush(std::shared_ptr<RecordingState> pState,
                   const Windows::Graphics::D2D_COLOR_F& color, std::uint64_t nNumber);

    Windows::Graphics::D2D_COLOR_F GetColor() const override { return m_color; }
    void SetOpacity(float fOpacity) override;
    float GetOpacity() const override { return m_fOpacity; }
    std::uint64_t Number() const { return m_nNumber; }

private:
    const std::shared_ptr<RecordingState> m_pState;
    const Windows::Graphics::D2D_COLOR_F m_color;
    const std::uint64_t m_nNumber;
    float m_fOpacity = 1.0F;
};

class RecordingContext final : public Windows::Graphics::ID2D1DeviceContext {
public:
    using Brush = std::shared_ptr<Windows::Graphics::ID2D1SolidColorBrush>;

    RecordingContext(std::shared_ptr<RecordingState> pState,
                     std::shared_ptr<RecordingDeviceLife> pDevice);

    void SetUnitMode(std::uint32_t nMode) override;
    void SetTextAntialiasMode(std::uint32_t nMode) override;
    void SetDpi(float fDpiX, float fDpiY) override;
    void SetTarget(std::shared_ptr<Windows::Graphics::ID2D1Bitmap> pTarget) override;
    std::shared_ptr<Windows::Graphics::ID2D1Bitmap> GetTarget() const override;
    std::shared_ptr<Windows::Graphics::ID2D1Bitmap> CreateBitmap(
        Windows::Graphics::D2D_SIZE_U size, std::span<const std::uint8_t> pixels,
        std::uint32_t nPitch, const Windows::Graphics::D2D1_BITMAP_PROPERTIES& properties) override;
    Brush CreateSolidColorBrush(const Windows::Graphics::D2D_COLOR_F& color) override;
    void BeginDraw() override;
    void EndDraw() override;
    bool IsDrawing() const override { return m_bDrawing; }
    void Clear(const Windows::Graphics::D2D_COLOR_F& color) override;
    void SetTransform(const Windows::Graphics::D2D_MATRIX_3X2_F& matrix) override;
    void DrawBitmap(const std::shared_ptr<Windows::Graphics::ID2D1Bitmap>& pBitmap,
                    const Windows::Graphics::D2D_RECT_F& rcDestination, float fOpacity,
                    Windows::Graphics::D2D1_INTERPOLATION_MODE eInterpolation,
                    const Windows::Graphics::D2D_RECT_F& rcSource) override;
    void FillRectangle(const Windows::Graphics::D2D_RECT_F& rc, const Brush& pBrush) override;
    void DrawRectangle(const Windows::Graphics::D2D_RECT_F& rc, const Brush& pBrush,
                       float fStrokeWidth) override;

private:
    void RequireFrame() const;
    bool Composes() const;
    void RecordRectangle(GraphicsCall eCall, const Windows::Graphics::D2D_RECT_F& rc,
                         const Brush& pBrush, float fStrokeWidth);

    const std::shared_ptr<RecordingState> m_pState;
    const std::shared_ptr<RecordingDeviceLife> m_pDevice;
    std::shared_ptr<RecordingBitmap> m_pTarget;
    Windows::Graphics::D2D_MATRIX_3X2_F m_matrix;
    bool m_bDrawing = false;
};

}
