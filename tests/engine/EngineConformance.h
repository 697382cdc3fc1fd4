// What any engine must do, as tests that run against each engine.
//
// An engine takes part by a `ConformanceEngine` that turns described pages into
// a document of its own; see the end of EngineConformanceEngines.cpp.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "document/engine/PDFDoc.h"
#include "tests/engine/EngineFixture.h"
#include "tests/engine/MemoryReader.h"
#include "tests/support/scripted_engine/ScriptedPage.h"

namespace velko::testing {

// Pages are described by their box, rotation, rectangles and annotations; the
// paper is `None` or `Solid`.
struct DocumentDescription {
    std::vector<ScriptedPage> pages;
    std::string strUserPassword;
    std::string strOwnerPassword;
};

class ConformanceEngine {
public:
    virtual ~ConformanceEngine() = default;

    // Registers the engine's classes.
    virtual void Register() = 0;

    // A document that is not loaded yet, over a new reader.
    virtual std::shared_ptr<pdf::PDFDoc> Create(const DocumentDescription& description,
                                                std::shared_ptr<MemoryReader>* ppReader) = 0;
};

struct ConformanceCase {
    std::string strName;
    std::function<std::unique_ptr<ConformanceEngine>()> fnMake;
};

class EngineConformance : public ::testing::TestWithParam<ConformanceCase> {
protected:
    void SetUp() override;

    std::shared_ptr<pdf::PDFDoc> Create(const DocumentDescription& description);
    std::shared_ptr<pdf::PDFDoc> Open(const std::vector<ScriptedPage>& pages);
    std::shared_ptr<pdf::PDFPage> OpenPage(const ScriptedPage& page);

    std::unique_ptr<ConformanceEngine> m_pEngine;
    std::shared_ptr<MemoryReader> m_pReader; // of the last document made
};

// A page of 200 by 100 points with its corner at (10, 20), a quarter in each
// of four colours.
ScriptedPage QuarteredPage(std::int32_t nRotation = 0);

inline constexpr std::uint32_t kBottomLeft = 0xFFFF0000U;  // red
inline constexpr std::uint32_t kBottomRight = 0xFF00FF00U; // green
inline constexpr std::uint32_t kTopLeft = 0xFF0000FFU;     // blue
inline constexpr std::uint32_t kTopRight = 0xFFFFFF00U;    // yellow

}
