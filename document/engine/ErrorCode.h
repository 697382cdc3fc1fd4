// The engine's result codes, as they reach the host.
#pragma once

#include <cstdint>
#include <string>

#include "platform/foundation/Exception.h"

namespace velko::common {

enum class ErrorCode : std::int32_t {
    e_ErrSuccess = 0,
    e_ErrFile = 1,
    e_ErrFormat = 2,
    e_ErrPassword = 3,
    e_ErrHandle = 4,
    e_ErrCertificate = 5,
    e_ErrUnknown = 6,
    e_ErrParam = 8,
    e_ErrUnsupported = 9,
    e_ErrOutOfMemory = 10,
    e_ErrSecurityHandler = 11,
    e_ErrNotParsed = 12,
    e_ErrNotFound = 13,
    e_ErrInvalidType = 14,
    e_ErrConflict = 15,
    e_ErrUnknownState = 16,
    e_ErrDataNotReady = 17,
    e_ErrInvalidData = 18,
    e_ErrXFALoadError = 19,
    e_ErrNotLoaded = 20,
    e_ErrInvalidState = 21,
    e_ErrNotVDRM = 22,
    e_ErrCanNotConnectToServer = 23,
    e_ErrInvalidUserToken = 24,
    e_ErrNoRights = 25,
    e_ErrRightsExpired = 26,
    e_ErrDeviceLimitation = 27,
    e_ErrCanNotRemoveSecurityFromServer = 28,
    e_ErrCanNotGetACL = 29,
    e_ErrCanNotSetACL = 30,
    e_ErrIsAlreadyVPDF = 31,
    e_ErrIsAlreadyVDRM = 32,
    e_ErrCanNotUploadDocInfo = 33,
    e_ErrCanNotUploadVDRMInfo = 34,
    e_ErrInvalidWrapper = 35,
    e_ErrCanNotGetClientID = 36,
    e_ErrCanNotGetUserToken = 37,
    e_ErrInvalidACL = 38,
    e_ErrInvalidClientID = 39,
};

// The enumerator's name; "velko.common.ErrorCode" for a value without one (7
// is such a value).
const char* ErrorCodeName(ErrorCode eCode);

// A failed engine call.
class EngineException : public Platform::Exception {
public:
    EngineException(ErrorCode eCode, const std::string& strMessage)
        : Exception(Platform::E_FAIL, strMessage), m_eCode(eCode) {}
    ErrorCode Code() const noexcept { return m_eCode; }
    const char* TypeName() const noexcept override { return "velko::common::EngineException"; }

private:
    ErrorCode m_eCode;
};

}
