#include "platform/foundation/Describe.h"

#include "platform/foundation/Exception.h"

namespace Platform {

std::string Describe(const std::exception_ptr& pError) {
    try {
        std::rethrow_exception(pError);
    } catch (const Exception& error) {
        return std::string(error.TypeName()) + ": " + error.what();
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "unknown failure";
    }
}

}
