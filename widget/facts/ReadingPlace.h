// Where a reader is in the shown document, as the height in it that its outline counts in.
//
// Threads: UI thread only.
#pragma once

#include "widget/facts/Outline.h"

namespace velko::vkit {

class VelkoPdfView;

// A little below the top of the view, so that what has just been gone to counts as read.
// On page -1 without a document.
DocumentHeight ReadingPlaceOf(const VelkoPdfView& view);

}
