#include "surface/PDFViewCanvas.h"

#include <array>
#include <utility>

#include "document/engine/Bitmap.h"
#include "platform/foundation/Describe.h"
#include "platform/system/Debug.h"
#include "platform/ui/CoreDispatcher.h"

namespace velko::vkit {

using namespace Windows::Graphics; // the drawing interface, named without a prefix
using Windows::Foundation::Rect;

namespace {

constexpr float kOutlineWidth = 1.0F;
constexpr std::uint32_t kBytesPerPixel = 4;

template <class F>
std::exception_ptr FailureOf(const F& fnBody) {
    try {
        fnBody();
        return nullptr;
    } catch (...) {
        return std::current_exception();
    }
}

D2D_COLOR_F ColorFromArgb(std::uint32_t nColor) {
    const auto fnChannel = [nColor](std::uint32_t nShift) {
        return static_cast<float>(((nColor >> nShift) & 0xFFU) / 255.0);
    };
    return {fnChannel(16), fnChannel(8), fnChannel(0), fnChannel(24)};
}

}

PDFViewCanvas::~PDFViewCanvas() {
    m_pPanel->Loaded.remove(m_tokenLoaded);
    m_pPanel->Unloaded.remove(m_tokenUnloaded);
}

void PDFViewCanvas::Initialize() {
    ThrowIfDisposed();
    if (IsActive()) {
        return;
    }
    DirectXPanelBase::Initialize();
    if (!IsActive()) {
        return;
    }
    m_tokenLoaded = m_pPanel->Loaded.add([] {});
    m_tokenUnloaded = m_pPanel->Unloaded.add([] {});
    CreateDeviceResources();
    CreateSizeDependentResources();
    // A panel that has its place already will not tell it by an event.
    OnCompositionScaleChanged();
    if (m_pPanel->ActualWidth() > 0.0 || m_pPanel->ActualHeight() > 0.0) {
        Windows::UI::Xaml::SizeChangedEventArgs args;
        args.NewSize = {static_cast<float>(m_pPanel->ActualWidth()),
                        static_cast<float>(m_pPanel->ActualHeight())};
        OnSizeChanged(args);
    }
}

// --- device resources ---

void PDFViewCanvas::CreateDeviceResources() {
    DirectXPanelBase::CreateDeviceResources();
    m_d2dContext->SetUnitMode(D2D1_UNIT_MODE_PIXELS);
    CreateBrushes();
    m_bLoadingComplete = true;
}

// A brush that cannot be made stays empty; what is drawn with it is left out.
PDFViewCanvas::Brush PDFViewCanvas::MakeBrush(const D2D_COLOR_F& color,
                                              std::optional<float> fOpacity) const {
    try {
        Brush pBrush = Context().CreateSolidColorBrush(color);
        if (fOpacity) {
            pBrush->SetOpacity(*fOpacity);
        }
        return pBrush;
    } catch (const Platform::Exception&) {
        return nullptr;
    }
}

void PDFViewCanvas::CreateBrushes() {
    constexpr std::array<float, 3> kDashes = {2.0F, 2.0F, 2.0F};
    constexpr std::uint32_t kWeightNormal = 400;
    constexpr std::uint32_t kStyleNormal = 0;
    constexpr std::uint32_t kStretchNormal = 5;
    constexpr float kFontSize = 50.0F;

    m_pBlackBrush = MakeBrush({0.0F, 0.0F, 0.0F, 1.0F});
    m_pDashStroke = m_d2dFactory->CreateStrokeStyle(D2D1_STROKE_STYLE_PROPERTIES{}, kDashes);
    m_pDWriteFactory = Platform::Environment()->GraphicsFactory()->DWriteCreateFactory();
    m_pTextFormat = m_pDWriteFactory->CreateTextFormat("Arial", kWeightNormal, kStyleNormal,
                                                       kStretchNormal, kFontSize, "");
    m_pWhiteBrush = MakeBrush({1.0F, 1.0F, 1.0F, 1.0F});
    m_pBlackBrush2 = MakeBrush({0.0F, 0.0F, 0.0F, 1.0F});
    m_pSelectionBrush = MakeBrush({0.0F, 0.0F, 1.0F, 1.0F}, 0.5F);
    m_pGreenBrush = MakeBrush({0.2F, 0.8F, 0.0F, 1.0F}, 0.5F);
    m_pLightBlueBrush = MakeBrush({0.5019608F, 0.5019608F, 1.0F, 1.0F}, 0.3F);
    m_pSkyBrush = MakeBrush({0.09019608F, 0.6117647F, 0.8470588F, 1.0F}, 1.0F);
    m_pGreenBrush2 = MakeBrush({0.2F, 0.8F, 0.0F, 1.0F}, 0.3F);
    m_pPageBrush = MakeBrush(ColorFromArgb(m_nPageColor));
}

void PDFViewCanvas::ReleaseBrushes() {
    for (Brush* const pBrush :
         {&m_pBlackBrush, &m_pWhiteBrush, &m_pBlackBrush2, &m_pSelectionBrush, &m_pGreenBrush,
          &m_pLightBlueBrush, &m_pSkyBrush, &m_pGreenBrush2, &m_pPageBrush}) {
        pBrush->reset();
    }
    m_pDashStroke.reset();
    m_pTextFormat.reset();
    m_pDWriteFactory.reset();
}

void PDFViewCanvas::Dispose() {
    if (m_bDisposed) {
        return;
    }
    m_bDisposed = true;
    const concurrency::critical_section::scoped_lock lock(m_lock);
    m_pendingFrame.reset();
    const auto pSwapChain = m_swapChain;
    ReleaseBrushes();
    Release();
    if (pSwapChain && m_pPanel->SwapChain() == pSwapChain) {
        m_pPanel->SetSwapChain(nullptr);
    }
}

void PDFViewCanvas::ThrowIfDisposed() const {
    if (m_bDisposed) {
        throw Platform::ObjectDisposedException();
    }
}

ID2D1DeviceContext& PDFViewCanvas::Context() const {
    ThrowIfDisposed();
    if (!m_d2dContext) {
        throw Platform::Exception(D2DERR_WRONG_STATE, "the canvas has no drawing device");
    }
    return *m_d2dContext;
}

// --- drawing operations ---

D2D_RECT_F PDFViewCanvas::ToDevice(const Rect& rc) const {
    return {rc.X * m_pPanel->CompositionScaleX(), rc.Y * m_pPanel->CompositionScaleY(),
            (rc.X + rc.Width) * m_pPanel->CompositionScaleX(),
            (rc.Y + rc.Height) * m_pPanel->CompositionScaleY()};
}

void PDFViewCanvas::FillSelection(const Rect& rc) {
    Context().FillRectangle(ToDevice(rc), m_pSelectionBrush);
}

void PDFViewCanvas::FillRect(const Rect& rc, std::uint32_t nColor) {
    Context().FillRectangle(ToDevice(rc), MakeBrush(ColorFromArgb(nColor)));
}

void PDFViewCanvas::DrawRect(const Rect& rc, std::uint32_t nColor) {
    DrawRectWidth(rc, nColor, kOutlineWidth);
}

void PDFViewCanvas::DrawRectWidth(const Rect& rc, std::uint32_t nColor, float fStrokeWidth) {
    Context().DrawRectangle(ToDevice(rc), MakeBrush(ColorFromArgb(nColor)), fStrokeWidth);
}

void PDFViewCanvas::DrawEngineBitmap(velko::common::Bitmap& bitmap, const Rect& rcSource,
                                     const Rect& rcDestination) {
    ID2D1DeviceContext& context = Context();
    const auto nWidth = static_cast<std::uint32_t>(bitmap.GetWidth());
    const auto nHeight = static_cast<std::uint32_t>(bitmap.GetHeight());
    const auto pBitmap = context.CreateBitmap({nWidth, nHeight}, bitmap.GetBuffer(),
                                              nWidth * kBytesPerPixel, D2D1_BITMAP_PROPERTIES{});
    const D2D_RECT_F rcDeviceSource = ToDevice(rcSource);
    const D2D_RECT_F rcDeviceDestination = ToDevice(rcDestination);
    context.DrawBitmap(pBitmap, rcDeviceDestination, 1.0F, D2D1_INTERPOLATION_MODE::LINEAR,
                       rcDeviceSource);
}

std::shared_ptr<ID2D1DeviceContext> PDFViewCanvas::GetDeviceContext() const {
    ThrowIfDisposed();
    return m_d2dContext;
}

std::shared_ptr<IWICImagingFactory2> PDFViewCanvas::GetWicFactory() const {
    ThrowIfDisposed();
    return DirectXPanelBase::GetWicFactory();
}

float PDFViewCanvas::GetScaledWidth() const {
    ThrowIfDisposed();
    return static_cast<float>(m_pPanel->ActualWidth()) * m_pPanel->CompositionScaleX();
}

float PDFViewCanvas::GetScaledHeight() const {
    ThrowIfDisposed();
    return static_cast<float>(m_pPanel->ActualHeight()) * m_pPanel->CompositionScaleY();
}

std::shared_ptr<ID2D1Bitmap> PDFViewCanvas::CopyTarget(
    const std::shared_ptr<ID2D1Bitmap>& pTargetBitmap) {
    ThrowIfDisposed();
    if (!pTargetBitmap || !m_d2dContext) {
        return nullptr;
    }
    auto pCopy =
        m_d2dContext->CreateBitmap(pTargetBitmap->GetPixelSize(), {}, 0, D2D1_BITMAP_PROPERTIES{});
    pCopy->CopyFromRenderTarget(*m_d2dContext);
    return pCopy;
}

void PDFViewCanvas::SetPageColor(std::uint32_t nColor) {
    ThrowIfDisposed();
    m_nPageColor = nColor;
    if (m_d2dContext) {
        m_pPageBrush = MakeBrush(ColorFromArgb(nColor));
    }
}

const PDFViewCanvas::Brush& PDFViewCanvas::PageBrush() const {
    ThrowIfDisposed();
    return m_pPageBrush;
}

const PDFViewCanvas::Brush& PDFViewCanvas::WhiteBrush() const {
    ThrowIfDisposed();
    return m_pWhiteBrush;
}

void PDFViewCanvas::SetSurround(std::uint32_t nColor) {
    ThrowIfDisposed();
    m_nSurround = nColor;
}

D2D_COLOR_F PDFViewCanvas::Surround() const {
    ThrowIfDisposed();
    return ColorFromArgb(m_nSurround);
}

// --- frames ---

std::shared_ptr<WPRenderDC> PDFViewCanvas::CreateRenderDC() {
    ThrowIfDisposed();
    auto pDc = std::make_shared<WPRenderDC>();
    pDc->m_pContext = m_d2dContext;
    return pDc;
}

void PDFViewCanvas::RenderViewer(ICanvasClient& client) {
    RequestFrame(&client, &ICanvasClient::OnRenderCanvas);
}

void PDFViewCanvas::ClearViewer(ICanvasClient& client) {
    RequestFrame(&client, &ICanvasClient::ClearCanvas);
}

void PDFViewCanvas::ClearAndPresent() {
    RequestFrame(nullptr, nullptr);
}

void PDFViewCanvas::RequestFrame(ICanvasClient* pClient, DrawOperation pDraw) {
    ThrowIfDisposed();
    if (!IsActive()) {
        return;
    }
    if (m_bFrameOpen) {
        m_pendingFrame = FrameRequest{
            pClient ? pClient->WeakReference() : std::weak_ptr<ICanvasClient>(), pDraw};
        return;
    }
    const auto pSelf = shared_from_this(); // a handler within the frame may let go of this
    RunFrame(pClient, pDraw);
    RunPendingFrame();
    PostPendingFrame();
}

// The size that changed within the frame is a reason of its own to draw again.
void PDFViewCanvas::RunFrame(ICanvasClient* pClient, DrawOperation pDraw) {
    const std::shared_ptr<void> pKeptAlive = pClient ? pClient->KeepAlive() : nullptr;
    const auto wkClient = pClient ? pClient->WeakReference() : std::weak_ptr<ICanvasClient>();
    std::exception_ptr pFailure = FailureOf([&] {
        const concurrency::critical_section::scoped_lock lock(m_lock);
        DrawAndPresent(pClient, pDraw);
    });
    if (!m_bDisposed && !pFailure && wkClient.lock()) {
        pFailure = FailureOf([&] { TellDeviceRemade(pClient); });
    }
    if (m_bDisposed) {
        return;
    }
    if (pFailure) {
        OnFailure(pFailure, {wkClient, pDraw});
        return;
    }
    m_nFailures = 0;
    if (m_bSizeChangePending && !m_pendingFrame) {
        m_pendingFrame = FrameRequest{wkClient, pDraw};
    }
}

// What a handler asked for within the frame comes in the place of a second try.
void PDFViewCanvas::OnFailure(const std::exception_ptr& pFailure, FrameRequest request) {
    constexpr std::uint32_t kTries = 3;
    if (m_nFailures++ < kTries && !m_pendingFrame) {
        m_pendingFrame = std::move(request);
    }
    if (m_nFailures > 1) {
        return;
    }
    Platform::Debug::OutputDebugString("a frame failed: " + Platform::Describe(pFailure) + "\n");
    if (const auto fnTell = OnFrameFailed) {
        fnTell(pFailure);
    }
}

void PDFViewCanvas::DrawAndPresent(ICanvasClient* pClient, DrawOperation pDraw) {
    EnsureResources();
    std::uint64_t nGeneration = 0;
    do {
        nGeneration = DeviceGeneration();
        Draw(pClient, pDraw);
        if (m_bDisposed) {
            return;
        }
        Present();
    } while (DeviceGeneration() != nGeneration); // lost with its device: once more
}

// Leaves the context without an open frame, whatever the client does.
void PDFViewCanvas::Draw(ICanvasClient* pClient, DrawOperation pDraw) {
    const auto pContext = m_d2dContext; // stays usable when a handler disposes the canvas
    m_bFrameOpen = true;
    try {
        if (pClient) {
            (pClient->*pDraw)(CreateRenderDC());
        } else {
            pContext->BeginDraw();
            pContext->Clear(m_backgroundColor);
        }
        if (pContext->IsDrawing()) {
            pContext->EndDraw();
        }
        m_bFrameOpen = false;
    } catch (...) {
        m_bFrameOpen = false;
        if (pContext->IsDrawing()) {
            pContext->SetTransform(D2D_MATRIX_3X2_F{});
            try {
                pContext->EndDraw();
            } catch (const Platform::Exception&) {
                // The client's failure is the one to report.
            }
        }
        throw;
    }
}

void PDFViewCanvas::RunRequest(const FrameRequest& request) {
    if (!request.pDraw) {
        RunFrame(nullptr, nullptr);
    } else if (const auto pClient = request.wkClient.lock()) {
        RunFrame(pClient.get(), request.pDraw);
    }
}

void PDFViewCanvas::RunPendingFrame() {
    if (m_bDisposed || !m_pendingFrame) {
        return;
    }
    RunRequest(*std::exchange(m_pendingFrame, std::nullopt));
}

void PDFViewCanvas::PostPendingFrame() {
    if (m_bDisposed || !m_pendingFrame) {
        return;
    }
    Platform::Environment()->MainDispatcher()->RunAsync(
        Windows::UI::Core::CoreDispatcherPriority::low,
        [wkSelf = weak_from_this(), request = *std::exchange(m_pendingFrame, std::nullopt)] {
            const auto pSelf = std::static_pointer_cast<PDFViewCanvas>(wkSelf.lock());
            if (!pSelf || pSelf->m_bDisposed) {
                return;
            }
            const auto pClient = request.wkClient.lock();
            // A handler may let go of the client while later frames still ask for it.
            const std::shared_ptr<void> pKeptAlive = pClient ? pClient->KeepAlive() : nullptr;
            if (pClient || !request.pDraw) {
                pSelf->RequestFrame(pClient.get(), request.pDraw);
            }
        });
}

void PDFViewCanvas::TellDeviceRemade(ICanvasClient* pClient) {
    if (pClient && m_nGenerationTold != DeviceGeneration()) {
        m_nGenerationTold = DeviceGeneration();
        pClient->OnDeviceRemade();
    }
}

}
