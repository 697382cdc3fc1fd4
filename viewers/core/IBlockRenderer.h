// How the pixels of a block come about: of a page of the document, or of a band
// of a page's reflowed text.
//
// Threads: `Start` on the UI thread; what it gives runs on the pool, on values
// that it took at the start, so a block may move on meanwhile.
#pragma once

#include <functional>
#include <memory>

#include "document/RenderBlockRequest.h"
#include "platform/concurrency/Cancellation.h"
#include "platform/concurrency/Scheduler.h"

namespace velko::vkit {

class ViewerPageItemBlock;

// One render, ready to run.
struct BlockRender {
    // Renders into the box; false, or a failure raised, when that did not
    // succeed. Ends early, in whatever way, once the token is cancelled.
    std::function<bool(BitmapBox& box)> fnRender;
    std::shared_ptr<concurrency::scheduler> pQueue; // where it waits for its turn
    std::shared_ptr<void> pUse; // let go of when the render has ended, on any thread
};

class IBlockRenderer {
public:
    virtual ~IBlockRenderer() = default;

    // Without `fnRender` when there is nothing to render from (any more).
    virtual BlockRender Start(const ViewerPageItemBlock& block,
                              concurrency::cancellation_token token) = 0;

    // For the log, on the UI thread: a render brought no pixels, or the block has
    // taken them over.
    virtual void TellFailed() const = 0;
    virtual void TellShown(const ViewerPageItemBlock& /*block*/) const {}
};

}
