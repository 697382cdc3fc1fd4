// Documents whose annotations are edited, and what is in them.
#pragma once

#include <memory>
#include <string>

#include "document/engine/AnnotEditor.h"
#include "tests/engine/MuPdfFixture.h"
#include "tests/support/pdf_writer/PdfWriter.h"

namespace velko::testing {

inline constexpr std::int32_t kNote = 1;
inline constexpr std::int32_t kFreeText = 3;
inline constexpr std::int32_t kLine = 4;
inline constexpr std::int32_t kSquare = 5;
inline constexpr std::int32_t kHighlight = 9;
inline constexpr std::int32_t kInk = 15;

// One of the kind, drawn within 40..100 by 50..80 of the page.
pdf::AnnotRecord RecordOf(std::int32_t nType);

// What a kind says, and nothing else of the record, in one line.
std::string Told(const pdf::AnnotRecord& record);

// A document that was loaded from memory.
struct Opened {
    explicit Opened(const std::string& strBytes, const std::string& strPassword = {});
    pdf::IAnnotEditor& Editor() const;
    std::shared_ptr<common::Bitmap> Picture(std::int32_t nPage = 0) const;
    std::string List(std::int32_t nPage = 0) const; // with the annotations' ids
    std::string ListWithoutIds(std::int32_t nPage = 0) const;

    std::shared_ptr<MemoryReader> pReader;
    std::shared_ptr<pdf::PDFDoc> pDoc;
};

// Annotations of every form in which a file has them: an object with a popup, two that
// stand in the list itself, one of two pages, and entries that are none.
std::string AnnotatedDocument(PdfOptions options = {});

}
