#include "platform/system/Environment.h"

#include <mutex>
#include <utility>

namespace Platform {

namespace {

std::mutex g_lock;
std::shared_ptr<IEnvironment> g_pEnvironment; // guarded by g_lock

}

bool IEnvironment::IsTypePresent(const std::string& strType) const {
    return strType == "Windows.UI.Core.SystemNavigationManager" ||
           (strType == "Windows.Phone.UI.Input.HardwareButtons" &&
            DeviceFamily() == "Windows.Mobile");
}

void SetEnvironment(std::shared_ptr<IEnvironment> pEnvironment) {
    const std::lock_guard<std::mutex> lock(g_lock);
    std::swap(g_pEnvironment, pEnvironment);
}

std::shared_ptr<IEnvironment> Environment() {
    const std::lock_guard<std::mutex> lock(g_lock);
    if (!g_pEnvironment) {
        throw Exception(E_FAIL, "no environment is installed");
    }
    return g_pEnvironment;
}

}
