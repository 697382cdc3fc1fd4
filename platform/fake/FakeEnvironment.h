// The machine's facts, as a test wants them.
//
// Starts as a desktop of 96 dots per inch with a window of 1000 x 800 and the
// control key up. Threads: as `IEnvironment` says.
#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "platform/fake/ManualClock.h"
#include "platform/fake/ManualDispatcher.h"
#include "platform/system/Environment.h"

namespace Platform::Fake {

class FakeEnvironment final : public IEnvironment {
public:
    FakeEnvironment(std::shared_ptr<ManualDispatcher> pDispatcher,
                    std::shared_ptr<ManualClock> pClock);

    std::string DeviceFamily() const override;
    float LogicalDpi() const override { return m_fLogicalDpi; }
    bool DesignModeEnabled() const override { return m_bDesignMode; }
    std::shared_ptr<Windows::UI::Core::CoreDispatcher> MainDispatcher() const override;
    std::shared_ptr<Windows::UI::Xaml::DispatcherTimer> CreateTimer() override;
    std::chrono::nanoseconds MonotonicTime() const override { return m_pClock->Now(); }
    Windows::Foundation::Rect WindowBounds() const override { return m_rcWindow; }
    // Raises `NullReferenceException` until a test has set one.
    std::shared_ptr<Windows::Graphics::IGraphicsFactory> GraphicsFactory() override;
    bool IsControlKeyDown() const override { return m_bControlKeyDown; }

    void SetDeviceFamily(const std::string& strFamily);
    void SetLogicalDpi(float fDpi) { m_fLogicalDpi = fDpi; }
    void SetDesignMode(bool bOn) { m_bDesignMode = bOn; }
    void SetGraphicsFactory(std::shared_ptr<Windows::Graphics::IGraphicsFactory> pFactory);
    void SetControlKeyDown(bool bDown) { m_bControlKeyDown = bDown; }
    // Sets the bounds, then raises `WindowSizeChanged`.
    void ResizeWindow(float fWidth, float fHeight);

private:
    const std::shared_ptr<ManualDispatcher> m_pDispatcher;
    const std::shared_ptr<ManualClock> m_pClock;
    std::shared_ptr<Windows::Graphics::IGraphicsFactory> m_pGraphicsFactory;
    Windows::Foundation::Rect m_rcWindow{0.0F, 0.0F, 1000.0F, 800.0F};
    float m_fLogicalDpi = 96.0F;
    bool m_bDesignMode = false;
    bool m_bControlKeyDown = false;
    mutable std::mutex m_lock;
    std::string m_strFamily = "Windows.Desktop"; // guarded by m_lock: read on any thread
};

}
