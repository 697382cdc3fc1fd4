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
    OpenData(options.strDataFolder.isEmpty() ? DefaultDataFolder() : options.strDataFolder);
    velko::engines::mupdf::RegisterEngine();
    RegisterComponent();
}

// A reader whose settings cannot be read wants to read the document all the more.
void VelkoRuntime::OpenData(const QString& strFolder) {
    using Windows::Storage::ApplicationData;
    try {
        const auto pData =
            Windows::Storage::OpenApplicationData(QFile::encodeName(strFolder).toStdString());
        pData->LocalSettings()->Values()->HasKey("any"); // opens the store that is there
        ApplicationData::SetCurrent(pData);
    } catch (const Platform::Exception& error) {
        Platform::Debug::OutputDebugString(std::string("settings are not kept: ") + error.what() +
                                           "\n");
        m_pStandIn = std::make_unique<QTemporaryDir>();
        ApplicationData::SetCurrent(Windows::Storage::OpenApplicationData(
            QFile::encodeName(m_pStandIn->path()).toStdString()));
    }
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
