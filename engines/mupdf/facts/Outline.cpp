#include "engines/mupdf/facts/Outline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <unordered_set>

#include "engines/mupdf/LenientUse.h"

namespace velko::engines::mupdf {

namespace {

constexpr std::size_t kMostEntries = 50'000;
constexpr std::size_t kDeepest = 64;
constexpr int kItalicFlag = 1;
constexpr int kBoldFlag = 2;

// What an entry says of itself but where it leads. Texts are borrowed.
struct RawEntry {
    const char* szTitle = "";
    int nFlags = 0;
    int nCount = 0; // of the entries shown under it; negative: when it is opened
    bool bColored = false;
    std::array<float, 3> color{};
};

// Walks the tree; each step is a guarded use of its own, so that a fault ends the
// branch that it is in.
class OutlineWalk {
public:
    OutlineWalk(OpenedFile& file, std::int32_t nPages, const PageTop& fnPageTop)
        : m_file(file), m_nPages(nPages), m_fnPageTop(fnPageTop) {}

    std::vector<pdf::OutlineEntry> Run() {
        pdf_obj* pItem = First();
        while (pItem != nullptr || !m_parents.empty()) {
            if (pItem == nullptr) {
                pItem = Neighbour(m_parents.back(), PDF_NAME(Next));
                m_parents.pop_back();
            } else if (!Enter(pItem)) {
                pItem = nullptr;
            } else {
                pItem = Descend(pItem);
            }
        }
        return std::move(m_entries);
    }

private:
    pdf_obj* First() {
        fz_context* const ctx = ThreadContext();
        pdf_obj* pRoot = nullptr;
        UseLeniently(m_file, [&] {
            pRoot = pdf_dict_getp(ctx, pdf_trailer(ctx, m_file.Document()), "Root/Outlines");
        });
        return Neighbour(pRoot, PDF_NAME(First));
    }

    pdf_obj* Neighbour(pdf_obj* pItem, pdf_obj* pKey) {
        fz_context* const ctx = ThreadContext();
        pdf_obj* pFound = nullptr;
        UseLeniently(m_file, [&] {
            pdf_obj* const pValue = pdf_dict_get(ctx, pItem, pKey);
            pFound = pdf_is_dict(ctx, pValue) != 0 ? pValue : nullptr;
        });
        return pFound;
    }

    // False for an entry that was there before: the rest of its list is one big circle.
    bool Enter(pdf_obj* pItem) {
        fz_context* const ctx = ThreadContext();
        const int nNumber = pdf_to_num(ctx, pItem);
        if (m_entries.size() >= kMostEntries || (nNumber > 0 && !m_seen.insert(nNumber).second)) {
            return false;
        }
        m_entries.push_back(Read(pItem));
        return true;
    }

    pdf_obj* Descend(pdf_obj* pItem) {
        pdf_obj* const pChild =
            m_parents.size() < kDeepest ? Neighbour(pItem, PDF_NAME(First)) : nullptr;
        if (pChild == nullptr) {
            return Neighbour(pItem, PDF_NAME(Next));
        }
        m_parents.push_back(pItem);
        return pChild;
    }

    pdf::OutlineEntry Read(pdf_obj* pItem) {
        fz_context* const ctx = ThreadContext();
        RawEntry raw;
        UseLeniently(m_file, [&] {
            raw.szTitle = pdf_to_text_string(ctx, pdf_dict_get(ctx, pItem, PDF_NAME(Title)));
            raw.nFlags = pdf_to_int(ctx, pdf_dict_get(ctx, pItem, PDF_NAME(F)));
            raw.nCount = pdf_to_int(ctx, pdf_dict_get(ctx, pItem, PDF_NAME(Count)));
            pdf_obj* const pColor = pdf_dict_get(ctx, pItem, PDF_NAME(C));
            raw.bColored = pdf_array_len(ctx, pColor) == 3;
            for (int i = 0; i < 3; ++i) {
                raw.color[static_cast<std::size_t>(i)] = pdf_array_get_real(ctx, pColor, i);
            }
        });
        pdf::OutlineEntry entry;
        static_cast<pdf::LinkGoal&>(entry) = ReadGoal(m_file, pItem, m_nPages, m_fnPageTop);
        entry.strTitle = raw.szTitle;
        entry.nDepth = static_cast<std::int32_t>(m_parents.size());
        entry.bOpen = raw.nCount > 0;
        entry.bBold = (raw.nFlags & kBoldFlag) != 0;
        entry.bItalic = (raw.nFlags & kItalicFlag) != 0;
        if (raw.bColored) {
            entry.nColor = Packed(raw.color);
        }
        return entry;
    }

    static std::uint32_t Packed(const std::array<float, 3>& color) {
        std::uint32_t nColor = 0;
        for (const float fPart : color) {
            const float fIn = fPart >= 0.0F ? std::min(fPart, 1.0F) : 0.0F; // no number is 0
            nColor = nColor << 8U | static_cast<std::uint32_t>(std::lround(fIn * 255.0F));
        }
        return nColor;
    }

    OpenedFile& m_file;
    const std::int32_t m_nPages;
    const PageTop& m_fnPageTop;
    std::vector<pdf::OutlineEntry> m_entries;
    std::vector<pdf_obj*> m_parents; // borrowed from the file
    std::unordered_set<int> m_seen;  // object numbers
};

}

std::vector<pdf::OutlineEntry> ReadOutline(OpenedFile& file, std::int32_t nPages,
                                           const PageTop& fnPageTop) {
    file.IndexPages();
    return OutlineWalk(file, nPages, fnPageTop).Run();
}

}
