// A record that hosts can name; it carries nothing, and so do the lists of it.
#pragma once

#include <memory>

#include "platform/foundation/Collections.h"

namespace velko::vkit {

struct SaveFileBuffer {};

using SaveFileBufferPtr = std::shared_ptr<SaveFileBuffer>;
using SaveFileBufferList = Windows::Foundation::Collections::ObservableVector<SaveFileBufferPtr>;

}
