#include "component/DocIdentity.h"

namespace velko::vkit {

using Windows::Foundation::PropertyValue;
using Windows::Foundation::Collections::PropertySet;

namespace {

constexpr const char* kPath = "Identity.Path";
constexpr const char* kDevice = "Identity.Device";
constexpr const char* kFile = "Identity.File";
constexpr const char* kSize = "Identity.Size";
constexpr const char* kChanged = "Identity.Changed";
constexpr const char* kIdentifier = "Identity.Identifier";
constexpr const char* kFingerprint = "Identity.Fingerprint";

template <class T>
T ValueOf(const PropertySet& values, const char* szKey) {
    return values.HasKey(szKey) && values.Lookup(szKey).Is<T>() ? values.Lookup(szKey).Get<T>()
                                                                : T();
}

void WriteNumber(PropertySet& values, const char* szKey, std::uint64_t nValue) {
    values.Insert(szKey, PropertyValue::Create(static_cast<std::int64_t>(nValue)));
}

std::uint64_t NumberOf(const PropertySet& values, const char* szKey) {
    return static_cast<std::uint64_t>(ValueOf<std::int64_t>(values, szKey));
}

}

bool IsSameFile(const DocIdentity& one, const DocIdentity& other) {
    return one.version.File != 0 && one.version.File == other.version.File &&
           one.version.Device == other.version.Device;
}

bool HaveSameBytes(const DocIdentity& one, const DocIdentity& other) {
    return one.nFingerprint != 0 && one.nFingerprint == other.nFingerprint &&
           one.version.Size == other.version.Size && one.strIdentifier == other.strIdentifier;
}

void WriteIdentity(PropertySet& values, const DocIdentity& of) {
    values.Insert(kPath, PropertyValue::Create(of.strPath));
    WriteNumber(values, kDevice, of.version.Device);
    WriteNumber(values, kFile, of.version.File);
    WriteNumber(values, kSize, of.version.Size);
    WriteNumber(values, kChanged, static_cast<std::uint64_t>(of.version.Changed));
    values.Insert(kIdentifier, PropertyValue::Create(of.strIdentifier));
    WriteNumber(values, kFingerprint, of.nFingerprint);
}

DocIdentity ReadIdentity(const PropertySet& values) {
    DocIdentity identity;
    identity.strPath = ValueOf<std::string>(values, kPath);
    identity.version = {NumberOf(values, kDevice), NumberOf(values, kFile), NumberOf(values, kSize),
                        ValueOf<std::int64_t>(values, kChanged)};
    identity.strIdentifier = ValueOf<std::string>(values, kIdentifier);
    identity.nFingerprint = NumberOf(values, kFingerprint);
    return identity;
}

}
