#include "engines/mupdf/PasswordSpellings.h"

#include <algorithm>

#include "platform/foundation/TextForm.h"

namespace velko::engines::mupdf {

namespace {

using Platform::NormalizedText;
using Platform::SecretText;
using Platform::TextForm;

constexpr std::size_t kMostUnicodeBytes = 127; // that count, by the format

bool IsAscii(const std::string& strText) {
    return std::all_of(strText.begin(), strText.end(),
                       [](char ch) { return static_cast<unsigned char>(ch) < 0x80; });
}

SecretText Shortened(const SecretText& text) {
    return SecretText(std::string_view(text.Text()).substr(0, kMostUnicodeBytes));
}

void AddOnce(std::vector<SecretText>& spellings, SecretText spelling) {
    if (!spelling.IsEmpty() &&
        std::find(spellings.begin(), spellings.end(), spelling) == spellings.end()) {
        spellings.push_back(std::move(spelling));
    }
}

}

std::vector<SecretText> PasswordSpellings(const std::string& strPassword, bool bUnicode) {
    const SecretText typed{std::string_view(strPassword)};
    std::vector<SecretText> spellings;
    spellings.reserve(4);
    spellings.push_back(bUnicode ? Shortened(typed) : typed);
    if (IsAscii(strPassword)) {
        return spellings;
    }
    for (const TextForm eForm :
         {TextForm::CompatibleComposed, TextForm::Composed, TextForm::Decomposed}) {
        const SecretText form = NormalizedText(typed, eForm);
        AddOnce(spellings, bUnicode ? Shortened(form) : form);
    }
    return spellings;
}

}
