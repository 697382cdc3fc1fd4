// The control's drawing surface: a few plain drawing operations, the brushes,
// and one call that lets a viewer draw a frame and presents it.
//
// It keeps no scene and no dirty flag: each redraw is a call.
// A frame that is asked for while one is open (a handler of the host runs
// inside a frame, and its commands paint) is not drawn within it. The latest
// such request runs after the open frame; requests made by that one go to the
// dispatcher at low priority, so that a handler which always asks for a frame
// does not hold the thread.
// Units: rectangles of the drawing operations are logical and are multiplied
// by the panel's composition scale at each call. Threads: the UI thread only.
// Errors: a disposed canvas raises `ObjectDisposedException`. A frame that fails,
// by its device or by what a client or a handler of the host throws within it,
// is ended and not presented, and fails nobody who asked for it: `OnFrameFailed`
// is told, and the frame is tried again, up to three times in a row. Later
// requests are tried once each until one of them succeeds.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>

#include "document/engine/Bitmap.h"
#include "platform/foundation/Geometry.h"
#include "surface/DirectXPanelBase.h"
#include "surface/ICanvasClient.h"
#include "surface/WPRenderDC.h"

namespace velko::vkit {

class PDFViewCanvas final : public DirectXPanelBase {
public:
    using Brush = std::shared_ptr<Windows::Graphics::ID2D1SolidColorBrush>;

    using DirectXPanelBase::DirectXPanelBase;
    ~PDFViewCanvas() override;

    void Initialize() override;

    // --- drawing, between BeginDraw and EndDraw of the caller ---
    void FillSelection(const Windows::Foundation::Rect& rc);
    void FillRect(const Windows::Foundation::Rect& rc, std::uint32_t nColor);
    void DrawRect(const Windows::Foundation::Rect& rc, std::uint32_t nColor);
    void DrawRectWidth(const Windows::Foundation::Rect& rc, std::uint32_t nColor,
                       float fStrokeWidth);
    void DrawEngineBitmap(velko::common::Bitmap& bitmap, const Windows::Foundation::Rect& rcSource,
                          const Windows::Foundation::Rect& rcDestination);
    std::shared_ptr<Windows::Graphics::ID2D1DeviceContext> GetDeviceContext() const;
    std::shared_ptr<Windows::Graphics::IWICImagingFactory2> GetWicFactory() const override;
    void ClearAndPresent();

    std::shared_ptr<WPRenderDC> CreateRenderDC();

    // One frame under the lock. When the device is lost with the frame, the
    // frame is drawn again on the new one.
    void RenderViewer(ICanvasClient& client);
    void ClearViewer(ICanvasClient& client);

    // Told of the first failure after a good frame, outside of the lock; the
    // debug output is told of it too. It raises nothing.
    std::function<void(const std::exception_ptr&)> OnFrameFailed;

    // The panel's actual size times its composition scale, in device pixels.
    float GetScaledWidth() const;
    float GetScaledHeight() const;

    // A bitmap with the pixels of the last frame; for the zoom snapshot. Empty
    // without a target, as after a loss that could not be recovered.
    std::shared_ptr<Windows::Graphics::ID2D1Bitmap> CopyTarget(
        const std::shared_ptr<Windows::Graphics::ID2D1Bitmap>& pTargetBitmap);

    // The brush that stands in for a page that is not rendered yet: the
    // reader's page colour.
    void SetPageColor(std::uint32_t nColor);
    const Brush& PageBrush() const;
    const Brush& WhiteBrush() const;

    // What a viewer clears a frame to: the colour around pages. Kept over the
    // loss of the device; a light grey at first.
    void SetSurround(std::uint32_t nColor); // 0xAARRGGBB
    Windows::Graphics::D2D_COLOR_F Surround() const;

    // Lets go of the device and the brushes, and empties the panel. More than
    // once does nothing.
    void Dispose();

protected:
    void CreateDeviceResources() override;

private:
    // What a frame draws: an operation of a client, or a bare clear.
    using DrawOperation = void (ICanvasClient::*)(const std::shared_ptr<WPRenderDC>&);
    struct FrameRequest {
        std::weak_ptr<ICanvasClient> wkClient;
        DrawOperation pDraw = nullptr; // none: clear to the background colour
    };

    void RequestFrame(ICanvasClient* pClient, DrawOperation pDraw);
    void RunRequest(const FrameRequest& request);
    void RunFrame(ICanvasClient* pClient, DrawOperation pDraw);
    void OnFailure(const std::exception_ptr& pFailure, FrameRequest request);
    void DrawAndPresent(ICanvasClient* pClient, DrawOperation pDraw);
    void Draw(ICanvasClient* pClient, DrawOperation pDraw);
    void RunPendingFrame();
    void PostPendingFrame();
    void TellDeviceRemade(ICanvasClient* pClient);

    void ThrowIfDisposed() const;
    Windows::Graphics::ID2D1DeviceContext& Context() const; // raises when there is none
    Windows::Graphics::D2D_RECT_F ToDevice(const Windows::Foundation::Rect& rc) const;
    Brush MakeBrush(const Windows::Graphics::D2D_COLOR_F& color,
                    std::optional<float> fOpacity = std::nullopt) const;
    void CreateBrushes();
    void ReleaseBrushes();

    Brush m_pBlackBrush;
    std::shared_ptr<Windows::Graphics::ID2D1StrokeStyle> m_pDashStroke;
    std::shared_ptr<Windows::Graphics::IDWriteFactory> m_pDWriteFactory;
    std::shared_ptr<Windows::Graphics::IDWriteTextFormat> m_pTextFormat;
    Brush m_pWhiteBrush;
    Brush m_pBlackBrush2;
    Brush m_pSelectionBrush;
    Brush m_pGreenBrush;
    Brush m_pLightBlueBrush;
    Brush m_pSkyBrush;
    Brush m_pGreenBrush2;
    Brush m_pPageBrush;

    std::uint32_t m_nPageColor = 0xFFFFFFFFU; // 0xAARRGGBB
    std::uint32_t m_nSurround = 0xFFE0E0E0U;
    std::optional<FrameRequest> m_pendingFrame;
    std::uint32_t m_nFailures = 0;       // of frames, since the last good one
    std::uint64_t m_nGenerationTold = 0; // the device of which clients know
    Windows::Foundation::EventRegistrationToken m_tokenLoaded;
    Windows::Foundation::EventRegistrationToken m_tokenUnloaded;
    bool m_bDisposed = false;
};

}
