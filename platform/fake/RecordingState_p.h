// What the recording device's objects share: the record, the faults, the
// counters and the life of devices.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "platform/fake/PixelImage.h"
#include "platform/fake/RecordedCall.h"

namespace Platform::Fake {

struct RecordingDeviceLife {
    bool bLost = false;
};

// The two images of a swap chain; the newest frame is in `back` until presented.
struct RecordingBuffers {
    PixelImage back;
    PixelImage front;
    bool bFrameBegun = false; // since the last present
    bool bFrameDrawn = false;

    const PixelImage& Current() const { return bFrameBegun || front.IsEmpty() ? back : front; }
};

class RecordingState {
public:
    struct Fault {
        std::optional<GraphicsCall> eCall; // none: any
        std::uint32_t nCallsLeft = 1;
        Platform::HRESULT nCode = Platform::E_FAIL;
        bool bLoss = false;
        bool bForEver = false;
    };

    std::uint64_t NewObject() { return ++m_nLastObject; }

    // Writes down a call that cannot fail.
    void Record(RecordedCall call);

    // Writes down a call, and answers with which code it is to fail, if any. A
    // fault that loses the device marks it.
    Platform::HRESULT Try(RecordedCall call, RecordingDeviceLife* pDevice = nullptr);

    // As `Try`, raising the failure.
    void Require(RecordedCall call, RecordingDeviceLife* pDevice = nullptr);

    std::vector<RecordedCall> calls;
    std::vector<Fault> faults;
    std::uint32_t nFaultsHappened = 0;
    bool bHasHardware = true;
    bool bComposes = true;
    std::int64_t nLiveBitmaps = 0;
    std::int64_t nLiveBitmapBytes = 0;
    std::int64_t nLiveDevices = 0;
    std::int64_t nLiveSwapChains = 0;
    std::weak_ptr<RecordingBuffers> wkNewestBuffers;

private:
    const Fault* TakeFault(GraphicsCall eCall);

    std::uint64_t m_nLastObject = 0;
    Fault m_faultTaken;
};

// Adds to a counter for as long as it lives.
class CountedLife {
public:
    CountedLife(std::shared_ptr<RecordingState> pState, std::int64_t RecordingState::*pCounter,
                std::int64_t nAmount = 1)
        : m_pState(std::move(pState)), m_pCounter(pCounter), m_nAmount(nAmount) {
        (*m_pState).*m_pCounter += m_nAmount;
    }
    ~CountedLife() { (*m_pState).*m_pCounter -= m_nAmount; }
    CountedLife(const CountedLife&) = delete;
    CountedLife& operator=(const CountedLife&) = delete;

private:
    std::shared_ptr<RecordingState> m_pState;
    std::int64_t RecordingState::*m_pCounter;
    std::int64_t m_nAmount;
};

}
