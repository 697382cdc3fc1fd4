#include <bit>
#include <limits>
#include <utility>

#include "platform/foundation/Exception.h"
#include "platform/storage/SettingsCodec_p.h"

namespace Windows::Storage {

using Foundation::PropertyValue;
using Foundation::Collections::PropertySet;

namespace {

constexpr int kDeepest = 16;

enum Code : std::int64_t {
    kBoolean = 1,
    kInt32 = 2,
    kInt64 = 3,
    kUInt32 = 4,
    kSingle = 5,
    kDouble = 6,
    kText = 7,
    kComposite = 8
};

constexpr std::string_view kMembers = "/%:"; // no name begins so: see Escaped

PropertyValue CopiedAt(const PropertyValue& value, int nDepth) {
    if (!value.Is<PropertyValue::Composite>()) {
        return value;
    }
    const auto& pValues = value.Get<PropertyValue::Composite>();
    if (!pValues || nDepth == kDeepest) {
        throw Platform::InvalidArgumentException("a composite value that cannot be stored");
    }
    auto pCopy = std::make_shared<PropertySet>();
    for (const auto& [strKey, member] : *pValues) {
        pCopy->Insert(strKey, CopiedAt(member, nDepth + 1));
    }
    return PropertyValue::Create<PropertyValue::Composite>(std::move(pCopy));
}

struct Encoder {
    StoredValue operator()(bool bValue) const { return {kBoolean, std::int64_t{bValue}}; }
    StoredValue operator()(std::int32_t nValue) const { return {kInt32, std::int64_t{nValue}}; }
    StoredValue operator()(std::int64_t nValue) const { return {kInt64, nValue}; }
    StoredValue operator()(std::uint32_t nValue) const { return {kUInt32, std::int64_t{nValue}}; }
    StoredValue operator()(float fValue) const {
        return {kSingle, std::int64_t{std::bit_cast<std::uint32_t>(fValue)}};
    }
    StoredValue operator()(double dbValue) const {
        return {kDouble, std::bit_cast<std::int64_t>(dbValue)};
    }
    StoredValue operator()(const std::string& strValue) const { return {kText, strValue}; }
    StoredValue operator()(const PropertyValue::Composite& pValue) const {
        return {kComposite, static_cast<std::int64_t>(pValue->Size())};
    }
};

// A name may hold the character that stands between names.
std::string Escaped(const std::string& strName) {
    std::string strEscaped;
    for (const char c : strName) {
        strEscaped += c == '/' ? "%2F" : c == '%' ? "%25" : std::string(1, c);
    }
    return strEscaped;
}

[[noreturn]] void RaiseUnreadable() {
    throw Platform::ReadFaultException("a setting that cannot be decoded");
}

template <class T>
PropertyValue Narrowed(std::int64_t nValue) {
    if (nValue < std::int64_t{std::numeric_limits<T>::min()} ||
        nValue > std::int64_t{std::numeric_limits<T>::max()}) {
        RaiseUnreadable();
    }
    return PropertyValue::Create<T>(static_cast<T>(nValue));
}

PropertyValue DecodeNumber(std::int64_t nType, std::int64_t nValue) {
    switch (nType) {
        case kBoolean:
            return PropertyValue::Create<bool>(nValue != 0);
        case kInt32:
            return Narrowed<std::int32_t>(nValue);
        case kInt64:
            return PropertyValue::Create<std::int64_t>(nValue);
        case kUInt32:
            return Narrowed<std::uint32_t>(nValue);
        case kSingle:
            return PropertyValue::Create<float>(
                std::bit_cast<float>(static_cast<std::uint32_t>(nValue)));
        case kDouble:
            return PropertyValue::Create<double>(std::bit_cast<double>(nValue));
        default:
            RaiseUnreadable();
    }
}

// Reads a composite of the first version from the front; raises where its bytes
// end too early.
class Parser {
public:
    explicit Parser(std::string_view bytes) : m_bytes(bytes) {}

    PropertyValue::Composite Composite(int nDepth) {
        if (nDepth == kDeepest) {
            RaiseUnreadable();
        }
        auto pValues = std::make_shared<PropertySet>();
        for (std::uint64_t nLeft = Number(4); nLeft > 0; --nLeft) {
            std::string strKey = Text();
            pValues->Insert(strKey, Value(nDepth));
        }
        return pValues;
    }

    bool AtEnd() const { return m_bytes.empty(); }

private:
    PropertyValue Value(int nDepth) {
        const auto nType = static_cast<std::int64_t>(Number(1));
        if (nType == kText) {
            return PropertyValue::Create<std::string>(Text());
        }
        if (nType == kComposite) {
            return PropertyValue::Create<PropertyValue::Composite>(Composite(nDepth + 1));
        }
        return DecodeNumber(nType, static_cast<std::int64_t>(Number(8)));
    }

    std::string_view Take(std::uint64_t nBytes) {
        if (nBytes > m_bytes.size()) {
            RaiseUnreadable();
        }
        const std::string_view taken = m_bytes.substr(0, nBytes);
        m_bytes.remove_prefix(nBytes);
        return taken;
    }

    std::uint64_t Number(std::size_t nBytes) {
        const std::string_view taken = Take(nBytes);
        std::uint64_t nValue = 0;
        for (std::size_t n = 0; n < nBytes; ++n) {
            nValue |= std::uint64_t{static_cast<std::uint8_t>(taken[n])} << (8U * n);
        }
        return nValue;
    }

    std::string Text() { return std::string(Take(Number(4))); }

    std::string_view m_bytes;
};

}

PropertyValue Copied(const PropertyValue& value) {
    return CopiedAt(value, 0);
}

StoredValue Encode(const PropertyValue& value) {
    return std::visit(Encoder(), value.Value());
}

bool HasMemberRows(const StoredValue& stored) {
    return stored.nType == kComposite && std::holds_alternative<std::int64_t>(stored.payload);
}

PropertyValue Decode(const StoredValue& stored) {
    if (const auto* pNumber = std::get_if<std::int64_t>(&stored.payload)) {
        return DecodeNumber(stored.nType, *pNumber);
    }
    const std::string& strBytes = std::get<std::string>(stored.payload);
    if (stored.nType == kText) {
        return PropertyValue::Create<std::string>(strBytes);
    }
    if (stored.nType != kComposite) {
        RaiseUnreadable();
    }
    Parser parser(strBytes);
    auto pValues = parser.Composite(0);
    if (!parser.AtEnd()) {
        RaiseUnreadable();
    }
    return PropertyValue::Create<PropertyValue::Composite>(std::move(pValues));
}

std::string ContainerPath(const std::string& strWithin, const std::string& strName) {
    return strWithin + "/" + Escaped(strName);
}

std::string MembersPath(const std::string& strContainer, const std::string& strKey) {
    return strContainer + std::string(kMembers) + Escaped(strKey);
}

bool IsMembersPath(const std::string& strContainer) {
    return strContainer.find(kMembers) != std::string::npos;
}

}
