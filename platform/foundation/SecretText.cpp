#include "platform/foundation/SecretText.h"

#include <algorithm>
#include <cstring>

namespace Platform {

void Wipe(void* pBytes, std::size_t nSize) {
    ::explicit_bzero(pBytes, nSize);
}

// A text that was moved away keeps the letters of a short one in itself, behind its end.
void Wipe(std::string& strText) {
    strText.resize(strText.capacity());
    Wipe(strText.data(), strText.size());
    strText.clear();
}

SecretText::SecretText(std::string&& strText) : SecretText(std::string_view(strText)) {
    Wipe(strText);
}

// Never so short that the letters would stand in the object itself, which is copied around.
SecretText::SecretText(std::string_view text) {
    constexpr std::size_t kLeastCapacity = 64;
    m_strText.reserve(std::max(text.size(), kLeastCapacity));
    m_strText.assign(text);
}

}
