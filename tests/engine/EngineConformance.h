// What the tests that run against every engine need of one.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/engine/MemoryReader.h"
#include "tests/support/scripted_engine/ScriptedPage.h"

namespace velko::testing {

// Pages are described by their box, rotation, rectangles and annotations (squares
// and stamps); the paper is `None` or `Solid`.
struct DocumentDescription {
    std::vector<ScriptedPage> pages;
    std::string strUserPassword;
    std::string strOwnerPassword;
};

// Has its engine registered for its own length.
class ConformanceEngine {
public:
    virtual ~ConformanceEngine() = default;

    // A reader over which the engine makes the described document.
    virtual std::shared_ptr<MemoryReader> MakeReader(const DocumentDescription& description) = 0;
};

struct ConformanceCase {
    const char* szName;
    std::unique_ptr<ConformanceEngine> (*fnMake)();
};
std::vector<ConformanceCase> ConformanceCases(); // one for each engine

}
