#include "component/Component.h"

#include "component/XamlMetaDataProvider.h"
#include "control/LiveObject.h"
#include "control/Markup.h"

namespace velko::vkit {

namespace {

class ElementFactory final : public IElementFactory {
public:
    explicit ElementFactory(const XamlType& type) : m_type(type) {}

    std::shared_ptr<Windows::UI::Xaml::FrameworkElement> ActivateInstance() override {
        return m_type.ActivateInstance();
    }

private:
    const XamlType& m_type; // of the provider's list, which is never changed
};

}

void RegisterComponent() {
    for (const XamlType& type : XamlMetaDataProvider::Types()) {
        Platform::RegisterActivationFactory(type.FullName, DllGetActivationFactory(type.FullName));
    }
    RegisterControlMarkup();
}

std::shared_ptr<Platform::IActivationFactory> DllGetActivationFactory(const std::string& strClass) {
    const XamlType* const pType = XamlMetaDataProvider().GetXamlType(strClass);
    if (!pType || !pType->ActivateInstance) {
        throw Platform::ClassNotRegisteredException("no such class in the component: " + strClass);
    }
    return std::make_shared<ElementFactory>(*pType);
}

Platform::HRESULT DllCanUnloadNow() {
    return LiveObject::Count() == 0 ? Platform::S_OK : Platform::S_FALSE;
}

}
