// Activation of runtime classes by their full name ("velko.pdf.PDFDoc").
//
// A module registers a factory object per class name; a user asks for the
// factory by name and calls its construction operation. A factory interface
// stands beside the contract of the class that it makes.
// Threads: any.
#pragma once

#include <memory>
#include <string>

#include "platform/foundation/Exception.h"

namespace Platform {

class IActivationFactory {
public:
    virtual ~IActivationFactory() = default;
};

// A later registration of a name replaces the earlier one.
void RegisterActivationFactory(const std::string& strClass,
                               std::shared_ptr<IActivationFactory> pFactory);
void UnregisterActivationFactory(const std::string& strClass);

// Raises `ClassNotRegisteredException` for an unknown name.
std::shared_ptr<IActivationFactory> GetActivationFactory(const std::string& strClass);

// As above, as the factory interface that the caller needs; raises
// `InvalidCastException` when the registered factory is none.
template <class Factory>
std::shared_ptr<Factory> GetActivationFactory(const std::string& strClass) {
    auto pFactory = std::dynamic_pointer_cast<Factory>(GetActivationFactory(strClass));
    if (!pFactory) {
        throw InvalidCastException("the factory of " + strClass + " offers another interface");
    }
    return pFactory;
}

}
