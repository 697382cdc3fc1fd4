#include "engines/mupdf/PageTree.h"

#include <cstddef>

namespace velko::engines::mupdf {

namespace {

constexpr int kMaxDepth = 64;

// A tree has fewer branches than leaves, or it is not worth walking.
constexpr std::int64_t kMinVisits = 10'000;

struct Walk {
    fz_context* ctx;
    std::int32_t nLimit;
    std::int32_t* pObjects; // null: only count
    std::int32_t nLeaves = 0;
    std::int64_t nVisits = 0;
    bool bAllNumbered = true;
};

bool IsBranch(fz_context* ctx, pdf_obj* pNode) {
    pdf_obj* const pType = pdf_dict_get(ctx, pNode, PDF_NAME(Type));
    if (pType != nullptr) {
        return pdf_name_eq(ctx, pType, PDF_NAME(Pages)) != 0;
    }
    return pdf_dict_get(ctx, pNode, PDF_NAME(Kids)) != nullptr &&
           pdf_dict_get(ctx, pNode, PDF_NAME(MediaBox)) == nullptr;
}

void Visit(Walk& walk, pdf_obj* pNode, int nDepth) {
    fz_context* const ctx = walk.ctx;
    if (++walk.nVisits > kMinVisits + 2 * std::int64_t{walk.nLimit} || nDepth > kMaxDepth) {
        fz_throw(ctx, FZ_ERROR_GENERIC, "the page tree has no end");
    }
    if (!IsBranch(ctx, pNode)) {
        if (walk.pObjects != nullptr) {
            walk.pObjects[walk.nLeaves] = pdf_to_num(ctx, pNode);
            walk.bAllNumbered = walk.bAllNumbered && pdf_to_num(ctx, pNode) > 0;
        }
        ++walk.nLeaves;
        return;
    }
    pdf_obj* const pKids = pdf_dict_get(ctx, pNode, PDF_NAME(Kids));
    const int nKids = pdf_array_len(ctx, pKids);
    for (int i = 0; i < nKids && walk.nLeaves < walk.nLimit; ++i) {
        Visit(walk, pdf_array_get(ctx, pKids, i), nDepth + 1);
    }
}

void VisitAll(Walk& walk, pdf_document* pDocument) {
    fz_context* const ctx = walk.ctx;
    pdf_obj* const pRoot = pdf_dict_get(ctx, pdf_trailer(ctx, pDocument), PDF_NAME(Root));
    pdf_obj* const pPages = pdf_dict_get(ctx, pRoot, PDF_NAME(Pages));
    if (pdf_is_dict(ctx, pPages) && walk.nLimit > 0) {
        Visit(walk, pPages, 0);
    }
}

}

std::int32_t CountPageLeaves(fz_context* ctx, pdf_document* pDocument, std::int32_t nLimit) {
    Walk walk{ctx, nLimit, nullptr};
    VisitAll(walk, pDocument);
    return walk.nLeaves;
}

bool ListPageLeaves(fz_context* ctx, pdf_document* pDocument, std::span<std::int32_t> objects) {
    Walk walk{ctx, static_cast<std::int32_t>(objects.size()), objects.data()};
    VisitAll(walk, pDocument);
    return walk.bAllNumbered && walk.nLeaves == walk.nLimit;
}

}
