// Shorthands to drive an engine as the document layer does.
//
// Threads: any, one at a time for each object.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "document/engine/Bitmap.h"
#include "document/engine/ErrorCode.h"
#include "document/engine/PDFDoc.h"
#include "document/engine/Renderer.h"
#include "tests/engine/MemoryReader.h"

namespace velko::testing {

inline constexpr std::uint32_t kWhite = 0xFFFFFFFFU;
inline constexpr std::uint32_t kBlack = 0xFF000000U;

std::shared_ptr<pdf::PDFDoc> CreateDoc(std::shared_ptr<MemoryReader> pReader);
std::shared_ptr<common::Bitmap> CreateBitmap(std::int32_t nWidth, std::int32_t nHeight);
std::shared_ptr<common::Renderer> CreateRenderer(std::shared_ptr<common::Bitmap> pBitmap);

// A document of those bytes, loaded; an empty one when `Load` refuses.
std::shared_ptr<pdf::PDFDoc> OpenDoc(const std::string& strBytes,
                                     const std::string& strPassword = {});

// What to draw of a page: a rectangle of its picture at a size and rotation.
struct View {
    std::int32_t nPageWidth = 0; // of the whole page, pixels
    std::int32_t nPageHeight = 0;
    std::int32_t nRotate = 0; // further quarter turns clockwise
    std::int32_t nLeft = 0;   // of the bitmap in the page's picture
    std::int32_t nTop = 0;
    std::int32_t nWidth = 0; // of the bitmap
    std::int32_t nHeight = 0;
    std::uint32_t nBackColor = kWhite;
    std::uint32_t nForeColor = kBlack;
    common::ScanColors eScanColors = common::ScanColors::Turned;
    bool bContent = true;
    bool bAnnots = false;
    std::shared_ptr<const std::atomic<bool>> pAbort;
};

// The whole page at `dbScale` pixels a point.
View WholePage(const pdf::PDFPage& page, double dbScale = 1.0, std::int32_t nRotate = 0);

// Draws as a document renders a block.
std::shared_ptr<common::Bitmap> Render(const std::shared_ptr<pdf::PDFPage>& pPage,
                                       const View& view);

// 0xAARRGGBB at a pixel.
std::uint32_t PixelAt(common::Bitmap& bitmap, std::int32_t x, std::int32_t y);

// The code of the engine's exception that `fnCall` raises; success for none.
template <class Call>
common::ErrorCode EngineCodeOf(Call&& fnCall) {
    try {
        fnCall();
    } catch (const common::EngineException& error) {
        return error.Code();
    }
    return common::ErrorCode::e_ErrSuccess;
}

// How two equally large pictures differ.
struct Difference {
    int nPixels = 0; // that differ at all
    int nMax = 0;    // largest difference of a channel
};
Difference Compare(common::Bitmap& one, common::Bitmap& two);

}
