#include "tools/replay/JsonText.h"

#include <array>
#include <charconv>
#include <cmath>

#include <QByteArray>
#include <QString>

namespace velko::replay {

namespace {

std::string NumberText(double dbValue) {
    if (!std::isfinite(dbValue)) {
        return "null";
    }
    std::array<char, 32> text{};
    const auto result = std::to_chars(text.data(), text.data() + text.size(), dbValue);
    return {text.data(), result.ptr};
}

void AppendEscaped(std::string& strOut, char c) {
    static constexpr char kHex[] = "0123456789abcdef";
    switch (c) {
        case '"':
            strOut += "\\\"";
            break;
        case '\\':
            strOut += "\\\\";
            break;
        case '\n':
            strOut += "\\n";
            break;
        case '\r':
            strOut += "\\r";
            break;
        case '\t':
            strOut += "\\t";
            break;
        default:
            if (static_cast<unsigned char>(c) < 0x20U) {
                strOut += "\\u00";
                strOut += kHex[static_cast<unsigned char>(c) >> 4U];
                strOut += kHex[static_cast<unsigned char>(c) & 0xFU];
            } else {
                strOut += c;
            }
    }
}

// Bytes that are no UTF-8 (a file name may hold such) become the replacement
// character, so that every line stays valid JSON.
std::string QuotedText(std::string_view strValue) {
    const QByteArray utf8 =
        QString::fromUtf8(strValue.data(), static_cast<qsizetype>(strValue.size())).toUtf8();
    std::string strOut = "\"";
    for (const char c : utf8) {
        AppendEscaped(strOut, c);
    }
    return strOut + '"';
}

void Separate(std::string& strBody) {
    if (!strBody.empty()) {
        strBody += ',';
    }
}

}

JsonText::JsonText(std::nullptr_t) : m_strText("null") {}
JsonText::JsonText(double dbValue) : m_strText(NumberText(dbValue)) {}
JsonText::JsonText(std::string_view strValue) : m_strText(QuotedText(strValue)) {}
JsonText::JsonText(const JsonArray& array) : m_strText(array.Text()) {}
JsonText::JsonText(const JsonObject& value) : m_strText(value.Text()) {}

JsonArray& JsonArray::Add(const JsonText& value) {
    Separate(m_strBody);
    m_strBody += value.Text();
    return *this;
}

JsonObject& JsonObject::Add(std::string_view strKey, const JsonText& value) {
    Separate(m_strBody);
    m_strBody += QuotedText(strKey);
    m_strBody += ':';
    m_strBody += value.Text();
    return *this;
}

JsonObject& JsonObject::Append(const JsonObject& other) {
    if (!other.m_strBody.empty()) {
        Separate(m_strBody);
        m_strBody += other.m_strBody;
    }
    return *this;
}

}
