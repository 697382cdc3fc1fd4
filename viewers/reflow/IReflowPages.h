// What a laid-out page of set text asks of its viewer: the text, measured.
//
// Items hold it weakly. Threads: the UI thread only. Units: device pixels.
#pragma once

#include <cstdint>
#include <memory>

#include "document/VLK_ReflowPage.h"
#include "viewers/core/PageGeometry.h"

namespace velko::vkit {

class ReflowViewerPageItem;

class IReflowPages {
public:
    virtual ~IReflowPages() = default;

    // The place that the item's page takes, by the viewer's present scale; sees
    // to the item's set text. 0 by 0 for a page with nothing to show. Raises
    // `ObjectDisposedException` once the document is closed.
    virtual DisplaySize GetReflowDisplaySize(ReflowViewerPageItem& item) = 0;
};

}
