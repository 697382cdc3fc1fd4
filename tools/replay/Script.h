// Runs a script: its lines one after the other, until one is not in the format.
#pragma once

#include <iosfwd>

namespace velko::replay {

class Session;

inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1; // the control itself failed
inline constexpr int kExitFormat = 2;  // a line (or the command line) is not in the format

// Reads commands from `input` and runs each when its line is complete; what is
// wrong with a line goes to `errors`. Gives the exit status. The UI runs only
// while a command does, so a script means the same whatever feeds it.
int RunScript(std::istream& input, Session& session, std::ostream& errors);

}
