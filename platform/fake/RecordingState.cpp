#include <utility>

#include "platform/fake/RecordingState_p.h"
#include "platform/foundation/Exception.h"

namespace Platform::Fake {

void RecordingState::Record(RecordedCall call) {
    calls.push_back(std::move(call));
}

// The oldest fault whose turn it is; another one due at the same call waits for
// the next call that it matches.
const RecordingState::Fault* RecordingState::TakeFault(GraphicsCall eCall) {
    const Fault* pTaken = nullptr;
    for (auto it = faults.begin(); it != faults.end();) {
        const bool bMatches = !it->eCall || *it->eCall == eCall;
        const bool bDue = bMatches && it->nCallsLeft == 1;
        if (bMatches && !bDue) {
            --it->nCallsLeft;
        }
        if (!bDue || pTaken) {
            ++it;
            continue;
        }
        m_faultTaken = *it;
        pTaken = &m_faultTaken;
        it = it->bForEver ? it + 1 : faults.erase(it);
    }
    return pTaken;
}

Platform::HRESULT RecordingState::Try(RecordedCall call, RecordingDeviceLife* pDevice) {
    const Fault* const pFault = TakeFault(call.eCall);
    if (pFault) {
        ++nFaultsHappened;
        call.nResult = pFault->nCode;
        if (pFault->bLoss && pDevice) {
            pDevice->bLost = true;
        }
    }
    if (call.nResult >= 0 && pDevice && pDevice->bLost) {
        call.nResult = Platform::DXGI_ERROR_DEVICE_REMOVED;
    }
    const Platform::HRESULT nResult = call.nResult;
    calls.push_back(std::move(call));
    return nResult;
}

void RecordingState::Require(RecordedCall call, RecordingDeviceLife* pDevice) {
    const GraphicsCall eCall = call.eCall;
    const Platform::HRESULT nResult = Try(std::move(call), pDevice);
    if (nResult < 0) {
        throw Platform::Exception(nResult, NameOf(eCall));
    }
}

}
