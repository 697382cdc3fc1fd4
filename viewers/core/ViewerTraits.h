// What one viewer of whole pages tells, and ends, otherwise than another.
#pragma once

namespace velko::vkit {

struct ViewerTraits {
    // Its name, and that of the operation which starts renders, in the log.
    const char* szClass;
    const char* szRenderOperation;

    // Written for an item without blocks; empty: it is passed over in silence.
    const char* szNothingToRender;
    const char* szNothingToDraw;

    // A frame without pages is cleared; else the old one stays.
    bool bClearsWithoutPages;
};

}
