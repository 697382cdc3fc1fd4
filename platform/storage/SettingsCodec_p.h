// Boxed values as the store keeps them.
//
// A value is a type code and a payload: a number (floats as their bits, so that
// every one comes back exactly, not-a-number and minus zero too), a text, or for
// a composite a run of bytes. Numbers in that run are little endian:
//   composite = count:4 { key-length:4 key type:1 payload }
//   payload   = number:8 | text-length:4 text | composite
// The codes are part of files on disk and never change.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "platform/foundation/PropertyValue.h"

namespace Windows::Storage {

struct StoredValue {
    std::int64_t nType = 0;
    std::variant<std::int64_t, std::string> payload;
};

// Raises `InvalidArgumentException` for composites nested too deep or absent.
StoredValue Encode(const Foundation::PropertyValue& value);

// Raises `ReadFaultException` for what `Encode` never made.
Foundation::PropertyValue Decode(const StoredValue& stored);

}
