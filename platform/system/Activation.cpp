#include "platform/system/Activation.h"

#include <map>
#include <mutex>
#include <utility>

namespace Platform {

namespace {

struct Registry {
    std::mutex lock;
    std::map<std::string, std::shared_ptr<IActivationFactory>> factories;
};

Registry& TheRegistry() {
    static Registry s_registry;
    return s_registry;
}

}

void RegisterActivationFactory(const std::string& strClass,
                               std::shared_ptr<IActivationFactory> pFactory) {
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> lock(registry.lock);
    registry.factories[strClass] = std::move(pFactory);
}

void UnregisterActivationFactory(const std::string& strClass) {
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> lock(registry.lock);
    registry.factories.erase(strClass);
}

std::shared_ptr<IActivationFactory> GetActivationFactory(const std::string& strClass) {
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> lock(registry.lock);
    const auto it = registry.factories.find(strClass);
    if (it == registry.factories.end()) {
        throw ClassNotRegisteredException("class not registered: " + strClass);
    }
    return it->second;
}

}
