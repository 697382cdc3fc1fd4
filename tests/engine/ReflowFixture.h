// Shorthands to set pages of this engine anew and to draw them.
//
// Threads: any, one at a time for each object.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "document/engine/ReflowPage.h"
#include "engines/mupdf/reflow/ReflowedPage.h"
#include "tests/engine/MuPdfFixture.h"

namespace velko::testing {

struct Wanted {
    float fWidth = 400.0F;
    float fHeight = 600.0F;
    std::int32_t nPercent = 200;
    std::int32_t nFlags = pdf::ReflowPage::kTextAndPictures;
    float fLineSpacing = 0.0F;
    float fParagraphSpacing = 3.0F;
};

std::shared_ptr<pdf::ReflowPage> CreateReflow(std::shared_ptr<pdf::PDFPage> pPage);

// The state that the parse ended with.
std::int32_t Parse(pdf::ReflowPage& page, const Wanted& wanted = {});

// Of the first page; an empty one for bytes that do not open.
std::shared_ptr<pdf::ReflowPage> ReflowOf(const std::string& strBytes, const Wanted& wanted = {});

std::shared_ptr<const engines::mupdf::reflow::Layout> LayoutOf(
    const std::shared_ptr<pdf::ReflowPage>& pReflow);
std::string TextOf(const std::shared_ptr<pdf::ReflowPage>& pReflow);

// The rows from `nTop` on.
std::shared_ptr<common::Bitmap> DrawBand(const std::shared_ptr<pdf::ReflowPage>& pReflow, int nTop,
                                         int nHeight, std::uint32_t nBack = kWhite,
                                         std::uint32_t nFore = kBlack);
int InkedPixels(common::Bitmap& bitmap, std::uint32_t nPaper = kWhite);

// Content and documents.
std::string TextAt(double x, double y, const std::string& strText, double dbSize = 10.0);
std::string OnePage(const std::string& strContent);

inline constexpr std::uint32_t kPictureColor = 0xFF2060A0U;

// Lines above and below a picture of one colour, 100 points high, and more content.
std::string Illustrated(const std::string& strMore = {});

}
