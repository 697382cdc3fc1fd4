// JSON as text, with the members in the order in which they are added.
//
// Doubles are written in the shortest form that reads back as the same double;
// what is no number (infinity, not a number) is written as null. A 32-bit
// float is written as the double of the same value.
// Threads: values.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace velko::replay {

class JsonArray;
class JsonObject;

// One JSON value as text.
class JsonText {
public:
    JsonText(std::nullptr_t);          // NOLINT(google-explicit-constructor)
    JsonText(double dbValue);          // NOLINT(google-explicit-constructor)
    JsonText(std::string_view);        // NOLINT(google-explicit-constructor): UTF-8
    JsonText(const JsonArray& array);  // NOLINT(google-explicit-constructor)
    JsonText(const JsonObject& value); // NOLINT(google-explicit-constructor)
    JsonText(const std::string& strValue) : JsonText(std::string_view(strValue)) {} // NOLINT
    JsonText(const char* szValue) : JsonText(std::string_view(szValue)) {}          // NOLINT

    template <class Integer, class = std::enable_if_t<std::is_integral_v<Integer>>>
    JsonText(Integer nValue) { // NOLINT(google-explicit-constructor)
        if constexpr (std::is_same_v<Integer, bool>) {
            m_strText = nValue ? "true" : "false";
        } else {
            m_strText = std::to_string(nValue);
        }
    }

    const std::string& Text() const { return m_strText; }

private:
    std::string m_strText;
};

class JsonArray {
public:
    JsonArray() = default;
    template <class T>
    explicit JsonArray(const std::vector<T>& values) {
        for (const T& value : values) {
            Add(value);
        }
    }
    JsonArray& Add(const JsonText& value);
    std::string Text() const { return '[' + m_strBody + ']'; }

private:
    std::string m_strBody;
};

class JsonObject {
public:
    JsonObject& Add(std::string_view strKey, const JsonText& value);
    // Adds the members of the other after those here.
    JsonObject& Append(const JsonObject& other);
    std::string Text() const { return '{' + m_strBody + '}'; }

private:
    std::string m_strBody;
};

}
