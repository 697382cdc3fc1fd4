// Wraps the engine's registered factories so that its work is counted and
// ordered faults strike in it. The objects that the component sees are the
// engine's own, except renderers.
#pragma once

#include <memory>

#include "tools/replay/Counters.h"
#include "tools/replay/Faults.h"

namespace velko::replay {

// Replaces the registered factories of documents and renderers. Call once,
// after the engine has registered itself; both objects must be kept by the
// factories, hence shared. Raises when no engine is registered.
void CountEngine(std::shared_ptr<Counters> pCounters, std::shared_ptr<Faults> pFaults);

}
