// Where the documents for the benchmarks are.
#pragma once

#include <string>

namespace velko::bench {

// The document of that name of the shared corpus; ends the program with a
// message when it is not there.
std::string CorpusFile(const std::string& strName);

}
