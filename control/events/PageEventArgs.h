// What the events about pages carry: the document, and in the derived records
// what happened to which page.
//
// Threads: values, read-only once built. Page indexes start at 0.
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

class PageVisibleEventArgs final : public SinglePageEventArgs {
    using SinglePageEventArgs::SinglePageEventArgs;
};

class PageInvisibleEventArgs final : public SinglePageEventArgs {
    using SinglePageEventArgs::SinglePageEventArgs;
};

class PageLoadedEventArgs final : public SinglePageEventArgs {
    using SinglePageEventArgs::SinglePageEventArgs;
};

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

// Keeps copies of both lists, so it stays true when the viewer moves on.
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

// Layout modes: 1 continuous, 2 single page, 3 reflow; 0 before the first.
class PageLayoutModeChangedEventArgs final : public PageEventArgs {
public:
    PageLayoutModeChangedEventArgs(std::shared_ptr<velko::pdf::PDFDoc> pDocument,
                                   std::int32_t nOldMode, std::int32_t nNewMode)
        : PageEventArgs(std::move(pDocument)), OldLayoutMode(nOldMode), NewLayoutMode(nNewMode) {}

    const std::int32_t OldLayoutMode;
    const std::int32_t NewLayoutMode;
};

}
