// The failure codes that exceptions of this platform layer carry.
//
// The numeric values are those of the application model that the names come
// from, so that a code in a log means the same everywhere.
#pragma once

#include <cstdint>

namespace Platform {

using HRESULT = std::int32_t;

constexpr HRESULT MakeHResult(std::uint32_t nCode) {
    return static_cast<HRESULT>(nCode);
}

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_FAIL = MakeHResult(0x80004005U);
inline constexpr HRESULT E_NOINTERFACE = MakeHResult(0x80004002U);
inline constexpr HRESULT E_POINTER = MakeHResult(0x80004003U);
inline constexpr HRESULT E_INVALIDARG = MakeHResult(0x80070057U);
inline constexpr HRESULT E_OUTOFMEMORY = MakeHResult(0x8007000EU);
inline constexpr HRESULT E_ACCESSDENIED = MakeHResult(0x80070005U);
inline constexpr HRESULT E_BOUNDS = MakeHResult(0x8000000BU);
inline constexpr HRESULT E_CHANGED_STATE = MakeHResult(0x8000000CU);
inline constexpr HRESULT RO_E_CLOSED = MakeHResult(0x80000013U);
inline constexpr HRESULT ERROR_CANCELLED = MakeHResult(0x800704C7U);
inline constexpr HRESULT ERROR_FILE_NOT_FOUND = MakeHResult(0x80070002U);
inline constexpr HRESULT ERROR_READ_FAULT = MakeHResult(0x8007001EU);
inline constexpr HRESULT ERROR_WRITE_FAULT = MakeHResult(0x8007001DU);
inline constexpr HRESULT ERROR_ALREADY_EXISTS = MakeHResult(0x800700B7U);
inline constexpr HRESULT ERROR_DISK_FULL = MakeHResult(0x80070070U);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = MakeHResult(0x80040154U);
inline constexpr HRESULT RPC_E_WRONG_THREAD = MakeHResult(0x8001010EU);
inline constexpr HRESULT RPC_E_DISCONNECTED = MakeHResult(0x80010108U);
inline constexpr HRESULT JSCRIPT_E_CANTEXECUTE = MakeHResult(0x89020001U);
inline constexpr HRESULT DXGI_ERROR_DEVICE_REMOVED = MakeHResult(0x887A0005U);
inline constexpr HRESULT DXGI_ERROR_DEVICE_RESET = MakeHResult(0x887A0007U);

}
