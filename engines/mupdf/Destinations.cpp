#include "engines/mupdf/Destinations.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <optional>
#include <utility>

#include "engines/mupdf/LinkBorder.h"

namespace velko::engines::mupdf {

namespace {

constexpr int kMaxOperands = 4;
constexpr int kMaxNameHops = 8; // a name may stand for another name

// A destination as its array has it. Plain data, filled inside guarded bodies.
struct RawDestination {
    bool bFound = false;
    std::int32_t nPage = 0;
    std::int32_t nMode = 2;
    std::array<float, kMaxOperands> operands{};
    std::array<bool, kMaxOperands> absent = {true, true, true, true};
};

// Where something leads, as the file has it. Texts are borrowed from its objects.
struct RawGoal {
    RawDestination destination;
    const char* szUri = nullptr;
    const char* szOtherKind = nullptr;
    const char* szOtherValue = "";
    bool bAsks = false; // for anything at all
};

struct RawLink {
    fz_rect rcArea = fz_empty_rect;
    RawGoal goal;
};

class Destination final : public pdf::IDestination {
public:
    Destination(const RawDestination& raw, float fPageTop);

    std::int32_t GetPageIndex(const pdf::PDFDoc&) const override { return m_nPage; }
    std::int32_t GetZoomMode() const override { return m_nMode; }
    float GetLeft() const override { return m_fLeft; }
    float GetTop() const override { return m_fTop; }
    float GetRight() const override { return m_fRight; }
    float GetBottom() const override { return m_fBottom; }
    bool IsLeftAbsent() const override { return m_bLeftAbsent; }
    bool IsTopAbsent() const override { return false; } // the page's top stands in

private:
    std::int32_t m_nPage;
    std::int32_t m_nMode;
    float m_fLeft = 0.0F;
    float m_fTop = 0.0F;
    float m_fRight = 0.0F;
    float m_fBottom = 0.0F;
    bool m_bLeftAbsent = true;
};

class GoToAction final : public pdf::IAction {
public:
    explicit GoToAction(std::shared_ptr<pdf::IDestination> pDestination)
        : m_pDestination(std::move(pDestination)) {}
    std::shared_ptr<pdf::IDestination> GetDestination() const override { return m_pDestination; }

private:
    std::shared_ptr<pdf::IDestination> m_pDestination;
};

Destination::Destination(const RawDestination& raw, float fPageTop)
    : m_nPage(raw.nPage), m_nMode(raw.nMode), m_fTop(fPageTop) {
    const auto& at = raw.operands;
    switch (raw.nMode) {
        case 1: // left, top, zoom
            m_bLeftAbsent = raw.absent[0];
            m_fLeft = at[0];
            m_fTop = raw.absent[1] ? fPageTop : at[1];
            m_fRight = at[2];
            break;
        case 3:
        case 7: // a top, which stands for the left as well
            m_bLeftAbsent = false;
            m_fTop = raw.absent[0] ? fPageTop : at[0];
            m_fLeft = m_fTop;
            break;
        case 4:
        case 8: // a left, which stands for the top as well
            m_bLeftAbsent = raw.absent[0];
            m_fLeft = at[0];
            m_fTop = raw.absent[0] ? fPageTop : at[0];
            break;
        case 5: // left, bottom, right, top
            m_bLeftAbsent = raw.absent[0];
            m_fLeft = at[0];
            m_fBottom = at[1];
            m_fRight = at[2];
            m_fTop = raw.absent[3] ? fPageTop : at[3];
            break;
        default: // the whole page or its contents
            break;
    }
}

std::int32_t ModeOf(const char* szKind) {
    constexpr std::array<const char*, 8> kKinds = {"XYZ",  "Fit",  "FitH",  "FitV",
                                                   "FitR", "FitB", "FitBH", "FitBV"};
    const auto it = std::find_if(kKinds.begin(), kKinds.end(), [&](const char* szName) {
        return std::strcmp(szName, szKind) == 0;
    });
    return it == kKinds.end() ? 2 : static_cast<std::int32_t>(it - kKinds.begin()) + 1;
}

// Everything from here to the next comment of this kind runs inside guarded
// bodies and may throw as the library does.

// A name may stand in the older dictionary of the catalogue or in the newer tree.
pdf_obj* LookUpName(fz_context* ctx, pdf_document* pDocument, pdf_obj* pName) {
    pdf_obj* const pCatalog = pdf_dict_get(ctx, pdf_trailer(ctx, pDocument), PDF_NAME(Root));
    pdf_obj* const pOld = pdf_dict_get(ctx, pCatalog, PDF_NAME(Dests));
    pdf_obj* const pFound = pdf_is_name(ctx, pName)
                                ? pdf_dict_get(ctx, pOld, pName)
                                : pdf_dict_gets(ctx, pOld, pdf_to_str_buf(ctx, pName));
    if (pFound != nullptr || !pdf_is_string(ctx, pName)) {
        return pFound;
    }
    return pdf_lookup_name(ctx, pDocument, PDF_NAME(Dests), pName);
}

pdf_obj* ResolveNames(fz_context* ctx, pdf_document* pDocument, pdf_obj* pDestination) {
    for (int nHop = 0; nHop < kMaxNameHops && !pdf_is_array(ctx, pDestination); ++nHop) {
        if (pdf_is_dict(ctx, pDestination)) {
            pDestination = pdf_dict_get(ctx, pDestination, PDF_NAME(D));
        } else if (pdf_is_name(ctx, pDestination) || pdf_is_string(ctx, pDestination)) {
            pDestination = LookUpName(ctx, pDocument, pDestination);
        } else {
            return nullptr;
        }
    }
    return pdf_is_array(ctx, pDestination) ? pDestination : nullptr;
}

RawDestination ReadDestination(fz_context* ctx, const OpenedFile& file, pdf_obj* pDestination,
                               std::int32_t nPages) {
    RawDestination raw;
    pdf_obj* const pArray = ResolveNames(ctx, file.Document(), pDestination);
    if (pArray == nullptr) {
        return raw;
    }
    pdf_obj* const pPage = pdf_array_get(ctx, pArray, 0);
    raw.nPage = pdf_is_int(ctx, pPage) != 0 ? pdf_to_int(ctx, pPage) : file.FindPage(ctx, pPage);
    raw.nMode = ModeOf(pdf_to_name(ctx, pdf_array_get(ctx, pArray, 1)));
    for (int i = 0; i < kMaxOperands; ++i) {
        pdf_obj* const pOperand = pdf_array_get(ctx, pArray, i + 2);
        const float fValue = pdf_to_real(ctx, pOperand);
        if (pdf_is_number(ctx, pOperand) && std::isfinite(fValue)) {
            raw.operands[static_cast<std::size_t>(i)] = fValue;
            raw.absent[static_cast<std::size_t>(i)] = false;
        }
    }
    raw.bFound = raw.nPage >= 0 && raw.nPage < nPages;
    return raw;
}

// A file is named by a text or by a dictionary with up to two of them.
const char* FileNamed(fz_context* ctx, pdf_obj* pFile) {
    if (pdf_is_dict(ctx, pFile)) {
        pdf_obj* const pUnicode = pdf_dict_get(ctx, pFile, PDF_NAME(UF));
        pFile = pUnicode != nullptr ? pUnicode : pdf_dict_get(ctx, pFile, PDF_NAME(F));
    }
    return pdf_to_text_string(ctx, pFile);
}

void ReadAction(fz_context* ctx, pdf_obj* pAction, pdf_obj*& pTarget, RawGoal& goal) {
    pdf_obj* const pKind = pdf_dict_get(ctx, pAction, PDF_NAME(S));
    if (pdf_name_eq(ctx, pKind, PDF_NAME(GoTo))) {
        pTarget = pdf_dict_get(ctx, pAction, PDF_NAME(D));
    } else if (pdf_name_eq(ctx, pKind, PDF_NAME(URI))) {
        goal.szUri = pdf_to_text_string(ctx, pdf_dict_get(ctx, pAction, PDF_NAME(URI)));
    } else if (pdf_is_name(ctx, pKind)) {
        goal.szOtherKind = pdf_to_name(ctx, pKind);
        goal.szOtherValue = pdf_name_eq(ctx, pKind, PDF_NAME(Named))
                                ? pdf_to_name(ctx, pdf_dict_get(ctx, pAction, PDF_NAME(N)))
                                : FileNamed(ctx, pdf_dict_get(ctx, pAction, PDF_NAME(F)));
    }
}

RawGoal ReadRawGoal(fz_context* ctx, const OpenedFile& file, pdf_obj* pEntry, std::int32_t nPages) {
    RawGoal goal;
    pdf_obj* pTarget = pdf_dict_get(ctx, pEntry, PDF_NAME(Dest));
    if (pTarget == nullptr) {
        ReadAction(ctx, pdf_dict_get(ctx, pEntry, PDF_NAME(A)), pTarget, goal);
    }
    goal.bAsks = pTarget != nullptr || pdf_is_dict(ctx, pdf_dict_get(ctx, pEntry, PDF_NAME(A)));
    if (pTarget != nullptr) {
        goal.destination = ReadDestination(ctx, file, pTarget, nPages);
    }
    return goal;
}

// From here on plain C++ again.

std::shared_ptr<pdf::IAction> MakeAction(const RawDestination& raw, const PageTop& fnPageTop) {
    return std::make_shared<GoToAction>(std::make_shared<Destination>(raw, fnPageTop(raw.nPage)));
}

pdf::LinkGoal MakeGoal(const RawGoal& raw, const PageTop& fnPageTop) {
    pdf::LinkGoal goal;
    if (raw.destination.bFound) {
        goal.pAction = MakeAction(raw.destination, fnPageTop);
    } else if (raw.szUri != nullptr) {
        goal.strUri = raw.szUri;
    } else if (raw.szOtherKind != nullptr) {
        goal.strOtherKind = raw.szOtherKind;
        goal.strOtherValue = raw.szOtherValue;
    }
    return goal;
}

// The link of one entry; nothing for other annotations, hidden and broken ones.
std::optional<RawLink> LinkAt(OpenedFile& file, pdf_obj* pArray, int nEntry, std::int32_t nPages) {
    fz_context* const ctx = ThreadContext();
    RawLink link;
    bool bLink = false;
    try {
        file.Use([&] {
            pdf_obj* const pAnnot = pdf_array_get(ctx, pArray, nEntry);
            bLink = IsShownLink(ctx, file.Document(), pAnnot);
            if (bLink) {
                link.rcArea = pdf_dict_get_rect(ctx, pAnnot, PDF_NAME(Rect));
                link.goal = ReadRawGoal(ctx, file, pAnnot, nPages);
            }
        });
    } catch (const LibraryError&) {
        return std::nullopt;
    }
    return bLink ? std::optional(link) : std::nullopt;
}

}

std::vector<pdf::LinkRecord> ReadLinks(OpenedFile& file, std::int32_t nPage, std::int32_t nPages,
                                       const PageTop& fnPageTop) {
    fz_context* const ctx = ThreadContext();
    pdf_obj* pArray = nullptr;
    int nEntries = 0;
    file.Use([&] {
        pArray =
            pdf_dict_get(ctx, pdf_lookup_page_obj(ctx, file.Document(), nPage), PDF_NAME(Annots));
        nEntries = pdf_array_len(ctx, pArray);
    });
    std::vector<pdf::LinkRecord> links;
    for (int i = 0; i < nEntries; ++i) {
        const std::optional<RawLink> link = LinkAt(file, pArray, i, nPages);
        if (!link || !link->goal.bAsks) {
            continue;
        }
        pdf::LinkRecord record;
        static_cast<pdf::LinkGoal&>(record) = MakeGoal(link->goal, fnPageTop);
        record.rcArea = {link->rcArea.x0, link->rcArea.y0, link->rcArea.x1, link->rcArea.y1};
        links.push_back(std::move(record));
    }
    return links;
}

pdf::LinkGoal ReadGoal(OpenedFile& file, pdf_obj* pEntry, std::int32_t nPages,
                       const PageTop& fnPageTop) {
    fz_context* const ctx = ThreadContext();
    RawGoal raw;
    try {
        file.Use([&] { raw = ReadRawGoal(ctx, file, pEntry, nPages); });
    } catch (const LibraryError&) {
        return {};
    }
    return MakeGoal(raw, fnPageTop);
}

std::shared_ptr<pdf::IAction> ReadNamedDestination(OpenedFile& file, const std::string& strName,
                                                   std::int32_t nPages, const PageTop& fnPageTop) {
    fz_context* const ctx = ThreadContext();
    RawDestination raw;
    Handle<pdf_obj, pdf_drop_obj> name;
    try {
        file.Use([&] {
            name.Out() = pdf_new_string(ctx, strName.data(), strName.size());
            raw = ReadDestination(ctx, file, name.Get(), nPages);
        });
    } catch (const LibraryError&) {
        return nullptr;
    }
    return raw.bFound ? MakeAction(raw, fnPageTop) : nullptr;
}

}
