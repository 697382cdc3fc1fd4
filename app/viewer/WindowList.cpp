#include "app/viewer/WindowList.h"

#include <QApplication>
#include <QScreen>
#include <utility>

#include "app/viewer/CommandLine.h"
#include "app/viewer/MainWindow.h"
#include "app/viewer/ViewerSettings.h"
#include "app/viewer/instance/InstanceServer.h"

namespace velko::viewer {

using vkit::FilePath;
using vkit::VelkoPdfView;

namespace {

constexpr QSize kFrame{16, 48}; // room for what the desktop puts around a window

// Of a window that is to be shown beside what the desktop itself shows.
QSize OnScreen(QSize size) {
    const QScreen* const pScreen = QGuiApplication::primaryScreen();
    return pScreen != nullptr ? size.boundedTo(pScreen->availableSize() - kFrame) : size;
}

}

WindowList::WindowList() = default;

WindowList::~WindowList() {
    m_pServer.reset();
    for (MainWindow* const pWindow : std::exchange(m_windows, {})) {
        pWindow->disconnect(this);
        delete pWindow;
    }
}

MainWindow& WindowList::Add(std::shared_ptr<vkit::PDFViewCtrl> pControl,
                            std::optional<QSize> size) {
    auto* const pWindow = new MainWindow(std::move(pControl), size ? *size : SizeOfNext());
    pWindow->setAttribute(Qt::WA_DeleteOnClose);
    if (!size && ViewerSettings::IsMaximized()) {
        pWindow->setWindowState(Qt::WindowMaximized);
    }
    connect(pWindow, &QObject::destroyed, this,
            [this, pWindow] { std::erase(m_windows, pWindow); });
    connect(pWindow, &MainWindow::WindowWanted, this, [this](const FilePath& path) { Open(path); });
    connect(pWindow, &MainWindow::EndWanted, this, &WindowList::CloseAll);
    connect(&pWindow->View(), &VelkoPdfView::ViewChanged, this,
            [this, pWindow] { ShareColors(*pWindow); });
    connect(pWindow, &MainWindow::KeysChanged, this, [this] {
        for (MainWindow* const pEach : m_windows) {
            pEach->ReadKeys();
        }
    });
    m_windows.push_back(pWindow);
    return *pWindow;
}

MainWindow& WindowList::Open(const FilePath& path) {
    auto pControl = VelkoPdfView::CreateControl();
    VelkoPdfView::Opening opening;
    if (!path.IsEmpty()) {
        opening = VelkoPdfView::BeginOpen(*pControl, path);
    }
    MainWindow& window = Add(std::move(pControl), std::nullopt);
    window.KeepPlaces();
    window.Begin(path, std::move(opening));
    window.show();
    return window;
}

// --- calls of later starts -------------------------------------------------

void WindowList::Serve() {
    InstanceServer::Hands hands;
    hands.fnShown = [this] { return Shown(); };
    hands.fnShow = [this](const std::string& strPath, const InstanceCall& call) {
        Show(strPath, call);
    };
    m_pServer = std::make_unique<InstanceServer>(std::move(hands), nullptr);
}

std::vector<std::string> WindowList::Shown() const {
    std::vector<std::string> shown;
    for (const MainWindow* const pWindow : m_windows) {
        if (!pWindow->IsFree() && !pWindow->View().File().IsEmpty()) {
            shown.push_back(pWindow->View().File().Bytes());
        }
    }
    return shown;
}

// The window that was used last, where several show it.
MainWindow* WindowList::Showing(const std::string& strPath) const {
    MainWindow* pFound = nullptr;
    for (MainWindow* const pWindow : m_windows) {
        const bool bShows = !pWindow->IsFree() && pWindow->View().File().Bytes() == strPath;
        if (bShows && (pFound == nullptr || pWindow->isActiveWindow())) {
            pFound = pWindow;
        }
    }
    return pFound;
}

void WindowList::Show(const std::string& strPath, const InstanceCall& call) {
    MainWindow* const pWindow = Showing(strPath);
    if (pWindow != nullptr) {
        pWindow->ComeToFront(call.strActivation);
        pWindow->ShowPlace(call.nPage, call.strFind);
    }
}

void WindowList::CloseAll() {
    for (MainWindow* const pWindow : std::vector(m_windows)) { // closing changes the list
        pWindow->close();
    }
}

// That of the window in use, as a reader expects of the next one.
QSize WindowList::SizeOfNext() const {
    for (const MainWindow* const pWindow : m_windows) {
        if (pWindow->isActiveWindow()) {
            return pWindow->OrdinarySize();
        }
    }
    return OnScreen(ViewerSettings::WindowSize().value_or(CommandLine::kDefaultSize));
}

void WindowList::ShareColors(const MainWindow& from) {
    const vkit::PageColors colors = from.View().Colors();
    const auto eScanColors = from.View().ScanColors();
    for (const MainWindow* const pWindow : m_windows) {
        if (pWindow->View().ScanColors() != eScanColors) {
            pWindow->View().SetScanColors(eScanColors);
        }
        if (pWindow->View().Colors() != colors) {
            pWindow->View().SetColors(colors);
        }
        if (pWindow->View().ScanColors() != from.View().ScanColors()) {
            pWindow->View().SetScanColors(from.View().ScanColors());
        }
    }
}

}
