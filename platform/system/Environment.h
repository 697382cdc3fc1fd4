// The facts of the machine and of the application's one view, and who supplies
// them.
//
// The process's main function (or a test's) installs an `IEnvironment` before
// anything of the component is made, and removes it at the end. The functions
// below it carry the names of the application model; they only ask the
// environment.
// Threads: install and remove on the UI thread; `MainDispatcher`,
// `DeviceFamily` and `DesignModeEnabled` from any thread, the rest on the UI thread.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "platform/foundation/Event.h"
#include "platform/foundation/Geometry.h"

namespace Windows::UI::Core {
class CoreDispatcher;
}
namespace Windows::UI::Xaml {
class DispatcherTimer;
class FrameworkElement;
}
namespace Windows::Graphics {
class IGraphicsFactory;
}

namespace Platform {

class IEnvironment {
public:
    virtual ~IEnvironment() = default;

    virtual std::string DeviceFamily() const = 0; // "Windows.Desktop", "Windows.Mobile", ...
    virtual float LogicalDpi() const = 0;         // dots per logical inch, 96 by default
    virtual bool DesignModeEnabled() const = 0;
    virtual std::shared_ptr<Windows::UI::Core::CoreDispatcher> MainDispatcher() const = 0;
    virtual std::shared_ptr<Windows::UI::Xaml::DispatcherTimer> CreateTimer() = 0;
    // Of the clock that the timers go by; it never goes back.
    virtual std::chrono::nanoseconds MonotonicTime() const = 0;

    // The top-level window's size, logical, at the origin; of several the one changed last.
    virtual Windows::Foundation::Rect WindowBounds() const = 0;

    // Makes devices, factories and swap chains; never empty.
    virtual std::shared_ptr<Windows::Graphics::IGraphicsFactory> GraphicsFactory() = 0;

    // State of the control key now.
    virtual bool IsControlKeyDown() const = 0;

    // Whether the machine has a part of the application model, by its full name: the
    // back button on a phone alone, other ways back everywhere.
    virtual bool IsTypePresent(const std::string& strType) const;

    Windows::Foundation::Event<> Suspending; // these two are raised on any thread
    Windows::Foundation::Event<> Resuming;
    Windows::Foundation::Event<Windows::Foundation::Size> WindowSizeChanged; // UI thread
};

void SetEnvironment(std::shared_ptr<IEnvironment> pEnvironment);
std::shared_ptr<IEnvironment> Environment(); // raises until one is set

}

namespace Windows::System::Profile {
struct AnalyticsInfo {
    static std::string DeviceFamily() { return Platform::Environment()->DeviceFamily(); }
};
}

namespace Windows::Graphics::Display {
struct DisplayInformation {
    static float LogicalDpi() { return Platform::Environment()->LogicalDpi(); }
};
}

namespace Windows::ApplicationModel {
struct DesignMode {
    static bool DesignModeEnabled() { return Platform::Environment()->DesignModeEnabled(); }
};
}
