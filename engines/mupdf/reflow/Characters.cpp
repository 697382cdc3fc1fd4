#include "engines/mupdf/reflow/Characters.h"

#include <mupdf/ucdn.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace velko::engines::mupdf::reflow {

namespace {

struct Ligature {
    char32_t nCode;
    const char* szLetters;
};

constexpr std::array<Ligature, 7> kLigatures = {{{0xFB00, "ff"},
                                                 {0xFB01, "fi"},
                                                 {0xFB02, "fl"},
                                                 {0xFB03, "ffi"},
                                                 {0xFB04, "ffl"},
                                                 {0xFB05, "ft"},
                                                 {0xFB06, "st"}}};

constexpr std::u32string_view kNoBegin =
    U"!%),.:;?]}\u00A2\u00B0\u2019\u201D\u2030\u2032\u2033\u3001\u3002\u3005\u3009\u300B\u300D"
    U"\u300F\u3011\u3015\u3017\u3041\u3043\u3045\u3047\u3049\u3063\u3083\u3085\u3087\u309B\u309C"
    U"\u309D\u309E\u30A1\u30A3\u30A5\u30A7\u30A9\u30C3\u30E3\u30E5\u30E7\u30FB\u30FC\u30FD\u30FE"
    U"\uFF01\uFF09\uFF0C\uFF0E\uFF1A\uFF1B\uFF1F\uFF3D\uFF5D";
constexpr std::u32string_view kNoEnd =
    U"$([{\u00A3\u00A5\u2018\u201C\u3008\u300A\u300C\u300E\u3010\u3014\u3016\uFF04\uFF08\uFF3B"
    U"\uFF5B\uFFE5";
constexpr std::u32string_view kBullets =
    U"*-\u00B7\u2012\u2013\u2014\u2022\u2023\u2043\u2219\u25A0\u25A1\u25AA\u25AB\u25B6\u25B8\u25BA"
    U"\u25C6\u25C7\u25CB\u25CF\u25E6\u2605\u2713\u2714\u27A2\u27A4\uF0A7\uF0B7\uF0D8\uF0FC";
constexpr std::u32string_view kSentenceEnds = U".!?:;\u2026\u061F\u06D4\u3002\uFF01\uFF1F\uFF1A";
constexpr std::u32string_view kClosing = U")]}\"'\u00BB\u2019\u201D\u203A\u300D\u300F\uFF09";

constexpr std::u32string_view kAccents = U"^`~\u00A8\u00AF\u00B4\u00B8\u25EF";

bool Has(std::u32string_view set, char32_t c) {
    return set.find(c) != std::u32string_view::npos;
}

int CategoryOf(char32_t c) {
    return ucdn_get_general_category(c);
}

}

bool IsSpace(char32_t c) {
    return c == U' ' || c == U'\t' || c == U'\n' || c == U'\r' || c == 0xA0 ||
           (c >= 0x2000 && c <= 0x200B) || c == 0x202F || c == 0x3000 || c == 0xFEFF;
}

bool IsLetter(char32_t c) {
    switch (CategoryOf(c)) {
        case UCDN_GENERAL_CATEGORY_LL:
        case UCDN_GENERAL_CATEGORY_LM:
        case UCDN_GENERAL_CATEGORY_LO:
        case UCDN_GENERAL_CATEGORY_LT:
        case UCDN_GENERAL_CATEGORY_LU:
            return true;
        default:
            return false;
    }
}

bool IsDigit(char32_t c) {
    return CategoryOf(c) == UCDN_GENERAL_CATEGORY_ND;
}

bool IsLowerCase(char32_t c) {
    return CategoryOf(c) == UCDN_GENERAL_CATEGORY_LL;
}

bool IsHyphen(char32_t c) {
    return c == U'-' || c == 0xAD || c == 0x2010;
}

bool IsRightToLeft(char32_t c) {
    const int nClass = c < 0x590 ? UCDN_BIDI_CLASS_L : ucdn_get_bidi_class(c);
    return nClass == UCDN_BIDI_CLASS_R || nClass == UCDN_BIDI_CLASS_AL;
}

bool IsLeftToRight(char32_t c) {
    return ucdn_get_bidi_class(c) == UCDN_BIDI_CLASS_L;
}

bool IsIdeographic(char32_t c) {
    return (c >= 0x2E80 && c <= 0x31FF) || (c >= 0x3200 && c <= 0x9FFF) ||
           (c >= 0xF900 && c <= 0xFAFF) || (c >= 0xFE30 && c <= 0xFE4F) ||
           (c >= 0xFF00 && c <= 0xFF9F) || (c >= 0x20000 && c <= 0x3FFFF);
}

bool IsMark(char32_t c) {
    return CategoryOf(c) == UCDN_GENERAL_CATEGORY_MN;
}

bool IsAccent(char32_t c) {
    return Has(kAccents, c) || (c >= 0x2C6 && c <= 0x2DD) || IsMark(c);
}

bool IsOperator(char32_t c) {
    return (c >= 0x220F && c <= 0x2211) || (c >= 0x222B && c <= 0x2233) ||
           (c >= 0x22C0 && c <= 0x22C3) || (c >= 0x2A00 && c <= 0x2A1C);
}

bool EndsSentence(char32_t c) {
    return Has(kSentenceEnds, c);
}

bool IsClosingMark(char32_t c) {
    return Has(kClosing, c);
}

bool IsBullet(char32_t c) {
    return Has(kBullets, c);
}

bool MayNotBegin(char32_t c) {
    return Has(kNoBegin, c);
}

bool MayNotEnd(char32_t c) {
    return Has(kNoEnd, c);
}

std::string_view LettersOf(char32_t c) {
    const auto it = std::find_if(kLigatures.begin(), kLigatures.end(),
                                 [&](const Ligature& ligature) { return ligature.nCode == c; });
    return it == kLigatures.end() ? std::string_view() : it->szLetters;
}

void AppendUtf8(std::string& strText, char32_t c) {
    if (const std::string_view strLetters = LettersOf(c); !strLetters.empty()) {
        strText += strLetters;
    } else if (c < 0x80) {
        strText += static_cast<char>(c);
    } else {
        const int nFollowing = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
        const int nLead = nFollowing == 1 ? 0xC0 : nFollowing == 2 ? 0xE0 : 0xF0;
        strText += static_cast<char>(nLead | static_cast<int>(c >> (6 * nFollowing)));
        for (int i = nFollowing - 1; i >= 0; --i) {
            strText += static_cast<char>(0x80 | static_cast<int>((c >> (6 * i)) & 0x3F));
        }
    }
}

}
