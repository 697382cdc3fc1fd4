// Boxed values as rows of the store.
//
// A row is a container, a key, a type code and a payload: a number (floats as
// their bits, so that every one comes back exactly, not-a-number and minus zero
// too) or a text. A composite is a row with the number of its members and a row
// for each of them, in a container of their own. Stores of the first version
// keep a composite's members in its payload, a run of bytes, numbers little endian:
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

// A value of its own, which no later change of the caller's sets reaches. Raises
// `InvalidArgumentException` for composites nested too deep or absent.
Foundation::PropertyValue Copied(const Foundation::PropertyValue& value);

// A composite's members are left to the caller, here and there.
StoredValue Encode(const Foundation::PropertyValue& value);
bool HasMemberRows(const StoredValue& stored);

// Raises `ReadFaultException` for what was never stored so.
Foundation::PropertyValue Decode(const StoredValue& stored);

// The path of a container within another, and of the members of a composite.
std::string ContainerPath(const std::string& strWithin, const std::string& strName);
std::string MembersPath(const std::string& strContainer, const std::string& strKey);
// True for a container that members live in.
bool IsMembersPath(const std::string& strContainer);

}
