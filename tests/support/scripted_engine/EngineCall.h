// One call that reached the scripted engine.
#pragma once

#include <cstdint>
#include <thread>

#include "document/engine/Geometry.h"

namespace velko::testing {

// The operations of the engine that a script can hold, fail and count.
enum class EngineOp {
    CreateDoc,
    Load,
    GetPage,
    StartParse,
    GetAnnotCount,
    GetAnnot,
    CreateBitmap,
    CreateRenderer,
    StartRender,
    RenderAnnot,
    StartSaveAs,
    ReflowStartParse,
    StartRenderReflowPage,
    ReleaseReader,
};

const char* EngineOpName(EngineOp eOp);

struct EngineCall {
    EngineOp eOp = EngineOp::Load;
    std::int32_t nPage = -1;  // the page that it is about; -1 for none
    std::int32_t nIndex = -1; // the annotation's index in its page; -1 for none

    // Renders: page space to the bitmap. Bitmap's size for all that draw.
    common::vxbase::Matrix2D matrix;
    std::int32_t nWidth = 0;
    std::int32_t nHeight = 0;

    // Renders: the renderer's state.
    std::int32_t nColorMode = 0;
    std::uint32_t nBackColor = 0;
    std::uint32_t nForeColor = 0;
    bool bHasAbortFlag = false;

    std::thread::id idThread;
};

}
