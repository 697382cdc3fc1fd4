#include "viewers/core/ChainLog.h"

#include "platform/concurrency/Cancellation.h"
#include "platform/foundation/Exception.h"
#include "platform/system/Debug.h"

namespace velko::vkit {

bool WriteChainOutcome(const ChainTexts& texts) {
    try {
        throw;
    } catch (const concurrency::task_canceled&) {
        Platform::Debug::OutputDebugString(texts.szCanceled);
        return true;
    } catch (const Platform::Exception&) {
        Platform::Debug::OutputDebugString(texts.szPlatform);
    } catch (...) {
        Platform::Debug::OutputDebugString(texts.szOther);
    }
    return false;
}

bool WriteChainOutcome(const std::string& strWhere) {
    const std::string strPlatform = strWhere + " Platform::Exception...\n";
    const std::string strCanceled = strWhere + " concurrency::task_canceled...\n";
    const std::string strOther = strWhere + " Exception...\n";
    return WriteChainOutcome(
        ChainTexts{strPlatform.c_str(), strCanceled.c_str(), strOther.c_str()});
}

}
