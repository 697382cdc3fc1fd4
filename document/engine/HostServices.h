// What an engine may offer to a host application beyond what the viewer
// control itself uses. A host asks for an interface with a dynamic cast on the
// engine's document and does without it when the cast fails.
//
// Threads: any, but where it is not said otherwise not the UI thread: calls may
// wait for the engine and for the file. Errors: `EngineException`, with e_ErrNotLoaded before
// `Load`, and the codes of `PDFPage::StartParse` for what cannot be read.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "document/engine/Action.h"
#include "document/engine/Geometry.h"

namespace velko::pdf {

// Where a link leads, one of three: an action inside the document, a URI outside, or
// an action of another kind, for the host to carry out or to refuse. None of them when
// what it names is not in the document. A value: it may outlive the document.
struct LinkGoal {
    std::shared_ptr<IAction> pAction;
    std::string strUri;
    std::string strOtherKind;  // as the file names it, such as "Named" or "Launch"
    std::string strOtherValue; // the command of "Named", the file of "Launch" and "GoToR"
};

// A link on a page, with its area in page space.
struct LinkRecord : LinkGoal {
    common::vxbase::RectF rcArea;
};

// Points, as the pages lie in the file.
struct PageExtent {
    float fWidth = 0.0F;
    float fHeight = 0.0F;
};

class IPageExtents {
public:
    virtual ~IPageExtents() = default;

    // The largest width and the largest height among the pages whose sizes are
    // known by now, which may be of two pages; it grows as more are read. Waits
    // for nothing, so the UI thread may ask, and does not fail.
    virtual PageExtent LargestPage() const = 0;
};

class IRepair {
public:
    virtual ~IRepair() = default;

    // Whether the file was damaged and `Load` had to search it for what is left.
    // Waits for nothing, so the UI thread may ask; false until loaded.
    virtual bool WasRepaired() const = 0;
};

class ILinkSource {
public:
    virtual ~ILinkSource() = default;

    // In the order in which the page draws them: where areas overlap, the last
    // one lies on top. Links that lead nowhere or are hidden are left out. An index out of
    // range raises e_ErrParam.
    virtual std::vector<LinkRecord> GetLinks(std::int32_t nPageIndex) = 0;

    // The destination of a name of the document; empty when it has none such,
    // or one that leads nowhere.
    virtual std::shared_ptr<IAction> FindNamedDestination(const std::string& strName) = 0;
};

}
