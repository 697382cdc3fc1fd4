// The text of a file's pages as the library's own extraction gives it, to hold
// what the engine makes of it against.
//
// Threads: any.
#pragma once

#include <string>
#include <vector>

namespace velko::testing {

// UTF-8, a string for each of the first `nMost` pages: what lies on the page,
// annotations included; ligatures are taken apart. Empty for a file that does not open.
std::vector<std::string> PlainTextOf(const std::string& strBytes, int nMost);

}
