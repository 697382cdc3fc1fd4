#include "platform/qt/QtSwapChain.h"

#include <utility>

#include "platform/qt/QtGraphicsSurface_p.h"

namespace Platform::Qt {

using namespace Windows::Graphics; // the drawing interface, named without a prefix

namespace {

QSize ToQSize(std::uint32_t nWidth, std::uint32_t nHeight) {
    return {static_cast<int>(nWidth), static_cast<int>(nHeight)};
}

// Counts one call down; true when the fault happens with this call.
bool IsDue(std::optional<std::uint64_t>& nCallsLeft) {
    if (!nCallsLeft) {
        return false;
    }
    if (*nCallsLeft == 0) {
        nCallsLeft.reset();
        return true;
    }
    --*nCallsLeft;
    return false;
}

}

QtSwapChain::QtSwapChain(std::shared_ptr<QtGraphicsState> pState,
                         std::shared_ptr<QtDeviceState> pDevice,
                         const DXGI_SWAP_CHAIN_DESC1& description)
    : m_pState(std::move(pState)),
      m_pDevice(std::move(pDevice)),
      m_pBuffers(std::make_shared<QtSwapBuffers>()) {
    m_pBuffers->size = ToQSize(description.Width, description.Height);
}

Platform::HRESULT QtSwapChain::ResizeBuffers(std::uint32_t /*nBufferCount*/, std::uint32_t nWidth,
                                             std::uint32_t nHeight, std::uint32_t nFormat,
                                             std::uint32_t /*nFlags*/) {
    if (m_pDevice->bLost) {
        return Platform::DXGI_ERROR_DEVICE_REMOVED;
    }
    if (nWidth == 0 || nHeight == 0 || nFormat != DXGI_FORMAT_B8G8R8A8_UNORM) {
        return DXGI_ERROR_INVALID_CALL;
    }
    m_pBuffers->size = ToQSize(nWidth, nHeight);
    m_pBuffers->bFrameBegun = m_pBuffers->bFrameDrawn = false;
    return Platform::S_OK;
}

Platform::HRESULT QtSwapChain::Present1(std::uint32_t /*nSyncInterval*/, std::uint32_t /*nFlags*/) {
    if (IsDue(m_pState->nPresentsUntilLoss)) {
        m_pDevice->bLost = true;
        ++m_pState->nDevicesLost;
    }
    if (m_pDevice->bLost) {
        return Platform::DXGI_ERROR_DEVICE_REMOVED;
    }
    if (IsDue(m_pState->nPresentsUntilFailure)) {
        return Platform::E_FAIL;
    }
    if (!m_pBuffers->bFrameDrawn) {
        return Platform::S_OK;
    }
    ShowDrawn();
    ++m_nPresents;
    ++m_pState->nPresents;
    if (OnPresented) {
        const auto fnPresented = OnPresented; // the window may replace it meanwhile
        fnPresented();
    }
    return Platform::S_OK;
}

void QtSwapChain::ShowDrawn() {
    m_rcPresented = std::exchange(m_pBuffers->rcChanged, QRect());
    if (m_pBuffers->bFrameBegun) {
        std::swap(m_pBuffers->front, m_pBuffers->back);
        m_pBuffers->frontScript.Swap(m_pBuffers->backScript);
        m_rcPresented = m_pBuffers->front.rect();
    }
    m_pBuffers->bFrameBegun = m_pBuffers->bFrameDrawn = false;
}

void QtSwapChain::SetMatrixTransform(const D2D_MATRIX_3X2_F& matrix) {
    m_matrix = matrix;
}

std::shared_ptr<IDXGISurface> QtSwapChain::GetBuffer(std::uint32_t nIndex) {
    if (nIndex != 0) {
        throw Platform::Exception(DXGI_ERROR_INVALID_CALL, "only buffer 0 can be drawn into");
    }
    return std::make_shared<QtGraphicsSurface>(m_pDevice, m_pBuffers);
}

QImage QtSwapChain::FrontImage() const {
    return m_pBuffers->front;
}

}
