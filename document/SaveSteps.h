// Whoever minds the steps in which an engine saves.
//
// Threads: a value; `fnShare` runs on the thread of the step.
#pragma once

#include <functional>

#include "platform/concurrency/Cancellation.h"

namespace velko::vkit {

struct SaveSteps {
    // Cancelled between two steps it ends the save as cancelled, with the file as it was.
    concurrency::cancellation_token token = concurrency::cancellation_token::none();
    std::function<void(float)> fnShare; // what is done, 0 to 1; may be empty
};

}
