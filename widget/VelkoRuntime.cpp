#include "widget/VelkoRuntime.h"

#include <QFile>
#include <QStandardPaths>
#include <algorithm>
#include <cstdio>
#include <string_view>
#include <thread>
#include <utility>

#include "component/Component.h"
#include "engines/mupdf/Register.h"
#include "platform/concurrency/ThreadPool.h"
#include "platform/storage/ApplicationData.h"
#include "platform/system/Debug.h"
#include "settings/AppConfig.h"

namespace velko::vkit {

namespace {

constexpr unsigned kFewestPoolThreads = 2; // one renders, one loads

QString DefaultDataFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/velko-vkit");
}

void WriteToStandardError(std::string_view strText) {
    std::fwrite(strText.data(), 1, strText.size(), stderr);
}

}

VelkoRuntime::VelkoRuntime() : VelkoRuntime(Options()) {}

VelkoRuntime::VelkoRuntime(Options options)
    : m_pDispatcher(Platform::Qt::QtDispatcher::Create()),
      m_pPool(std::make_shared<concurrency::ThreadPool>(
          std::max(kFewestPoolThreads, std::thread::hardware_concurrency()))) {
    if (options.bDebugOutput) {
        Platform::Debug::SetSink(WriteToStandardError);
    }
    concurrency::set_task_pool(m_pPool);
    Platform::SetEnvironment(std::make_shared<Platform::Qt::QtEnvironment>(
        m_pDispatcher, std::move(options.environment)));
    const QString strFolder =
        options.strDataFolder.isEmpty() ? DefaultDataFolder() : options.strDataFolder;
    Windows::Storage::ApplicationData::SetCurrent(
        Windows::Storage::OpenApplicationData(QFile::encodeName(strFolder).toStdString()));
    velko::engines::mupdf::RegisterEngine();
    RegisterComponent();
}

VelkoRuntime::~VelkoRuntime() {
    m_pPool->stop(); // nothing posts to the dispatcher from here on
    concurrency::set_task_pool(nullptr);
    m_pDispatcher->ShutDown();
    AppConfig::Close();
    Windows::Storage::ApplicationData::SetCurrent(nullptr);
    Platform::SetEnvironment(nullptr);
}

std::shared_ptr<Platform::Qt::QtEnvironment> VelkoRuntime::Environment() {
    auto pEnvironment =
        std::dynamic_pointer_cast<Platform::Qt::QtEnvironment>(Platform::Environment());
    if (!pEnvironment) {
        throw Platform::Exception(Platform::E_FAIL, "the process runs on another toolkit");
    }
    return pEnvironment;
}

}
