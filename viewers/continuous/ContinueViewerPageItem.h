// A page laid out by the continuous viewer, and one of its blocks.
#pragma once

#include "viewers/core/ViewerPageItem.h"

namespace velko::vkit {

using ContinueViewerPageItem = ViewerPageItem;
using ContinueViewerPageItemBlock = ViewerPageItemBlock;

}
