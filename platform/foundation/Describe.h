// One line of text for a failure, for logs.
//
// Threads: any.
#pragma once

#include <exception>
#include <string>

namespace Platform {

// "Platform::ReadFaultException: read failed"; the type only where the failure
// is a platform exception. No line feed. `pError` is not empty.
std::string Describe(const std::exception_ptr& pError);

}
