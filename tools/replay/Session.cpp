#include "tools/replay/Session.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <utility>

#include <QCoreApplication>
#include <QEvent>
#include <QResizeEvent>
#include <QTimer>

#include "control/ControlParts.h"
#include "control/PDFViewCtrl.h"
#include "control/PDFViewerManager.h"
#include "engines/mupdf/Register.h"
#include "platform/qt/QtElementWindow.h"
#include "platform/qt/QtGraphicsFactory.h"
#include "platform/qt/QtRuntime.h"
#include "platform/storage/StorageActivity.h"
#include "platform/storage/StorageFaults.h"
#include "platform/system/Debug.h"
#include "platform/ui/Window.h"
#include "settings/AppConfig.h"
#include "tools/replay/CountedEngine.h"
#include "tools/replay/EventPrinter.h"
#include "tools/replay/InputPrinter.h"
#include "tools/replay/OrderedDialogs.h"

namespace velko::replay {

namespace {

constexpr std::chrono::milliseconds kPollInterval{2};
constexpr int kLongestResizeStep = 16'777'215; // what a widget may measure

void RegisterEngineByName(const std::string& strName) {
    if (strName != "mupdf") {
        throw UsageError("unknown engine module: " + strName);
    }
    velko::engines::mupdf::RegisterEngine();
}

void PrintDebugOutput(Output& output) {
    Platform::Debug::SetSink(
        [&output](std::string_view strText) { output.Print(JsonObject().Add("debug", strText)); });
}

void OrderReadFaults(std::shared_ptr<Faults> pFaults) {
    Windows::Storage::SetStorageFaultHook([pFaults = std::move(pFaults)](const char* szCall) {
        return std::strcmp(szCall, "pread") == 0 && pFaults->Strikes(Fault::ReadError) ? EIO : 0;
    });
}

// As many as the canvas's frame has: cut off, in 32-bit floats.
int DevicePixels(std::int32_t nLogical, float fScale) {
    const float fPixels = std::trunc(static_cast<float>(nLogical) * fScale);
    return static_cast<int>(std::clamp(fPixels, 0.0F, static_cast<float>(kLongestResizeStep)));
}

Windows::Foundation::Size LogicalSize(std::int32_t nWidth, std::int32_t nHeight) {
    return {static_cast<float>(nWidth), static_cast<float>(nHeight)};
}

std::string Counted(std::size_t nCount, const char* szWhat) {
    return std::to_string(nCount) + ' ' + szWhat;
}

}

Session::Session(Output& output)
    : m_output(output), m_pDialogs(std::make_shared<OrderedDialogs>()) {}

// An object whose first constructor has returned is destroyed also when the
// second one raises.
Session::Session(const Options& options, Output& output) : Session(output) {
    if (options.bDebugOutput) {
        PrintDebugOutput(output);
    }
    StartPlatform(options);
    RegisterEngineByName(options.strEngine);
    CountEngine(m_pCounters, m_pFaults);
    OrderReadFaults(m_pFaults);
    MakeControl(options);
}

void Session::StartPlatform(const Options& options) {
    m_pGraphics = std::make_shared<Platform::Qt::QtGraphicsFactory>();
    Platform::Qt::QtEnvironment::Options facts;
    facts.strDeviceFamily = options.strFamily;
    facts.logicalDpi = options.fDpi;
    facts.fCompositionScaleX = options.fScaleX;
    facts.fCompositionScaleY = options.fScaleY;
    facts.size = LogicalSize(options.nWidth, options.nHeight);
    facts.pGraphicsFactory = m_pGraphics;
    m_pPlatform = std::make_unique<Platform::Qt::QtRuntime>(std::move(facts));
    if (options.strDataFolder) {
        m_pPlatform->UseData(*options.strDataFolder);
    } else {
        m_pPlatform->UseTemporaryData("velko-replay-XXXXXX");
    }
}

void Session::MakeControl(const Options& options) {
    m_pControl = velko::vkit::PDFViewCtrl::Create();
    m_pWindow =
        std::make_unique<Platform::Qt::QtElementWindow>(m_pPlatform->Environment(), m_pControl);
    Windows::UI::Xaml::Window::Of(*m_pControl)->Dialogs(m_pDialogs);
    m_pWindow->OnFailure([this](const std::exception_ptr& pFailure) {
        if (!m_pFailure) { // the first one is the cause
            m_pFailure = pFailure;
        }
    });
    m_pWindow->FixLogicalSize(LogicalSize(options.nWidth, options.nHeight));
    ThroughWindow([&] {
        m_pWindow->resize(DevicePixels(options.nWidth, options.fScaleX),
                          DevicePixels(options.nHeight, options.fScaleY));
        m_pWindow->show();
    });
    RunUntil([] { return true; }, std::chrono::steady_clock::now());
}

void Session::PrintEvents() {
    PrintEventsOf(*m_pControl, m_output);
    m_pControl->ExtensionsManager(std::make_shared<InputPrinter>(m_output));
}

Session::~Session() {
    EndControl();
    velko::vkit::AppConfig::Close();
    m_pPlatform.reset();
    Windows::Storage::SetStorageFaultHook(nullptr);
    Platform::Debug::SetSink(nullptr);
}

void Session::EndControl() {
    if (m_pWindow) {
        m_pWindow->OnFailure([](const std::exception_ptr&) {}); // nobody is left to hear of it
    }
    try {
        if (m_pControl) {
            m_pControl->Dispose();
        }
    } catch (const std::exception& error) {
        Platform::Debug::OutputDebugString(std::string("closing failed: ") + error.what() + "\n");
    }
    m_pWindow.reset();
    m_pControl.reset();
}

std::shared_ptr<velko::vkit::IPDFViewer> Session::Viewer() {
    const auto pManager = velko::vkit::ControlParts(*m_pControl).PageViewMgr();
    return pManager ? pManager->GetViewer() : nullptr;
}

Windows::UI::Xaml::Controls::SwapChainPanel& Session::Panel() {
    return *m_pWindow->Panel();
}

QPointF Session::InWindow(Windows::Foundation::Point pt) {
    return {static_cast<double>(pt.X) * Panel().CompositionScaleX(),
            static_cast<double>(pt.Y) * Panel().CompositionScaleY()};
}

void Session::ThroughWindow(const std::function<void()>& fnBody) {
    m_pFailure = nullptr;
    fnBody();
    if (const std::exception_ptr pFailure = std::exchange(m_pFailure, nullptr)) {
        std::rethrow_exception(pFailure);
    }
}

void Session::Resize(std::int32_t nWidth, std::int32_t nHeight, float fScaleX, float fScaleY) {
    m_pPlatform->Environment()->SetCompositionScale(fScaleX, fScaleY);
    m_pWindow->FixLogicalSize(LogicalSize(nWidth, nHeight));
    const QSize sizeBefore = m_pWindow->size();
    const QSize size(DevicePixels(nWidth, fScaleX), DevicePixels(nHeight, fScaleY));
    ThroughWindow([&] {
        if (size != sizeBefore) {
            m_pWindow->resize(size);
        } else { // the scale or a share of a pixel may have changed all the same
            QResizeEvent event(size, sizeBefore);
            QCoreApplication::sendEvent(m_pWindow.get(), &event);
        }
    });
}

void Session::RunUntil(const std::function<bool()>& fnDone,
                       std::chrono::steady_clock::time_point deadline) {
    // Work of other threads ends without an event that would wake this one.
    QTimer wake;
    wake.setTimerType(::Qt::PreciseTimer);
    wake.start(kPollInterval);
    QCoreApplication::processEvents();
    while (!fnDone() && std::chrono::steady_clock::now() < deadline) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

void Session::RunFor(std::chrono::milliseconds length) {
    PassInputTime(length);
    RunUntil([] { return false; }, std::chrono::steady_clock::now() + length);
}

std::vector<std::string> Session::WaitUntilIdle(std::chrono::milliseconds limit) {
    RunUntil([this] { return Pending().empty(); }, std::chrono::steady_clock::now() + limit);
    return Pending();
}

// In the order in which work passes on: what a pool or a file thread posts is
// in the dispatcher by the time that the thread counts as idle.
std::vector<std::string> Session::Pending() const {
    std::vector<std::string> busy;
    if (!m_pPlatform->Pool().is_idle()) {
        busy.emplace_back("tasks or renders on the pool");
    }
    if (Windows::Storage::AreFileOperationsPending()) {
        busy.emplace_back("file operations");
    }
    if (!m_pPlatform->Pool().is_idle()) { // a file operation ended and went on there
        busy.emplace_back("tasks or renders on the pool");
    }
    if (const std::size_t nPosts = m_pPlatform->Environment()->Dispatcher()->PendingCount();
        nPosts > 0) {
        busy.push_back(Counted(nPosts, "posts to the UI thread"));
    }
    if (m_pWindow->IsInertiaRunning()) {
        busy.emplace_back("the inertia of a pan");
    }
    if (const int nTimers = m_pPlatform->Environment()->RunningTimers(); nTimers > 0) {
        busy.push_back(Counted(static_cast<std::size_t>(nTimers), "timers"));
    }
    busy.erase(std::unique(busy.begin(), busy.end()), busy.end());
    return busy;
}

}
