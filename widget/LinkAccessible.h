// What aids for readers who do not see the screen are told of the links: the one
// that has the focus is a child of the window with the pages, and the focused one.
//
// Threads: UI thread only.
#pragma once

namespace Platform::Qt {
class QtElementWindow;
}

namespace velko::vkit {

class LinkFocus;

class LinkAccessible {
public:
    LinkAccessible() = delete;

    // For a window that has its focus of links by now, before the first `Tell`.
    static void Install(Platform::Qt::QtElementWindow& window);

    // Another link has the focus, or none any more.
    static void Tell(const LinkFocus& focus, Platform::Qt::QtElementWindow& window);
};

}
