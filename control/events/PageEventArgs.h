// What the events about pages carry: the document, and in the derived records
// what happened to which page.
//
// Threads: all of them come on the UI thread. Values, read-only once built. Page
// indexes start at 0.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "document/PageFailure.h"

namespace velko::pdf {
class PDFDoc;
}

namespace velko::vkit {

class PageEventArgs {
public:
    explicit PageEventArgs(std::shared_ptr<velko::pdf::PDFDoc> pDocument)
        : Document(std::move(pDocument)) {}
    virtual ~PageEventArgs() = default;

    const std::shared_ptr<velko::pdf::PDFDoc> Document; // may be empty
};

// The records about one page differ in their type alone.
class SinglePageEventArgs : public PageEventArgs {
public:
    SinglePageEventArgs(std::shared_ptr<velko::pdf::PDFDoc> pDocument, std::int32_t nPageIndex)
        : PageEventArgs(std::move(pDocument)), PageIndex(nPageIndex) {}

    const std::int32_t PageIndex;
};

// `PageVisibleEvent` and `PageInvisibleEvent`: a command brought the page into
// sight or took it out of sight. All that went out of sight are told before those
// that came, and `PageChangedEvent` ends the row. What is not a step of the manager
// (a resize, a turn, a drag's release) is told by none of them: hosts that show a
// page number ask in `RenderCanvasEvent`.
class PageVisibleEventArgs final : public SinglePageEventArgs {
    using SinglePageEventArgs::SinglePageEventArgs;
};

class PageInvisibleEventArgs final : public SinglePageEventArgs {
    using SinglePageEventArgs::SinglePageEventArgs;
};

// `PageLoadedEvent`: the engine's page became available, often in the middle of a
// layout: commands from its handlers run after the step that asked.
class PageLoadedEventArgs final : public SinglePageEventArgs {
    using SinglePageEventArgs::SinglePageEventArgs;
};

// `PageUnloadedEvent`: the document is being closed, and gives its pages up. Raised
// with its page table locked: the handler must not wait for another thread.
class PageUnloadedEventArgs final : public SinglePageEventArgs {
    using SinglePageEventArgs::SinglePageEventArgs;
};

// `Failure` is empty when nothing of the page fails any more.
class PageFailureEventArgs final : public SinglePageEventArgs {
public:
    PageFailureEventArgs(std::shared_ptr<velko::pdf::PDFDoc> pDocument, std::int32_t nPageIndex,
                         std::optional<PageFailure> failure)
        : SinglePageEventArgs(std::move(pDocument), nPageIndex), Failure(std::move(failure)) {}

    const std::optional<PageFailure> Failure;
};

// `PageChangedEvent`: after every step, also one that left the same pages. Keeps
// copies of both lists, so it stays true when the viewer moves on.
class PageChangedEventArgs final : public PageEventArgs {
public:
    PageChangedEventArgs(std::shared_ptr<velko::pdf::PDFDoc> pDocument,
                         const std::vector<std::int32_t>& oldPages,
                         const std::vector<std::int32_t>& newPages)
        : PageEventArgs(std::move(pDocument)),
          OldVisiblePages(oldPages),
          NewVisiblePages(newPages) {}

    const std::vector<std::int32_t> OldVisiblePages;
    const std::vector<std::int32_t> NewVisiblePages;
};

// `PageLayoutModeChangedEvent`: after the first layout of a document that opens,
// whether or not the mode differs, and after another mode has laid out. Modes:
// viewers/core/Modes.h; the old one of an open is the one of the open before.
class PageLayoutModeChangedEventArgs final : public PageEventArgs {
public:
    PageLayoutModeChangedEventArgs(std::shared_ptr<velko::pdf::PDFDoc> pDocument,
                                   std::int32_t nOldMode, std::int32_t nNewMode)
        : PageEventArgs(std::move(pDocument)), OldLayoutMode(nOldMode), NewLayoutMode(nNewMode) {}

    const std::int32_t OldLayoutMode;
    const std::int32_t NewLayoutMode;
};

}
