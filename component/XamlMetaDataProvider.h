// What markup may know of the component's types: names, bases, and how to make
// one.
//
// Threads: UI thread only for `ActivateInstance`, else any.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/ui/Controls.h"

namespace velko::vkit {

struct XamlType {
    std::string FullName;
    std::string BaseTypeName;
    // Empty for a type that markup cannot make.
    std::function<std::shared_ptr<Windows::UI::Xaml::FrameworkElement>()> ActivateInstance;
};

class XamlMetaDataProvider {
public:
    // Empty for a name that is no type of the component. Lives as long as the process.
    const XamlType* GetXamlType(const std::string& strFullName) const;

    static const std::vector<XamlType>& Types();
};

}
