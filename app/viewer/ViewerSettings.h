// What the viewer keeps in the settings for itself, besides what the component
// keeps there: its windows and their side panel.
//
// A value is in force when its setter returns and is stored behind; see
// `ApplicationData`. Threads: the UI thread.
#pragma once

#include <QSize>
#include <optional>

namespace velko::viewer {

class ViewerSettings {
public:
    ViewerSettings() = delete;

    // Of the window closed last, as it is when it does not fill the screen; Qt's units.
    static std::optional<QSize> WindowSize();
    static bool IsMaximized();
    static void KeepWindow(QSize size, bool bMaximized);

    // Whether a document gets a window of its own while another one is shown.
    static bool OpensOwnWindows();
    static void OpensOwnWindows(bool bOwn);

    // The side panel: its width in Qt's units, its tab, and whether it is beside the pages.
    static int SideWidth();
    static void KeepSideWidth(int nWidth);
    static int KeptSideTab();
    static void KeepSideTab(int nTab);
    static bool ShowsSide();
    static void KeepSideShown(bool bShown);

    // Whether a document is shown anew by itself when its file has changed.
    static bool ReloadsChanged();
    static void ReloadsChanged(bool bReload);
};

}
