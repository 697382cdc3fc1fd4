#include "platform/foundation/SecretText.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <utility>

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

MaskedText::MaskedText(std::string_view text) {
    std::random_device random;
    for (const char ch : text) {
        const char chMask = static_cast<char>(random());
        m_strMask.push_back(chMask);
        m_strMasked.push_back(static_cast<char>(ch ^ chMask));
    }
}

SecretText MaskedText::Reveal() const {
    std::string strText;
    strText.reserve(m_strMasked.size() + 1);
    for (std::size_t n = 0; n < m_strMasked.size(); ++n) {
        strText.push_back(static_cast<char>(m_strMasked[n] ^ m_strMask[n]));
    }
    return SecretText(std::move(strText));
}

}
