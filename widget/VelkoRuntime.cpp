#include "widget/VelkoRuntime.h"

#include <QFile>
#include <QStandardPaths>
#include <cstdio>
#include <string_view>
#include <utility>

#include "component/Component.h"
#include "platform/foundation/Exception.h"
#include "platform/system/Debug.h"
#include "settings/AppConfig.h"

namespace velko::vkit {

namespace {

QString DefaultDataFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/velko-vkit");
}

void WriteToStandardError(std::string_view strText) {
    std::fwrite(strText.data(), 1, strText.size(), stderr);
}

}

VelkoRuntime::VelkoRuntime(Options options) : m_platform(std::move(options.environment)) {
    if (options.bDebugOutput) {
        Platform::Debug::SetSink(WriteToStandardError);
    }
    const QString strFolder =
        options.strDataFolder.isEmpty() ? DefaultDataFolder() : options.strDataFolder;
    m_platform.UseData(QFile::encodeName(strFolder).toStdString());
    if (options.fnRegisterEngine) {
        options.fnRegisterEngine();
    }
    RegisterComponent();
}

VelkoRuntime::~VelkoRuntime() {
    AppConfig::Close();
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
