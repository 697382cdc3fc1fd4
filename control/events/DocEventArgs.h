// What the events about a whole document carry.
//
// `OpenDocEvent` ends every way to a document: opened, failed with a document that
// stays attached, given up at its password. `CloseDocEvent` comes when a document
// goes, also for another one, after `PageUnloadedEvent` for each of its pages; its
// engine document can still be asked, the control finds none any more.
// Threads: both come on the UI thread. Values, read-only once built.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "document/engine/ErrorCode.h"

namespace velko::pdf {
class PDFDoc;
}

namespace velko::vkit {

class DocEventArgs {
public:
    DocEventArgs(std::shared_ptr<velko::pdf::PDFDoc> pDocument, velko::common::ErrorCode nErrorCode,
                 std::int32_t nCanceled)
        : Document(std::move(pDocument)), ErrorCode(nErrorCode), IsCanceled(nCanceled) {}

    const std::shared_ptr<velko::pdf::PDFDoc> Document; // may be empty
    const velko::common::ErrorCode ErrorCode;           // e_ErrSuccess when it opened
    const std::int32_t IsCanceled; // 1 when the reader gave up the password, else 0
};

}
