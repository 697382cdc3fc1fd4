// Boxed values with a type name, and the property sets made of them.
//
// A boxed value is immutable. Its type name is what readers compare before
// they unbox ("Boolean", "Int32", "Int64", "UInt32", "Single", "Double",
// "Platform.String", "Windows.Storage.ApplicationDataCompositeValue").
// Threads: values; a `PropertySet` is for one thread at a time.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <variant>

#include "platform/foundation/Exception.h"

namespace Windows::Foundation {

class PropertyValue;

namespace Collections {

// A map of text keys to boxed values, ordered by key.
class PropertySet {
public:
    bool HasKey(const std::string& strKey) const { return m_values.count(strKey) != 0; }
    // Raises `OutOfBoundsException` for a key that is not there.
    const PropertyValue& Lookup(const std::string& strKey) const;
    // Replaces what was under the key. Returns whether it replaced something.
    bool Insert(const std::string& strKey, PropertyValue value);
    void Remove(const std::string& strKey) { m_values.erase(strKey); }
    void Clear() { m_values.clear(); }
    std::size_t Size() const { return m_values.size(); }

    auto begin() const { return m_values.begin(); }
    auto end() const { return m_values.end(); }

private:
    std::map<std::string, PropertyValue> m_values;
};

}

class PropertyValue {
public:
    using Composite = std::shared_ptr<const Collections::PropertySet>;
    using Variant = std::variant<bool, std::int32_t, std::int64_t, std::uint32_t, float, double,
                                 std::string, Composite>;

    template <class T>
    static PropertyValue Create(T value) {
        return PropertyValue(Variant(std::in_place_type<T>, std::move(value)));
    }

    const char* TypeName() const;

    template <class T>
    bool Is() const {
        return std::holds_alternative<T>(m_value);
    }

    // Unboxes; raises `InvalidCastException` when the boxed type is another.
    template <class T>
    const T& Get() const {
        if (const T* pValue = std::get_if<T>(&m_value)) {
            return *pValue;
        }
        throw Platform::InvalidCastException(std::string("boxed value is a ") + TypeName());
    }

    const Variant& Value() const { return m_value; }

private:
    explicit PropertyValue(Variant value) : m_value(std::move(value)) {}

    Variant m_value;
};

inline const PropertyValue& Collections::PropertySet::Lookup(const std::string& strKey) const {
    const auto it = m_values.find(strKey);
    if (it == m_values.end()) {
        throw Platform::OutOfBoundsException("no key " + strKey);
    }
    return it->second;
}

inline bool Collections::PropertySet::Insert(const std::string& strKey, PropertyValue value) {
    return !m_values.insert_or_assign(strKey, std::move(value)).second;
}

}
