// Boxed values as JSON and back.
//
// Threads: values.
#pragma once

#include <string>

#include <QJsonValue>

#include "platform/foundation/PropertyValue.h"
#include "tools/replay/JsonText.h"

namespace velko::replay {

// {"type": ..., "value": ...}; a composite's value is an object of such.
JsonText BoxedText(const Windows::Foundation::PropertyValue& value);

// Boxes `value` as the type of that name; raises `FormatError` for a type that
// is unknown or that does not fit the value.
Windows::Foundation::PropertyValue Box(const std::string& strType, const QJsonValue& value);

// The set as an object: each key with its boxed value.
JsonObject SetText(const Windows::Foundation::Collections::PropertySet& values);

}
