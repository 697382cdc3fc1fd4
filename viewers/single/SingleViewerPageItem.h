// A page laid out by the viewer of single pages, and one of its blocks.
#pragma once

#include "viewers/core/ViewerPageItem.h"

namespace velko::vkit {

using SingleViewerPageItem = ViewerPageItem;
using SingleViewerPageItemBlock = ViewerPageItemBlock;

}
