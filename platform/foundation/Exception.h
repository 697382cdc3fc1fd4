// Exceptions of the platform layer: every failure of a platform or an engine
// call travels as one of these and carries its failure code.
//
// Threads: values; throw and catch anywhere.
#pragma once

#include <stdexcept>
#include <string>

#include "platform/foundation/HResult.h"

namespace Platform {

class Exception : public std::runtime_error {
public:
    explicit Exception(HRESULT nCode, const std::string& strMessage = "platform failure")
        : std::runtime_error(strMessage), m_nCode(nCode) {}

    HRESULT HResult() const noexcept { return m_nCode; }

    // The name of the class, for logs and for `velko-replay`.
    virtual const char* TypeName() const noexcept { return "Platform::Exception"; }

private:
    HRESULT m_nCode;
};

// One class per failure that callers tell apart. `TypeName` is the class name
// with its namespace.
#define VLK_PLATFORM_EXCEPTION(NAME, CODE, TEXT)                                             \
    class NAME : public Exception {                                                          \
    public:                                                                                  \
        explicit NAME(const std::string& strMessage = TEXT) : Exception(CODE, strMessage) {} \
        const char* TypeName() const noexcept override { return "Platform::" #NAME; }        \
    }

VLK_PLATFORM_EXCEPTION(ObjectDisposedException, RO_E_CLOSED, "the object is disposed");
VLK_PLATFORM_EXCEPTION(InvalidArgumentException, E_INVALIDARG, "invalid argument");
VLK_PLATFORM_EXCEPTION(OutOfBoundsException, E_BOUNDS, "index out of bounds");
VLK_PLATFORM_EXCEPTION(NullReferenceException, E_POINTER, "null reference");
VLK_PLATFORM_EXCEPTION(OperationCanceledException, ERROR_CANCELLED, "the operation was cancelled");
VLK_PLATFORM_EXCEPTION(AccessDeniedException, E_ACCESSDENIED, "access denied");
VLK_PLATFORM_EXCEPTION(FileNotFoundException, ERROR_FILE_NOT_FOUND, "file not found");
VLK_PLATFORM_EXCEPTION(ReadFaultException, ERROR_READ_FAULT, "read failed");
VLK_PLATFORM_EXCEPTION(WriteFaultException, ERROR_WRITE_FAULT, "write failed");
VLK_PLATFORM_EXCEPTION(DiskFullException, ERROR_DISK_FULL, "the disk is full");
VLK_PLATFORM_EXCEPTION(OutOfMemoryException, E_OUTOFMEMORY, "out of memory");
VLK_PLATFORM_EXCEPTION(ClassNotRegisteredException, REGDB_E_CLASSNOTREG, "class not registered");
VLK_PLATFORM_EXCEPTION(InvalidCastException, E_NOINTERFACE, "invalid cast");
VLK_PLATFORM_EXCEPTION(WrongThreadException, RPC_E_WRONG_THREAD, "called on the wrong thread");
VLK_PLATFORM_EXCEPTION(DisconnectedException, RPC_E_DISCONNECTED, "the object is disconnected");
VLK_PLATFORM_EXCEPTION(ChangedStateException, E_CHANGED_STATE, "the collection was changed");

#undef VLK_PLATFORM_EXCEPTION

}
