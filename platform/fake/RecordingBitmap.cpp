#include <utility>

#include "platform/fake/RecordingBitmap_p.h"
#include "platform/foundation/Exception.h"

namespace Platform::Fake {

using namespace Windows::Graphics; // the drawing interface, named without a prefix

RecordingBitmap::RecordingBitmap(std::shared_ptr<RecordingState> pState,
                                 std::shared_ptr<RecordingDeviceLife> pDevice, PixelImage image)
    : m_pState(std::move(pState)),
      m_pDevice(std::move(pDevice)),
      m_nNumber(m_pState->NewObject()),
      m_image(std::move(image)) {
    m_counted.emplace(m_pState, &RecordingState::nLiveBitmaps);
    m_countedBytes.emplace(m_pState, &RecordingState::nLiveBitmapBytes,
                           static_cast<std::int64_t>(m_image.Bytes().size()));
}

RecordingBitmap::RecordingBitmap(std::shared_ptr<RecordingState> pState,
                                 std::shared_ptr<RecordingDeviceLife> pDevice,
                                 std::shared_ptr<RecordingBuffers> pBuffers)
    : m_pState(std::move(pState)),
      m_pDevice(std::move(pDevice)),
      m_pBuffers(std::move(pBuffers)),
      m_nNumber(m_pState->NewObject()) {}

D2D_SIZE_U RecordingBitmap::GetPixelSize() const {
    return m_pBuffers ? m_pBuffers->back.Size() : m_image.Size();
}

void RecordingBitmap::CopyFromRenderTarget(ID2D1DeviceContext& context) {
    RecordedCall call;
    call.eCall = GraphicsCall::CopyFromRenderTarget;
    call.nObject = m_nNumber;
    call.size = m_image.Size();
    m_pState->Require(call, m_pDevice.get());
    const auto pTarget = std::dynamic_pointer_cast<RecordingBitmap>(context.GetTarget());
    if (!pTarget) {
        throw Platform::Exception(D2DERR_WRONG_STATE, "there is no target to copy from");
    }
    m_image.CopyFrom(pTarget->Image());
}

}
