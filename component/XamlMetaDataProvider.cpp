#include "component/XamlMetaDataProvider.h"

#include <algorithm>

#include "control/PDFViewCtrl.h"
#include "control/VelkoViewControl.h"
#include "control/dialogs/ContentHostedDialog.h"
#include "control/dialogs/NonVisibilityButton.h"
#include "control/dialogs/PasswordDialog.h"

namespace velko::vkit {

const std::vector<XamlType>& XamlMetaDataProvider::Types() {
    static const std::vector<XamlType> s_types = {
        {"velko.vkit.PDFViewCtrl", "Windows.UI.Xaml.Controls.ContentControl", &PDFViewCtrl::Create},
        {"velko.vkit.ContentHostedDialog", "Windows.UI.Xaml.Controls.ContentControl",
         &ContentHostedDialog::Create},
        {"velko.vkit.NonVisibilityButton", "Windows.UI.Xaml.Controls.Button",
         [] { return std::make_shared<NonVisibilityButton>(); }},
        {"velko.vkit.PasswordDialog", "Windows.UI.Xaml.Controls.UserControl",
         &PasswordDialog::Create},
        {"velko.vkit.VelkoViewControl", "Windows.UI.Xaml.Controls.UserControl",
         &VelkoViewControl::Create},
    };
    return s_types;
}

const XamlType* XamlMetaDataProvider::GetXamlType(const std::string& strFullName) const {
    const auto& types = Types();
    const auto it = std::find_if(types.begin(), types.end(), [&](const XamlType& type) {
        return type.FullName == strFullName;
    });
    return it == types.end() ? nullptr : &*it;
}

}
