// The text of a page with its places, for hosts that select, mark or search it.
//
// A host asks for it with a dynamic cast on the engine's document.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "document/engine/AnnotEditor.h"
#include "document/engine/Geometry.h"

namespace velko::pdf {

// Indexes count `PageText::chars`, the end excluded. Units: page space, points.
struct TextChar {
    char32_t nCode = 0; // a space between words stands for itself; no line ends
    TextQuad quad;
    float fFontSize = 0.0F;
};

struct TextLine {
    std::int32_t nFirst = 0;
    std::int32_t nEnd = 0;
    common::vxbase::PointF ptDirection; // in which it is read, of length 1
    bool bHyphenated = false;           // its last word goes on in the next line
};

struct TextBlock {
    std::int32_t nFirstLine = 0;
    std::int32_t nEndLine = 0;
};

// In the order of reading, within a line too: right-to-left text is in the order of
// its letters. Immutable.
struct PageText {
    std::vector<TextChar> chars;
    std::vector<TextLine> lines;
    std::vector<TextBlock> blocks;
};

// The pages for somebody who passes through all of them, such as a search. It reads
// beside what the screen needs: nobody who shows pages waits for it, and nothing that
// they need leaves the engine's bound for it.
class ITextReader {
public:
    virtual ~ITextReader() = default;

    // As `ITextSource::TextOf`, but it is not kept. Any thread but the UI thread,
    // several at once. Raises `task_canceled` too.
    virtual std::shared_ptr<const PageText> Read(std::int32_t nPageIndex) = 0;
};

class ITextSource {
public:
    using AbortFlag = std::shared_ptr<const std::atomic<bool>>;

    virtual ~ITextSource() = default;

    // Never empty; a page without text has none in it. Kept by the engine within its
    // bound, so asking again is cheap. Any thread but the UI thread: it may wait for
    // the page to be read. Raises `EngineException`: e_ErrNotLoaded before `Load`,
    // e_ErrParam for an index out of range, and the codes of `PDFPage::StartParse`.
    virtual std::shared_ptr<const PageText> TextOf(std::int32_t nPageIndex) = 0;

    // Whoever has set the flag is not kept waiting; it may be empty. Raises
    // e_ErrNotLoaded before `Load`. Any thread; cheap until the first page is read.
    virtual std::shared_ptr<ITextReader> NewReader(AbortFlag pAbort) = 0;
};

// Where the same characters stand while the pages' text is shown set anew.
class ISetTextSource {
public:
    virtual ~ISetTextSource() = default;

    // Stands for what the text was set for last, by whatever `ReflowPage`: another one
    // after a change of its parameters, 0 before the first. Any thread; waits for nothing.
    virtual std::uint64_t SetNumber() const = 0;

    // The page's characters at the same indexes as `TextOf` gives them, with the places
    // and the lines of the text as it was set last: in page space, so that the page's box
    // is the whole of what is set. Hyphens that were undone and the like have no width,
    // and no line is hyphenated: what is to be copied is read from `TextOf`. A page with
    // nothing to show has no characters; empty where nothing was set yet. Made anew each
    // time. Threads and errors as `TextOf`.
    virtual std::shared_ptr<const PageText> SetTextOf(std::int32_t nPageIndex) = 0;
};

}
