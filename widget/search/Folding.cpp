#include "widget/search/Folding.h"

#include <QChar>
#include <QList>
#include <QString>

namespace velko::vkit {

namespace {

constexpr char16_t kSpace = u' ';
constexpr char16_t kHyphen = u'-';
constexpr char32_t kTatweel = 0x0640;
constexpr int kVoicing = 8; // the class of marks that make another letter of kana

bool IsSpace(char32_t c) {
    return QChar::isSpace(c) || QChar::category(c) == QChar::Other_Control;
}

// No letters of their own: soft hyphens, joiners, signs of direction, selectors of shape.
bool IsIgnored(char32_t c) {
    const bool bSelector = c >= 0xFE00 && c <= 0xFE0F;
    return QChar::category(c) == QChar::Other_Format || c == kTatweel || bSelector;
}

// The kinds of quotes, dashes and the like that keyboards have one of.
char32_t AsTyped(char32_t c) {
    constexpr char32_t kLastDash = 0x2E80; // those beyond are of scripts with dashes of their own
    constexpr std::u32string_view kSingle = U"\u2018\u2019\u201A\u201B\u2032\u02BC\u2039\u203A";
    constexpr std::u32string_view kDouble = U"\u201C\u201D\u201E\u201F\u2033\u00AB\u00BB\u3003";
    constexpr char32_t kMinus = 0x2212;
    if (kSingle.find(c) != std::u32string_view::npos) {
        return U'\'';
    }
    if (kDouble.find(c) != std::u32string_view::npos) {
        return U'"';
    }
    const bool bDash = QChar::category(c) == QChar::Punctuation_Dash && c < kLastDash;
    return bDash || c == kMinus ? U'-' : c;
}

// Letters with a stroke and the like, which Unicode takes for letters of their own.
QString WithoutStroke(char32_t c) {
    switch (c) {
        case 0x00E6:
            return QStringLiteral("ae");
        case 0x00C6:
            return QStringLiteral("AE");
        case 0x0153:
            return QStringLiteral("oe");
        case 0x0152:
            return QStringLiteral("OE");
        case 0x00F8:
            return QStringLiteral("o");
        case 0x00D8:
            return QStringLiteral("O");
        case 0x0142:
            return QStringLiteral("l");
        case 0x0141:
            return QStringLiteral("L");
        case 0x0111:
            return QStringLiteral("d");
        case 0x0110:
            return QStringLiteral("D");
        case 0x0131:
            return QStringLiteral("i");
        default:
            return QString::fromUcs4(&c, 1);
    }
}

// Syllables of Hangul are as good as letters.
QString Decomposed(const QString& str) {
    const bool bHangul = !str.isEmpty() && str[0].script() == QChar::Script_Hangul;
    return bHangul ? str : str.normalized(QString::NormalizationForm_KD);
}

// An accent that stands alone is a space with a mark to Unicode; programs that set text
// put it beside its letter.
QString WithoutMarks(const QString& str) {
    QString strKept;
    for (const char32_t c : str.toUcs4()) {
        if (IsAccentMark(c) && QChar::combiningClass(c) != kVoicing) {
            if (strKept == u" ") {
                strKept.clear();
            }
        } else {
            strKept += WithoutStroke(c);
        }
    }
    return strKept;
}

}

bool IsAccentMark(char32_t nCode) {
    constexpr int kFirstPoint = 10; // of Hebrew; those of Arabic and Syriac follow
    constexpr int kLastPoint = 36;
    constexpr int kFirstAttached = 200;
    const int nClass = QChar::combiningClass(nCode);
    return nClass == kVoicing || (nClass >= kFirstPoint && nClass <= kLastPoint) ||
           nClass >= kFirstAttached;
}

bool IsWithoutSpaces(char32_t nCode) {
    const bool bWide = nCode >= 0xFF00 && nCode <= 0xFF65 && !QChar::isLetterOrNumber(nCode);
    const bool bSign = bWide || (nCode >= 0x3000 && nCode <= 0x303F);
    switch (QChar::script(nCode)) {
        case QChar::Script_Han:
        case QChar::Script_Hiragana:
        case QChar::Script_Katakana:
        case QChar::Script_Bopomofo:
        case QChar::Script_Thai:
        case QChar::Script_Lao:
        case QChar::Script_Khmer:
        case QChar::Script_Myanmar:
            return true;
        default:
            return bSign;
    }
}

namespace {

// Qt writes capitals in full, such as SS for a sharp s, but folds letter by letter.
QString WithoutCase(const QString& str) {
    return str.toUpper().toCaseFolded();
}

}

std::u16string Folding::Make(char32_t nCode) const {
    if (IsSpace(nCode)) {
        return {kSpace};
    }
    if (IsIgnored(nCode)) {
        return {};
    }
    const char32_t nTyped = AsTyped(nCode);
    const auto fnCase = [this](const QString& str) {
        return m_options.bCase ? str : WithoutCase(str);
    };
    QString str = fnCase(Decomposed(fnCase(QString::fromUcs4(&nTyped, 1))));
    if (!m_options.bExactAccents) {
        str = WithoutMarks(str);
    }
    return str.remove(QChar(static_cast<char16_t>(kTatweel))).toStdU16String();
}

std::u16string_view Folding::Of(char32_t nCode) {
    constexpr char32_t kFirstRare = 0x10000;
    if (nCode >= kFirstRare) {
        m_rare = Make(nCode);
        return m_rare;
    }
    auto& pBlock = m_blocks[nCode >> 8U];
    if (!pBlock) {
        pBlock = std::make_unique<Block>();
    }
    Piece& piece = (*pBlock)[nCode & 0xFFU];
    if (!piece.bKnown) {
        const std::u16string units = Make(nCode);
        piece = {static_cast<std::uint32_t>(m_pool.size()),
                 static_cast<std::uint16_t>(units.size()), true};
        m_pool += units;
    }
    return std::u16string_view(m_pool).substr(piece.nFirst, piece.nLength);
}

namespace {

// Puts the pieces of a page together.
class Writer {
public:
    explicit Writer(FoldedText& folded) : m_units(folded.units), m_chars(folded.chars) {
        m_units.clear();
        m_chars.clear();
    }

    void LeaveGap() { m_bGap = true; }

    void Append(std::u16string_view piece, std::int32_t nChar, char32_t nCode) {
        if (m_bGap && NeedsSpace(nCode)) {
            Put(kSpace, nChar);
        }
        m_bGap = false;
        for (const char16_t unit : piece) {
            Put(unit, nChar);
        }
        m_nLast = nCode;
    }

    // The hyphen that the line ends with.
    void TakeBack() {
        if (!m_units.empty() && m_units.back() == kHyphen) {
            m_units.pop_back();
            m_chars.pop_back();
        }
    }

private:
    // None after a hyphen that a word ends with, as a line may end there; and none where no
    // spaces are set: ideographs that stand wide may look as if there were some.
    bool NeedsSpace(char32_t nNext) const {
        const std::size_t n = m_units.size();
        if (n == 0 || (n > 1 && m_units[n - 1] == kHyphen && m_units[n - 2] != kSpace)) {
            return false;
        }
        return !IsWithoutSpaces(m_nLast) || !IsWithoutSpaces(nNext);
    }

    void Put(char16_t unit, std::int32_t nChar) {
        m_units += unit;
        m_chars.push_back(nChar);
    }

    std::u16string& m_units;
    std::vector<std::int32_t>& m_chars;
    bool m_bGap = false; // before what comes next
    char32_t m_nLast = 0;
};

}

void Folding::Fold(const SearchText& text, LineHyphens eHyphens, FoldedText& folded) {
    Writer writer(folded);
    const std::u16string& units = text.Units();
    std::size_t i = 0;
    std::int32_t nChar = 0;
    for (const SearchText::Line& line : text.Lines()) {
        while (i < line.nEndUnit) {
            const bool bPair = QChar::isHighSurrogate(units[i]) && i + 1 < units.size();
            const char32_t nCode =
                bPair ? QChar::surrogateToUcs4(units[i], units[i + 1]) : char32_t{units[i]};
            i += bPair ? 2 : 1;
            const std::u16string_view piece = Of(nCode);
            if (piece == u" ") {
                writer.LeaveGap();
            } else if (!piece.empty()) {
                writer.Append(piece, nChar, nCode);
            }
            ++nChar;
        }
        if (!line.bGoesOn) {
            writer.LeaveGap();
        } else if (eHyphens == LineHyphens::GoAway) {
            writer.TakeBack();
        }
    }
}

}
