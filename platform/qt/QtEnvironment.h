// The facts of the machine as Qt knows them, with those that a tool may fix.
//
// Logical units are device pixels: the composition scale is 1 unless a tool
// sets another, and the logical DPI is 96 times the device pixel ratio of the
// window. May be made before an application object exists.
// Threads: as `IEnvironment` says; the setters on the UI thread.
#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "platform/qt/QtDispatcher.h"
#include "platform/system/Environment.h"

namespace Platform::Qt {

class QtEnvironment final : public IEnvironment {
public:
    struct Options {
        std::string strDeviceFamily = "Windows.Desktop";
        std::optional<float> logicalDpi; // else from the window's pixel ratio
        float fCompositionScaleX = 1.0F; // of the panels of its windows
        float fCompositionScaleY = 1.0F;
        Windows::Foundation::Size size{1.0F, 1.0F}; // of the window, until there is one; logical
        std::shared_ptr<Windows::Graphics::IGraphicsFactory> pGraphicsFactory; // else Qt's raster
    };

    QtEnvironment(std::shared_ptr<QtDispatcher> pDispatcher, Options options);

    std::string DeviceFamily() const override { return m_options.strDeviceFamily; }
    float LogicalDpi() const override;
    bool DesignModeEnabled() const override { return false; }
    std::shared_ptr<Windows::UI::Core::CoreDispatcher> MainDispatcher() const override;
    std::shared_ptr<Windows::UI::Xaml::DispatcherTimer> CreateTimer() override;
    std::chrono::nanoseconds MonotonicTime() const override {
        return std::chrono::steady_clock::now().time_since_epoch();
    }
    Windows::Foundation::Rect WindowBounds() const override;
    std::shared_ptr<Windows::Graphics::IGraphicsFactory> GraphicsFactory() override;

    // Of the input event that is being handled, else of the keyboard.
    bool IsControlKeyDown() const override;

    const std::shared_ptr<QtDispatcher>& Dispatcher() const { return m_pDispatcher; }
    int RunningTimers() const { return m_pRunningTimers->load(); }
    float CompositionScaleX() const { return m_options.fCompositionScaleX; }
    float CompositionScaleY() const { return m_options.fCompositionScaleY; }
    void SetCompositionScale(float fScaleX, float fScaleY); // in force at the next size change

    // Told by the window: its pixel ratio and its size. The size is in force at
    // once; `TellWindowSize` raises `WindowSizeChanged` when it was not yet told.
    void TakeWindowSize(Windows::Foundation::Size size);
    void TellWindowSize();
    void SetDevicePixelRatio(double dbRatio) { m_dbRatio = dbRatio; }

    // While one lives, the control key counts as its event says.
    class KeyScope {
    public:
        KeyScope(QtEnvironment& environment, bool bControlDown);
        ~KeyScope();
        KeyScope(const KeyScope&) = delete;
        KeyScope& operator=(const KeyScope&) = delete;

    private:
        QtEnvironment& m_environment;
        const std::optional<bool> m_before;
    };

private:
    const std::shared_ptr<QtDispatcher> m_pDispatcher;
    Windows::Foundation::Size m_sizeTold;
    Options m_options; // the device family is never changed: it is read on any thread
    const std::shared_ptr<std::atomic<int>> m_pRunningTimers =
        std::make_shared<std::atomic<int>>(0);
    std::optional<bool> m_controlDown;
    double m_dbRatio = 1.0;
};

}
