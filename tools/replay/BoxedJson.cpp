#include "tools/replay/BoxedJson.h"

#include <cmath>
#include <limits>
#include <type_traits>
#include <unordered_map>
#include <variant>

#include "tools/replay/CommandFields.h"

namespace velko::replay {

namespace {

using Windows::Foundation::PropertyValue;

JsonText ValueText(const PropertyValue& value) {
    return std::visit(
        [](const auto& held) -> JsonText {
            if constexpr (std::is_same_v<std::decay_t<decltype(held)>, PropertyValue::Composite>) {
                return held ? JsonText(SetText(*held)) : JsonText(nullptr);
            } else {
                return held;
            }
        },
        value.Value());
}

[[noreturn]] void DoesNotFit() {
    throw FormatError("field \"value\" does not fit the type");
}

double ToNumber(const QJsonValue& value) {
    if (!value.isDouble()) {
        DoesNotFit();
    }
    return value.toDouble();
}

template <class Integer>
PropertyValue BoxInteger(const QJsonValue& value) {
    const double dbValue = ToNumber(value);
    // The upper limit as a double may be one above the type's own, hence below it.
    if (std::trunc(dbValue) != dbValue ||
        dbValue < static_cast<double>(std::numeric_limits<Integer>::min()) ||
        dbValue >= std::ldexp(1.0, std::numeric_limits<Integer>::digits)) {
        DoesNotFit();
    }
    return PropertyValue::Create(static_cast<Integer>(dbValue));
}

PropertyValue BoxBoolean(const QJsonValue& value) {
    if (!value.isBool()) {
        DoesNotFit();
    }
    return PropertyValue::Create(value.toBool());
}

PropertyValue BoxSingle(const QJsonValue& value) {
    return PropertyValue::Create(static_cast<float>(ToNumber(value)));
}

PropertyValue BoxDouble(const QJsonValue& value) {
    return PropertyValue::Create(ToNumber(value));
}

PropertyValue BoxString(const QJsonValue& value) {
    if (!value.isString()) {
        DoesNotFit();
    }
    return PropertyValue::Create(value.toString().toStdString());
}

}

JsonText BoxedText(const PropertyValue& value) {
    return JsonObject().Add("type", value.TypeName()).Add("value", ValueText(value));
}

PropertyValue Box(const std::string& strType, const QJsonValue& value) {
    static const std::unordered_map<std::string, PropertyValue (*)(const QJsonValue&)> boxes{
        {"Boolean", BoxBoolean},
        {"Int32", BoxInteger<std::int32_t>},
        {"Int64", BoxInteger<std::int64_t>},
        {"UInt32", BoxInteger<std::uint32_t>},
        {"Single", BoxSingle},
        {"Double", BoxDouble},
        {"Platform.String", BoxString},
    };
    const auto it = boxes.find(strType);
    if (it == boxes.end()) {
        throw FormatError("unknown type \"" + strType + "\"");
    }
    return it->second(value);
}

JsonObject SetText(const Windows::Foundation::Collections::PropertySet& values) {
    JsonObject text;
    for (const auto& [strKey, value] : values) {
        text.Add(strKey, BoxedText(value));
    }
    return text;
}

}
