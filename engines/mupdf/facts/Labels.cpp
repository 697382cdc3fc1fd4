#include "engines/mupdf/facts/Labels.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace velko::engines::mupdf {

namespace {

constexpr std::size_t kMostNodes = 10'000;
constexpr int kMostRunsOfNode = 10'000;

using Style = pdf::PageLabels::Style;

Style StyleOf(const char* szStyle) {
    constexpr std::pair<const char*, Style> kStyles[] = {{"D", Style::Decimal},
                                                         {"R", Style::UpperRoman},
                                                         {"r", Style::LowerRoman},
                                                         {"A", Style::UpperLetters},
                                                         {"a", Style::LowerLetters}};
    for (const auto& [szName, eStyle] : kStyles) {
        if (std::strcmp(szName, szStyle) == 0) {
            return eStyle;
        }
    }
    return Style::None;
}

// One pair of a node's list. The text is borrowed.
struct RawRun {
    int nPage = -1;
    const char* szStyle = "";
    const char* szPrefix = "";
    int nStart = 0;
};

RawRun ReadRun(fz_context* ctx, pdf_obj* pPairs, int nPair) {
    RawRun run;
    pdf_obj* const pLabel = pdf_array_get(ctx, pPairs, 2 * nPair + 1);
    if (pdf_is_dict(ctx, pLabel) != 0) {
        run.nPage = pdf_array_get_int(ctx, pPairs, 2 * nPair);
        run.szStyle = pdf_to_name(ctx, pdf_dict_get(ctx, pLabel, PDF_NAME(S)));
        run.szPrefix = pdf_to_text_string(ctx, pdf_dict_get(ctx, pLabel, PDF_NAME(P)));
        run.nStart = pdf_to_int(ctx, pdf_dict_gets(ctx, pLabel, "St")); // 1 where it is missing
    }
    return run;
}

void ReadRuns(OpenedFile& file, pdf_obj* pNode, std::vector<pdf::PageLabels::Run>& runs) {
    fz_context* const ctx = ThreadContext();
    pdf_obj* pPairs = nullptr;
    int nPairs = 0;
    file.Use([&] {
        pPairs = pdf_dict_gets(ctx, pNode, "Nums");
        nPairs = std::min(pdf_array_len(ctx, pPairs) / 2, kMostRunsOfNode);
    });
    for (int i = 0; i < nPairs; ++i) {
        RawRun raw;
        file.Use([&] { raw = ReadRun(ctx, pPairs, i); });
        if (raw.nPage >= 0) {
            runs.push_back(
                {raw.nPage, StyleOf(raw.szStyle), raw.szPrefix, std::max(raw.nStart, 1)});
        }
    }
}

void AddKids(OpenedFile& file, pdf_obj* pNode, std::vector<pdf_obj*>& nodes) {
    fz_context* const ctx = ThreadContext();
    pdf_obj* pKids = nullptr;
    int nKids = 0;
    file.Use([&] {
        pKids = pdf_dict_get(ctx, pNode, PDF_NAME(Kids));
        nKids = pdf_array_len(ctx, pKids);
    });
    for (int i = 0; i < nKids && nodes.size() < kMostNodes; ++i) {
        pdf_obj* pKid = nullptr;
        file.Use([&] { pKid = pdf_array_get(ctx, pKids, i); });
        nodes.push_back(pKid);
    }
}

}

pdf::PageLabels ReadPageLabels(OpenedFile& file) {
    fz_context* const ctx = ThreadContext();
    std::vector<pdf::PageLabels::Run> runs;
    std::vector<pdf_obj*> nodes(1);
    std::unordered_set<int> seen;
    try {
        file.Use([&] {
            nodes[0] = pdf_dict_getp(ctx, pdf_trailer(ctx, file.Document()), "Root/PageLabels");
        });
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            const int nNumber = pdf_to_num(ctx, nodes[i]);
            if (nNumber == 0 || seen.insert(nNumber).second) {
                ReadRuns(file, nodes[i], runs);
                AddKids(file, nodes[i], nodes);
            }
        }
    } catch (const LibraryError&) {
        // The runs that could be read count.
    }
    return pdf::PageLabels(std::move(runs));
}

}
