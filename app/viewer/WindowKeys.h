// Keys that all of the viewer's windows have.
//
// Threads: UI thread only.
#pragma once

class QDialog;

namespace velko::viewer {

class Commands;

// Those that close a window and end the program do so in a dialog beside it as well.
void AddWindowKeys(QDialog& dialog, const Commands& commands);

}
