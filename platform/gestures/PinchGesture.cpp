#include "platform/gestures/PinchGesture.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Platform::Gestures {

namespace {

constexpr float kLeastStep = 0.1F;
constexpr float kMostStep = 10.0F;

}

void PinchGesture::Apply(const PinchRecord& record) {
    if (record.ePhase != PinchPhase::Zoom) {
        m_bDropped = false;
        End();
    } else if (!m_bDropped && std::isfinite(record.fFactor) && record.fFactor != 1.0F) {
        Zoom(record);
    }
}

void PinchGesture::Zoom(const PinchRecord& record) {
    bool bOpen = m_bOpen;
    if (!bOpen) {
        m_bOpen = true; // before handlers run, so that a cancel in them ends it
        bOpen = m_manipulation.Begin(Device::Touch, record.ptAt);
    }
    const float fFactor = std::clamp(record.fFactor, kLeastStep, kMostStep);
    if (!bOpen || !m_manipulation.MoveTo(m_manipulation.Position(), fFactor)) {
        Cancel();
    }
}

void PinchGesture::End() {
    if (std::exchange(m_bOpen, false)) {
        m_manipulation.End();
    }
}

void PinchGesture::Cancel() {
    m_bDropped = m_bDropped || m_bOpen;
    End();
}

}
