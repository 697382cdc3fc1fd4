// The viewer's windows: it opens them, and each goes when the reader closes it.
//
// All of them live in one process with one runtime, so they have the settings,
// the recent files and the engine's memory in common; what one window changes of
// the colours the others show too. The process ends with the last window.
// Lifetime: goes before the runtime; takes along the windows that are open yet.
// Threads: UI thread only. Units: Qt's.
#pragma once

#include <QObject>
#include <QSize>
#include <memory>
#include <optional>
#include <vector>

#include "widget/FilePath.h"

namespace velko::vkit {
class PDFViewCtrl;
}

namespace velko::viewer {

class InstanceServer;
class MainWindow;
struct InstanceCall;

class WindowList : public QObject {
    Q_OBJECT

public:
    WindowList();
    ~WindowList() override;

    // A hidden window around a control of `VelkoPdfView::CreateControl`. Without
    // a size it has the one that was kept, as far as the screen has room.
    MainWindow& Add(std::shared_ptr<vkit::PDFViewCtrl> pControl, std::optional<QSize> size);

    // Shows a window of its own with the file; with an empty name the start.
    MainWindow& Open(const vkit::FilePath& path);

    // Viewers that are started later find the files that are shown here.
    void Serve();

    // Closes them one by one, as the reader does.
    void CloseAll();

private:
    MainWindow* Showing(const std::string& strPath) const;
    std::vector<std::string> Shown() const;
    void Show(const std::string& strPath, const InstanceCall& call);
    QSize SizeOfNext() const;
    void ShareColors(const MainWindow& from);

    std::unique_ptr<InstanceServer> m_pServer;
    std::vector<MainWindow*> m_windows; // in the order of their opening
};

}
