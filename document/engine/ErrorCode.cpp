#include "document/engine/ErrorCode.h"

#include <array>
#include <cstddef>

namespace velko::common {

namespace {

constexpr std::array<const char*, 40> kNames = {
    "e_ErrSuccess",
    "e_ErrFile",
    "e_ErrFormat",
    "e_ErrPassword",
    "e_ErrHandle",
    "e_ErrCertificate",
    "e_ErrUnknown",
    nullptr,
    "e_ErrParam",
    "e_ErrUnsupported",
    "e_ErrOutOfMemory",
    "e_ErrSecurityHandler",
    "e_ErrNotParsed",
    "e_ErrNotFound",
    "e_ErrInvalidType",
    "e_ErrConflict",
    "e_ErrUnknownState",
    "e_ErrDataNotReady",
    "e_ErrInvalidData",
    "e_ErrXFALoadError",
    "e_ErrNotLoaded",
    "e_ErrInvalidState",
    "e_ErrNotVDRM",
    "e_ErrCanNotConnectToServer",
    "e_ErrInvalidUserToken",
    "e_ErrNoRights",
    "e_ErrRightsExpired",
    "e_ErrDeviceLimitation",
    "e_ErrCanNotRemoveSecurityFromServer",
    "e_ErrCanNotGetACL",
    "e_ErrCanNotSetACL",
    "e_ErrIsAlreadyVPDF",
    "e_ErrIsAlreadyVDRM",
    "e_ErrCanNotUploadDocInfo",
    "e_ErrCanNotUploadVDRMInfo",
    "e_ErrInvalidWrapper",
    "e_ErrCanNotGetClientID",
    "e_ErrCanNotGetUserToken",
    "e_ErrInvalidACL",
    "e_ErrInvalidClientID",
};

}

const char* ErrorCodeName(ErrorCode eCode) {
    const auto nCode = static_cast<std::size_t>(eCode); // a negative value becomes a large one
    const char* const szName = nCode < kNames.size() ? kNames[nCode] : nullptr;
    return szName != nullptr ? szName : "velko.common.ErrorCode";
}

}
