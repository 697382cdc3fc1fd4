#include "tools/replay/CommandFields.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

#include <QJsonDocument>

namespace velko::replay {

namespace {

[[noreturn]] void Mistyped(const char* szName, const char* szExpected) {
    throw FormatError(std::string("field \"") + szName + "\" must be " + szExpected);
}

float ToFloat(double dbValue, const char* szName) {
    if (std::abs(dbValue) > static_cast<double>(std::numeric_limits<float>::max())) {
        Mistyped(szName, "a number of 32-bit float range");
    }
    return static_cast<float>(dbValue);
}

}

CommandFields CommandFields::Parse(const std::string& strLine) {
    QJsonParseError error;
    const QJsonDocument document =
        QJsonDocument::fromJson(QByteArray::fromStdString(strLine), &error);
    if (error.error != QJsonParseError::NoError) {
        throw FormatError("no JSON: " + error.errorString().toStdString());
    }
    if (!document.isObject()) {
        throw FormatError("not a JSON object");
    }
    return CommandFields(document.object());
}

CommandFields::CommandFields(QJsonObject object)
    : m_object(std::move(object)), m_strOp(Text("op")) {}

bool CommandFields::Has(const char* szName) const {
    return m_object.contains(QLatin1String(szName));
}

QJsonValue CommandFields::Value(const char* szName) const {
    if (!Has(szName)) {
        throw FormatError(std::string("field \"") + szName + "\" is missing");
    }
    return m_object.value(QLatin1String(szName));
}

double CommandFields::Number(const char* szName) const {
    const QJsonValue value = Value(szName);
    if (!value.isDouble()) {
        Mistyped(szName, "a number");
    }
    return value.toDouble();
}

double CommandFields::NumberOr(const char* szName, double dbDefault) const {
    return Has(szName) ? Number(szName) : dbDefault;
}

std::int32_t CommandFields::Int(const char* szName) const {
    const double dbValue = Number(szName);
    if (std::trunc(dbValue) != dbValue || dbValue < std::numeric_limits<std::int32_t>::min() ||
        dbValue > std::numeric_limits<std::int32_t>::max()) {
        Mistyped(szName, "a 32-bit integer");
    }
    return static_cast<std::int32_t>(dbValue);
}

std::int32_t CommandFields::IntOr(const char* szName, std::int32_t nDefault) const {
    return Has(szName) ? Int(szName) : nDefault;
}

float CommandFields::Float(const char* szName) const {
    return ToFloat(Number(szName), szName);
}

float CommandFields::FloatOr(const char* szName, float fDefault) const {
    return Has(szName) ? Float(szName) : fDefault;
}

bool CommandFields::Bool(const char* szName) const {
    const QJsonValue value = Value(szName);
    if (!value.isBool()) {
        Mistyped(szName, "true or false");
    }
    return value.toBool();
}

bool CommandFields::BoolOr(const char* szName, bool bDefault) const {
    return Has(szName) ? Bool(szName) : bDefault;
}

std::string CommandFields::Text(const char* szName) const {
    const QJsonValue value = Value(szName);
    if (!value.isString()) {
        Mistyped(szName, "a text");
    }
    return value.toString().toStdString();
}

std::string CommandFields::TextOr(const char* szName, const std::string& strDefault) const {
    return Has(szName) ? Text(szName) : strDefault;
}

Windows::UI::Color CommandFields::Color(const char* szName) const {
    const std::string strText = Text(szName);
    std::uint32_t nArgb = 0;
    const char* const pBegin = strText.data() + 1;
    const char* const pEnd = strText.data() + strText.size();
    if (strText.size() != 9 || strText.front() != '#' ||
        std::from_chars(pBegin, pEnd, nArgb, 16).ptr != pEnd) {
        Mistyped(szName, "a colour \"#AARRGGBB\"");
    }
    return Windows::UI::Color::FromArgb(nArgb);
}

}
