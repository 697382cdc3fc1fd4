#include "engines/mupdf/facts/Properties.h"

#include <algorithm>
#include <cctype>
#include <string>
#include <unordered_set>
#include <utility>

#include "engines/mupdf/LenientUse.h"

namespace velko::engines::mupdf {

namespace {

std::string InfoText(OpenedFile& file, pdf_obj* pKey) {
    fz_context* const ctx = ThreadContext();
    const char* szText = "";
    UseLeniently(file, [&] {
        pdf_obj* const pInfo = pdf_dict_get(ctx, pdf_trailer(ctx, file.Document()), PDF_NAME(Info));
        szText = pdf_to_text_string(ctx, pdf_dict_get(ctx, pInfo, pKey));
    });
    return szText;
}

std::int64_t InfoTime(OpenedFile& file, pdf_obj* pKey) {
    fz_context* const ctx = ThreadContext();
    std::int64_t nTime = 0;
    UseLeniently(file, [&] {
        pdf_obj* const pInfo = pdf_dict_get(ctx, pdf_trailer(ctx, file.Document()), PDF_NAME(Info));
        nTime = pdf_dict_get_date(ctx, pInfo, pKey);
    });
    return std::max<std::int64_t>(nTime, 0);
}

std::string Version(OpenedFile& file) {
    fz_context* const ctx = ThreadContext();
    int nVersion = 0; // 17 for 1.7
    UseLeniently(file, [&] { nVersion = pdf_version(ctx, file.Document()); });
    return nVersion == 0 ? std::string()
                         : std::to_string(nVersion / 10) + "." + std::to_string(nVersion % 10);
}

// The first of the two identifiers, which stays when the file is changed.
std::string Identifier(OpenedFile& file) {
    constexpr std::size_t kMostBytes = 64;
    fz_context* const ctx = ThreadContext();
    const char* pBytes = nullptr;
    std::size_t nBytes = 0;
    UseLeniently(file, [&] {
        pdf_obj* const pIds = pdf_dict_get(ctx, pdf_trailer(ctx, file.Document()), PDF_NAME(ID));
        pBytes = pdf_to_string(ctx, pdf_array_get(ctx, pIds, 0), &nBytes);
    });
    constexpr const char* kDigits = "0123456789abcdef";
    std::string strDigits;
    for (std::size_t i = 0; pBytes != nullptr && i < std::min(nBytes, kMostBytes); ++i) {
        const auto nByte = static_cast<unsigned char>(pBytes[i]);
        strDigits += kDigits[nByte / 16U];
        strDigits += kDigits[nByte % 16U];
    }
    return strDigits;
}

// Everything a page's resources lead to: its fonts, and those of what it draws.
class FontWalk {
public:
    explicit FontWalk(OpenedFile& file) : m_file(file) {}

    std::vector<pdf::FontFact> Run(std::int32_t nPage) {
        fz_context* const ctx = ThreadContext();
        pdf_obj* pResources = nullptr;
        UseLeniently(m_file, [&] {
            pResources = pdf_dict_get_inheritable(
                ctx, pdf_lookup_page_obj(ctx, m_file.Document(), nPage), PDF_NAME(Resources));
        });
        m_resources.push_back(pResources);
        for (std::size_t i = 0; i < m_resources.size(); ++i) {
            Visit(m_resources[i], PDF_NAME(Font), &FontWalk::AddFont);
            Visit(m_resources[i], PDF_NAME(XObject), &FontWalk::AddResources);
            Visit(m_resources[i], PDF_NAME(Pattern), &FontWalk::AddResources);
        }
        std::sort(m_fonts.begin(), m_fonts.end());
        m_fonts.erase(std::unique(m_fonts.begin(), m_fonts.end()), m_fonts.end());
        return std::move(m_fonts);
    }

private:
    static constexpr std::size_t kMostObjects = 20'000;

    // Each entry of one of the dictionaries of resources, once.
    void Visit(pdf_obj* pResources, pdf_obj* pKey, void (FontWalk::*pVisit)(pdf_obj*)) {
        fz_context* const ctx = ThreadContext();
        pdf_obj* pEntries = nullptr;
        int nEntries = 0;
        UseLeniently(m_file, [&] {
            pEntries = pdf_dict_get(ctx, pResources, pKey);
            nEntries = pdf_dict_len(ctx, pEntries);
        });
        for (int i = 0; i < nEntries && m_seen.size() < kMostObjects; ++i) {
            pdf_obj* pEntry = nullptr;
            UseLeniently(m_file, [&] { pEntry = pdf_dict_get_val(ctx, pEntries, i); });
            const int nNumber = pdf_to_num(ctx, pEntry);
            if (pEntry != nullptr && (nNumber == 0 || m_seen.insert(nNumber).second)) {
                (this->*pVisit)(pEntry);
            }
        }
    }

    void AddResources(pdf_obj* pHolder) {
        fz_context* const ctx = ThreadContext();
        pdf_obj* pResources = nullptr;
        UseLeniently(m_file, [&] { pResources = pdf_dict_get(ctx, pHolder, PDF_NAME(Resources)); });
        if (pResources != nullptr && m_resources.size() < kMostObjects) {
            m_resources.push_back(pResources);
        }
    }

    void AddFont(pdf_obj* pFont) {
        fz_context* const ctx = ThreadContext();
        const char* szName = "";
        const char* szKind = "";
        bool bEmbedded = false;
        UseLeniently(m_file, [&] {
            pdf_obj* const pDescendant =
                pdf_array_get(ctx, pdf_dict_get(ctx, pFont, PDF_NAME(DescendantFonts)), 0);
            pdf_obj* const pOwn = pDescendant != nullptr ? pDescendant : pFont;
            szName = pdf_to_name(ctx, pdf_dict_get(ctx, pFont, PDF_NAME(BaseFont)));
            szKind = pdf_to_name(ctx, pdf_dict_get(ctx, pOwn, PDF_NAME(Subtype)));
            pdf_obj* const pFacts = pdf_dict_get(ctx, pOwn, PDF_NAME(FontDescriptor));
            bEmbedded = pdf_dict_get(ctx, pFacts, PDF_NAME(FontFile)) != nullptr ||
                        pdf_dict_get(ctx, pFacts, PDF_NAME(FontFile2)) != nullptr ||
                        pdf_dict_get(ctx, pFacts, PDF_NAME(FontFile3)) != nullptr ||
                        pdf_dict_get(ctx, pFont, PDF_NAME(CharProcs)) != nullptr;
        });
        m_fonts.push_back(Fact(szName, szKind, bEmbedded));
        AddResources(pFont); // of a font whose letters are drawn
    }

    // Six capital letters and a plus mark a font of which only a part is there.
    static pdf::FontFact Fact(std::string strName, const char* szKind, bool bEmbedded) {
        constexpr std::size_t kMark = 6;
        const bool bSubset = strName.size() > kMark && strName[kMark] == '+' &&
                             std::all_of(strName.begin(), strName.begin() + kMark,
                                         [](unsigned char c) { return std::isupper(c) != 0; });
        return {bSubset ? strName.substr(kMark + 1) : std::move(strName), szKind, bEmbedded,
                bSubset};
    }

    OpenedFile& m_file;
    std::vector<pdf::FontFact> m_fonts;
    std::vector<pdf_obj*> m_resources; // borrowed from the file
    std::unordered_set<int> m_seen;    // object numbers
};

}

pdf::DocumentProperties ReadProperties(OpenedFile& file) {
    fz_context* const ctx = ThreadContext();
    pdf::DocumentProperties properties;
    properties.strTitle = InfoText(file, PDF_NAME(Title));
    properties.strAuthor = InfoText(file, PDF_NAME(Author));
    properties.strSubject = InfoText(file, PDF_NAME(Subject));
    properties.strKeywords = InfoText(file, PDF_NAME(Keywords));
    properties.strCreator = InfoText(file, PDF_NAME(Creator));
    properties.strProducer = InfoText(file, PDF_NAME(Producer));
    properties.nCreated = InfoTime(file, PDF_NAME(CreationDate));
    properties.nModified = InfoTime(file, PDF_NAME(ModDate));
    properties.strVersion = Version(file);
    properties.strIdentifier = Identifier(file);
    UseLeniently(file, [&] {
        properties.bTagged = pdf_to_bool(ctx, pdf_dict_getp(ctx, pdf_trailer(ctx, file.Document()),
                                                            "Root/MarkInfo/Marked")) != 0;
    });
    return properties;
}

std::vector<pdf::FontFact> ReadFonts(OpenedFile& file, std::int32_t nPage) {
    return FontWalk(file).Run(nPage);
}

}
