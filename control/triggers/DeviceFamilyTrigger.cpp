#include "control/triggers/DeviceFamilyTrigger.h"

#include "platform/system/Environment.h"

namespace velko::vkit {

void DeviceFamilyTrigger::DeviceFamily(const std::string& strFamily) {
    m_strWanted = strFamily;
    m_strFound = Windows::System::Profile::AnalyticsInfo::DeviceFamily();
    SetActive(m_strFound == m_strWanted);
}

}
