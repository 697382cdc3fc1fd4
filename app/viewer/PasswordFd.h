// A password that another program hands over by an open descriptor, so that it stands in
// no command line.
//
// Threads: any; waits for the other program.
#pragma once

#include <optional>

#include "platform/foundation/SecretText.h"

namespace velko::viewer {

// All bytes up to the end, without a line's end there, and closes the descriptor.
// Empty for one that cannot be read or gives more than any password has.
std::optional<Platform::SecretText> ReadPassword(int nDescriptor);

}
