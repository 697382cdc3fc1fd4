#include "component/Component.h"

#include <map>

#include "component/XamlMetaDataProvider.h"
#include "control/LiveObject.h"
#include "control/Markup.h"
#include "document/SaveFileBuffer.h"
#include "document/TempPageInfo.h"
#include "document/VLK_Image.h"
#include "document/VPdfDocumentInfomation.h"
#include "document/VelkoImageHelper.h"
#include "document/VelkoPointerWrapObj.h"

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

template <class Record>
class RecordFactory final : public IRecordFactory {
public:
    std::shared_ptr<void> ActivateInstance() override { return std::make_shared<Record>(); }
};

using Factories = std::map<std::string, std::shared_ptr<Platform::IActivationFactory>>;

const Factories& RecordFactories() {
    static const Factories s_factories = {
        {"velko.vkit.TempPageInfo", std::make_shared<RecordFactory<TempPageInfo>>()},
        {"velko.vkit.VLK_Image", std::make_shared<RecordFactory<VLK_Image>>()},
        {"velko.vkit.SaveFileBuffer", std::make_shared<RecordFactory<SaveFileBuffer>>()},
        {"velko.vkit.VPdfDocumentInfomation",
         std::make_shared<RecordFactory<VPdfDocumentInfomation>>()},
        {"velko.vkit.VelkoImageHelper", std::make_shared<RecordFactory<VelkoImageHelper>>()},
        {"velko.vkit.VelkoPointerWrapObj", std::make_shared<RecordFactory<VelkoPointerWrapObj>>()},
    };
    return s_factories;
}

}

void RegisterComponent() {
    for (const auto& [strClass, pFactory] : RecordFactories()) {
        Platform::RegisterActivationFactory(strClass, pFactory);
    }
    for (const XamlType& type : XamlMetaDataProvider::Types()) {
        Platform::RegisterActivationFactory(type.FullName, DllGetActivationFactory(type.FullName));
    }
    RegisterControlMarkup();
}

std::shared_ptr<Platform::IActivationFactory> DllGetActivationFactory(const std::string& strClass) {
    const auto itRecord = RecordFactories().find(strClass);
    if (itRecord != RecordFactories().end()) {
        return itRecord->second;
    }
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
