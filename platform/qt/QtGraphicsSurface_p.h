// A swap chain's back buffer, on its way to becoming a target.
#pragma once

#include <memory>
#include <utility>

#include "platform/foundation/Exception.h"
#include "platform/graphics/Graphics.h"
#include "platform/qt/QtGraphicsState.h"

namespace Platform::Qt {

class QtGraphicsSurface final : public Windows::Graphics::IDXGISurface {
public:
    QtGraphicsSurface(std::shared_ptr<QtDeviceState> pDevice,
                      std::shared_ptr<QtSwapBuffers> pBuffers)
        : m_pDevice(std::move(pDevice)), m_pBuffers(std::move(pBuffers)) {}

    Windows::Graphics::D2D_SIZE_U GetSize() const override {
        return {static_cast<std::uint32_t>(m_pBuffers->size.width()),
                static_cast<std::uint32_t>(m_pBuffers->size.height())};
    }
    const std::shared_ptr<QtDeviceState>& Device() const { return m_pDevice; }
    const std::shared_ptr<QtSwapBuffers>& Buffers() const { return m_pBuffers; }

private:
    const std::shared_ptr<QtDeviceState> m_pDevice;
    const std::shared_ptr<QtSwapBuffers> m_pBuffers;
};

}
