// The control in a window without a display, with all that a program around it
// supplies: platform, engine, application data, counters and faults.
//
// Lifetime: one at a time in a process, made after the application object and
// gone before it. Threads: the UI thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <QPointF>

#include "platform/concurrency/Task.h"
#include "platform/foundation/Geometry.h"
#include "tools/replay/Counters.h"
#include "tools/replay/Faults.h"
#include "tools/replay/Options.h"
#include "tools/replay/Output.h"

namespace Platform::Qt {
class QtElementWindow;
class QtGraphicsFactory;
class QtRuntime;
}
namespace Windows::UI::Xaml::Controls {
class SwapChainPanel;
}
namespace velko::vkit {
class IPDFViewer;
class PDFViewCtrl;
}

namespace velko::replay {

class OrderedDialogs;

class Session {
public:
    // Raises what the platform or the control fails with on the way.
    Session(const Options& options, Output& output);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // From now on events and the calls of the host's input sink are printed.
    void PrintEvents();

    Output& Out() { return m_output; }
    velko::vkit::PDFViewCtrl& Control() { return *m_pControl; }
    std::shared_ptr<velko::vkit::IPDFViewer> Viewer(); // may be empty
    Platform::Qt::QtElementWindow& Window() { return *m_pWindow; }
    Windows::UI::Xaml::Controls::SwapChainPanel& Panel();
    QPointF InWindow(Windows::Foundation::Point pt); // from the canvas's units to the window's
    OrderedDialogs& Dialogs() { return *m_pDialogs; }
    Platform::Qt::QtGraphicsFactory& Graphics() { return *m_pGraphics; }
    const std::shared_ptr<Counters>& Counts() const { return m_pCounters; }
    const std::shared_ptr<Faults>& OrderedFaults() const { return m_pFaults; }

    // The time that raw input events bear. It stands still but for what a script
    // lets pass, so that a gesture comes out the same on every machine.
    std::chrono::milliseconds InputTime() const { return m_inputTime; }
    void PassInputTime(std::chrono::milliseconds length) { m_inputTime += length; }

    // Gives the canvas this size (logical) at this composition scale; what a
    // handler raises on the way is raised here.
    void Resize(std::int32_t nWidth, std::int32_t nHeight, float fScaleX, float fScaleY);

    // Runs the UI until the task has ended; gives its outcome as `co_await` would.
    template <class T>
    T Await(const concurrency::task<T>& task) {
        RunUntil([&] { return task.is_done(); }, std::chrono::steady_clock::time_point::max());
        return task.get();
    }

    // Runs the UI until `fnDone` answers true; it is asked after each turn.
    void RunUntil(const std::function<bool()>& fnDone,
                  std::chrono::steady_clock::time_point deadline);
    void RunFor(std::chrono::milliseconds length);

    // Runs the UI until nothing is pending or the time is up. What is pending
    // then, in words; empty when nothing is.
    std::vector<std::string> WaitUntilIdle(std::chrono::milliseconds limit);

    // Runs a handler of the window (`fnBody` sends it an event) and raises what
    // the control answered it with.
    void ThroughWindow(const std::function<void()>& fnBody);

private:
    explicit Session(Output& output); // what the destructor ends has begun

    std::vector<std::string> Pending() const;
    void StartPlatform(const Options& options);
    void MakeControl(const Options& options);
    void EndControl();

    Output& m_output;
    std::shared_ptr<Counters> m_pCounters = std::make_shared<Counters>();
    std::shared_ptr<Faults> m_pFaults = std::make_shared<Faults>();
    std::shared_ptr<Platform::Qt::QtGraphicsFactory> m_pGraphics;
    std::unique_ptr<Platform::Qt::QtRuntime> m_pPlatform;
    std::shared_ptr<velko::vkit::PDFViewCtrl> m_pControl;
    std::unique_ptr<Platform::Qt::QtElementWindow> m_pWindow;
    const std::shared_ptr<OrderedDialogs> m_pDialogs;
    std::chrono::milliseconds m_inputTime{1000};
    std::exception_ptr m_pFailure; // of a handler that the window called
};

}
