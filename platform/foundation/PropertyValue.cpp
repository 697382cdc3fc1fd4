#include "platform/foundation/PropertyValue.h"

#include <array>

namespace Windows::Foundation {

const char* PropertyValue::TypeName() const {
    static constexpr std::array<const char*, std::variant_size_v<Variant>> kNames = {
        "Boolean", "Int32",  "Int64",           "UInt32",
        "Single",  "Double", "Platform.String", "Windows.Storage.ApplicationDataCompositeValue"};
    return kNames[m_value.index()];
}

}
