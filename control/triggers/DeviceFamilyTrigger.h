// Active on devices of one family, such as "Windows.Desktop".
//
// Threads: UI thread only.
#pragma once

#include <string>

#include "platform/ui/StateTrigger.h"

namespace velko::vkit {

class DeviceFamilyTrigger final : public Windows::UI::Xaml::StateTriggerBase {
public:
    const std::string& DeviceFamily() const { return m_strWanted; }
    void DeviceFamily(const std::string& strFamily); // judged at once

private:
    std::string m_strWanted;
    std::string m_strFound;
};

}
