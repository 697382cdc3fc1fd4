#include "app/viewer/keys/OwnKeys.h"

#include <QMetaEnum>
#include <string>

#include "platform/storage/ApplicationData.h"

namespace velko::viewer {

using Windows::Foundation::PropertyValue;
using Windows::Storage::ApplicationData;
using Windows::Storage::ApplicationDataCreateDisposition;

namespace {

auto Values() {
    return ApplicationData::Current()
        ->LocalSettings()
        ->CreateContainer("ViewerKeys", ApplicationDataCreateDisposition::Always)
        ->Values();
}

std::string NameOf(Command eCommand) {
    return QMetaEnum::fromType<Command>().valueToKey(static_cast<int>(eCommand));
}

}

std::optional<OwnKeys::Keys> OwnKeys::Of(Command eCommand) {
    const auto value = Values()->TryLookup(NameOf(eCommand));
    if (!value || !value->Is<std::string>()) {
        return std::nullopt;
    }
    const QString strKeys = QString::fromStdString(value->Get<std::string>());
    if (strKeys.isEmpty()) {
        return Keys();
    }
    Keys keys = QKeySequence::listFromString(strKeys, QKeySequence::PortableText);
    keys.removeIf([](const QKeySequence& key) { return key.isEmpty(); });
    return keys.isEmpty() ? std::nullopt : std::optional(keys);
}

void OwnKeys::Keep(Command eCommand, const Keys& keys) {
    const QString strKeys = QKeySequence::listToString(keys, QKeySequence::PortableText);
    Values()->Insert(NameOf(eCommand), PropertyValue::Create(strKeys.toStdString()));
}

void OwnKeys::Forget(Command eCommand) {
    const auto pValues = Values();
    if (pValues->HasKey(NameOf(eCommand))) {
        pValues->Remove(NameOf(eCommand));
    }
}

void OwnKeys::ForgetAll() {
    ApplicationData::Current()->InTransaction([] {
        for (int n = 0; n < static_cast<int>(Command::kCount); ++n) {
            Forget(static_cast<Command>(n));
        }
    });
}

}
