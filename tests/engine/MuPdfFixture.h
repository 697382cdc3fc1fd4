// Documents and helpers for the tests of the engine on MuPDF.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "document/engine/ErrorCode.h"
#include "engines/mupdf/Operation.h"
#include "tests/engine/EngineFixture.h"

namespace velko::testing {

class MuPdfTest : public ::testing::Test {
protected:
    void SetUp() override;    // registers the engine
    void TearDown() override; // limits and budgets as they were
};

// Pages with text, curves and a picture of noise, 300 by 200 points.
std::string MixedDocument(int nPages = 1);

// A page of `nStrokes` long curved strokes.
std::string StrokesDocument(int nStrokes);

// A page of `nDepth` forms, each drawing the next one ten times: 10 to the
// `nDepth` rectangles; and further pages, each a point wider than the one before.
std::string NestedFormsDocument(int nDepth, int nFurtherPages = 0);

}
