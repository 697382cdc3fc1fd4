#include "platform/qt/QtEnvironment.h"

#include <QGuiApplication>
#include <utility>

#include "platform/qt/QtDispatcherTimer.h"
#include "platform/qt/QtGraphicsFactory.h"

namespace Platform::Qt {

QtEnvironment::QtEnvironment(std::shared_ptr<QtDispatcher> pDispatcher, Options options)
    : m_pDispatcher(std::move(pDispatcher)),
      m_sizeTold(options.size),
      m_options(std::move(options)) {}

float QtEnvironment::LogicalDpi() const {
    return m_options.logicalDpi.value_or(static_cast<float>(96.0 * m_dbRatio));
}

std::shared_ptr<Windows::UI::Core::CoreDispatcher> QtEnvironment::MainDispatcher() const {
    return m_pDispatcher;
}

std::shared_ptr<Windows::UI::Xaml::DispatcherTimer> QtEnvironment::CreateTimer() {
    return std::make_shared<QtDispatcherTimer>(m_pRunningTimers);
}

Windows::Foundation::Rect QtEnvironment::WindowBounds() const {
    return {0.0F, 0.0F, m_options.size.Width, m_options.size.Height};
}

std::shared_ptr<Windows::Graphics::IGraphicsFactory> QtEnvironment::GraphicsFactory() {
    if (!m_options.pGraphicsFactory) {
        m_options.pGraphicsFactory = std::make_shared<QtGraphicsFactory>();
    }
    return m_options.pGraphicsFactory;
}

bool QtEnvironment::IsControlKeyDown() const {
    return m_controlDown.value_or(
        QGuiApplication::keyboardModifiers().testFlag(::Qt::ControlModifier));
}

void QtEnvironment::SetCompositionScale(float fScaleX, float fScaleY) {
    m_options.fCompositionScaleX = fScaleX;
    m_options.fCompositionScaleY = fScaleY;
}

void QtEnvironment::TakeWindowSize(Windows::Foundation::Size size) {
    m_options.size = size;
}

void QtEnvironment::TellWindowSize() {
    if (m_options.size != m_sizeTold) {
        m_sizeTold = m_options.size;
        WindowSizeChanged.raise(m_sizeTold);
    }
}

QtEnvironment::KeyScope::KeyScope(QtEnvironment& environment, bool bControlDown)
    : m_environment(environment),
      m_before(std::exchange(environment.m_controlDown, bControlDown)) {}

QtEnvironment::KeyScope::~KeyScope() {
    m_environment.m_controlDown = m_before;
}

}
