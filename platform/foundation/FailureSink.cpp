#include "platform/foundation/FailureSink.h"

#include <string>

#include "platform/foundation/Describe.h"
#include "platform/system/Debug.h"

namespace Platform {

FailureSink::FailureSink(const char* szPlace)
    : m_pState(std::make_shared<State>(State{szPlace, nullptr})) {}

void FailureSink::Tell(const State& state, const std::exception_ptr& pFailure) {
    if (const auto fnTell = state.fnTell) { // a copy: the call may listen anew, or end it all
        fnTell(pFailure);
        return;
    }
    Debug::OutputDebugString(std::string("unhandled failure in ") + state.szPlace + ": " +
                             Describe(pFailure) + "\n");
}

}
