// The component as a module: its runtime classes by name, and whether it may
// be unloaded.
//
// Threads: `RegisterComponent` on the UI thread, once at the start; the rest any.
#pragma once

#include <memory>
#include <string>

#include "platform/foundation/HResult.h"
#include "platform/system/Activation.h"
#include "platform/ui/Element.h"

namespace velko::vkit {

// Makes elements of one class, for markup. Raises what the class's creation
// raises; UI thread only.
class IElementFactory : public Platform::IActivationFactory {
public:
    virtual std::shared_ptr<Windows::UI::Xaml::FrameworkElement> ActivateInstance() = 0;
};

// Makes the component's plain records. Any thread.
class IRecordFactory : public Platform::IActivationFactory {
public:
    virtual std::shared_ptr<void> ActivateInstance() = 0;
};

// Registers the classes for activation and the markup of the control.
void RegisterComponent();

// The factory of a runtime class by its full name ("velko.vkit.PDFViewCtrl").
// Raises `ClassNotRegisteredException` for a name that is none.
std::shared_ptr<Platform::IActivationFactory> DllGetActivationFactory(const std::string& strClass);

// `S_OK` when no object of the component lives, else `S_FALSE`.
Platform::HRESULT DllCanUnloadNow();

}
