// The colours of the viewer's parts around dark pages.
//
// Threads: UI thread only.
#pragma once

namespace velko::viewer {

// For all windows, menus and dialogs of the process; else the desktop's colours.
void UseDarkPalette(bool bDark);

}
