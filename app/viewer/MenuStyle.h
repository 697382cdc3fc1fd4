// How the viewer's menus look and behave where Qt's own style fails the reader:
// one that is taller than the screen stays one column and scrolls, and the box of
// what can be switched is seen on dark menus as well.
//
// Threads: UI thread only.
#pragma once

class QMenu;

namespace velko::viewer {

// The menu with all that hang from it by now.
void StyleMenu(QMenu& menu);

}
