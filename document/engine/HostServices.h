// What an engine may offer to a host application beyond what the viewer
// control itself uses. A host asks for an interface with a dynamic cast on the
// engine's document and does without it when the cast fails.
//
// Threads: any, but not the UI thread: calls may wait for the engine.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "document/engine/Action.h"
#include "document/engine/Geometry.h"

namespace velko::pdf {

// A link on a page: its area in page space, and one of three: an action inside
// the document, a URI outside, or an action of another kind, for the host to
// carry out or to refuse.
struct LinkRecord {
    common::vxbase::RectF rcArea;
    std::shared_ptr<IAction> pAction;
    std::string strUri;
    std::string strOtherKind;  // as the file names it, such as "Named" or "Launch"
    std::string strOtherValue; // the command of "Named", the file of "Launch" and "GoToR"
};

class ILinkSource {
public:
    virtual ~ILinkSource() = default;
    virtual std::vector<LinkRecord> GetLinks(std::int32_t nPageIndex) = 0;

    // The destination of a name of the document; empty when it has none such.
    virtual std::shared_ptr<IAction> FindNamedDestination(const std::string& strName) = 0;
};

}
