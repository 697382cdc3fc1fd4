// Carries the drawing context of a canvas into one frame of a viewer.
#pragma once

#include <memory>

#include "platform/graphics/Graphics.h"

namespace velko::vkit {

class WPRenderDC {
public:
    std::shared_ptr<Windows::Graphics::ID2D1DeviceContext> m_pContext; // set by the canvas
};

}
