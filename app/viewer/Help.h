// What the reader may want to know of the program: its version and its licence, in a
// window that can stay beside the pages.
//
// Threads: UI thread only.
#pragma once

class QWidget;

namespace velko::viewer {

class Commands;

void ShowAbout(const Commands& commands, QWidget* pParent);

}
