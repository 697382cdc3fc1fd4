#include "engines/mupdf/PasswordSpellings.h"

#include <mupdf/fitz.h>

#include <algorithm>
#include <array>

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

// A text that the library turns into these very bytes, whatever they are; empty when
// there is none.
SecretText SpelledByBytes(const std::string& strBytes) {
    std::array<char, 8> code{};
    std::string strText;
    strText.reserve(strBytes.size() * 3 + 1);
    for (const char ch : strBytes) {
        const int nLetter = fz_unicode_from_pdf_doc_encoding[static_cast<unsigned char>(ch)];
        if (nLetter == 0) {
            Platform::Wipe(strText);
            return {};
        }
        strText.append(code.data(), static_cast<std::size_t>(fz_runetochar(code.data(), nLetter)));
    }
    return SecretText(std::move(strText));
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
    std::vector<SecretText> forms;
    forms.reserve(4);
    forms.push_back(bUnicode ? Shortened(typed) : typed);
    if (IsAscii(strPassword)) {
        return forms;
    }
    for (const TextForm eForm :
         {TextForm::CompatibleComposed, TextForm::Composed, TextForm::Decomposed}) {
        const SecretText form = NormalizedText(typed, eForm);
        AddOnce(forms, bUnicode ? Shortened(form) : form);
    }
    std::vector<SecretText> spellings = forms;
    for (const SecretText& form : forms) {
        if (!bUnicode) {
            AddOnce(spellings, SpelledByBytes(form.Text()));
        }
    }
    return spellings;
}

}
