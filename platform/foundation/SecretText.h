// A text that leaves nothing behind in memory: its bytes, UTF-8, are cleared
// before their memory is given back.
//
// It is made from a text of the caller's by taking it, and clears that one too.
// Threads: a value.
#pragma once

#include <string>
#include <string_view>

namespace Platform {

// Overwrites the text, and what lies behind its end, and empties it.
void Wipe(std::string& strText);
// Overwrites bytes, in a way that no compiler leaves out.
void Wipe(void* pBytes, std::size_t nSize);

class SecretText {
public:
    SecretText() = default;
    SecretText(std::string&& strText);
    SecretText(const std::string& strText) : SecretText(std::string_view(strText)) {}
    SecretText(std::string_view text);
    SecretText(const char* szText) : SecretText(std::string_view(szText)) {}
    SecretText(const SecretText& other) : SecretText(std::string_view(other.m_strText)) {}
    SecretText(SecretText&& other) noexcept { m_strText.swap(other.m_strText); }
    SecretText& operator=(SecretText other) noexcept {
        m_strText.swap(other.m_strText);
        return *this;
    }
    ~SecretText() { Wipe(m_strText); }

    // For a call that takes a text; whoever copies it clears the copy.
    const std::string& Text() const { return m_strText; }
    bool IsEmpty() const { return m_strText.empty(); }

    friend bool operator==(const SecretText&, const SecretText&) = default;

private:
    std::string m_strText;
};

// Keeps a secret for long: what lies in memory is not the text, so that who looks
// through the memory, or an image of it, finds it nowhere. No protection against
// whoever knows this class.
class MaskedText {
public:
    MaskedText() = default;
    explicit MaskedText(std::string_view text);
    SecretText Reveal() const;

private:
    std::string m_strMask;
    std::string m_strMasked;
};

}
