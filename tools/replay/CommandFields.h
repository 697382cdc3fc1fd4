// One line of a script: the fields of a command, read strictly.
//
// A field that is missing without a default, or is of another JSON type than
// asked for, raises `FormatError`. Integers are numbers without a fraction that
// fit 32 bits. Fields that nobody asks for are no error, so that a newer script
// runs on an older program where it means the same.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

#include <QJsonObject>

#include "platform/foundation/Color.h"

namespace velko::replay {

// A line that is not in the format; the text says what is wrong with it.
class FormatError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class CommandFields {
public:
    // Raises `FormatError` when the line is no JSON object with a text "op".
    static CommandFields Parse(const std::string& strLine);

    const std::string& Op() const { return m_strOp; }
    bool Has(const char* szName) const;
    QJsonValue Value(const char* szName) const; // raises when it is missing

    std::int32_t Int(const char* szName) const;
    std::int32_t IntOr(const char* szName, std::int32_t nDefault) const;
    double Number(const char* szName) const;
    double NumberOr(const char* szName, double dbDefault) const;
    // A number that a 32-bit float can hold.
    float Float(const char* szName) const;
    float FloatOr(const char* szName, float fDefault) const;
    bool Bool(const char* szName) const;
    bool BoolOr(const char* szName, bool bDefault) const;
    std::string Text(const char* szName) const;
    std::string TextOr(const char* szName, const std::string& strDefault) const;
    Windows::UI::Color Color(const char* szName) const; // "#AARRGGBB"

private:
    explicit CommandFields(QJsonObject object);

    QJsonObject m_object;
    std::string m_strOp;
};

}
