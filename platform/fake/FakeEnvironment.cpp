#include "platform/fake/FakeEnvironment.h"

#include <utility>

namespace Platform::Fake {

FakeEnvironment::FakeEnvironment(std::shared_ptr<ManualDispatcher> pDispatcher,
                                 std::shared_ptr<ManualClock> pClock)
    : m_pDispatcher(std::move(pDispatcher)), m_pClock(std::move(pClock)) {}

std::string FakeEnvironment::DeviceFamily() const {
    const std::lock_guard<std::mutex> lock(m_lock);
    return m_strFamily;
}

void FakeEnvironment::SetDeviceFamily(const std::string& strFamily) {
    const std::lock_guard<std::mutex> lock(m_lock);
    m_strFamily = strFamily;
}

std::shared_ptr<Windows::UI::Core::CoreDispatcher> FakeEnvironment::MainDispatcher() const {
    return m_pDispatcher;
}

std::shared_ptr<Windows::UI::Xaml::DispatcherTimer> FakeEnvironment::CreateTimer() {
    return m_pClock->CreateTimer();
}

std::shared_ptr<Windows::Graphics::IGraphicsFactory> FakeEnvironment::GraphicsFactory() {
    if (!m_pGraphicsFactory) {
        throw NullReferenceException("the test has set no graphics factory");
    }
    return m_pGraphicsFactory;
}

void FakeEnvironment::SetGraphicsFactory(
    std::shared_ptr<Windows::Graphics::IGraphicsFactory> pFactory) {
    m_pGraphicsFactory = std::move(pFactory);
}

void FakeEnvironment::ResizeWindow(float fWidth, float fHeight) {
    m_rcWindow = Windows::Foundation::Rect(0.0F, 0.0F, fWidth, fHeight);
    WindowSizeChanged.raise(Windows::Foundation::Size{fWidth, fHeight});
}

}
