#include "tools/replay/Faults.h"

namespace velko::replay {

void Faults::Arm(Fault eFault, std::int32_t nAfter) {
    m_remaining[static_cast<std::size_t>(eFault)] = nAfter;
}

bool Faults::Strikes(Fault eFault) {
    std::atomic<std::int64_t>& remaining = m_remaining[static_cast<std::size_t>(eFault)];
    std::int64_t nNow = remaining;
    while (nNow != kUnarmed && !remaining.compare_exchange_weak(nNow, nNow - 1)) {
    }
    return nNow == 0; // the step from 0 to unarmed is one caller's alone
}

}
