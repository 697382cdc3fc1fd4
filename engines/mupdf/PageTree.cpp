#include "engines/mupdf/PageTree.h"

#include <cstddef>

namespace velko::engines::mupdf {

namespace {

constexpr int kMaxDepth = 64;

// A tree has fewer branches than leaves, or it is not worth walking.
constexpr std::int64_t kMinVisits = 10'000;

struct Walk {
    fz_context* ctx;
    std::span<std::int32_t> objects;
    PageLeaves leaves;
    std::int64_t nVisits = 0;

    std::int32_t Room() const { return static_cast<std::int32_t>(objects.size()); }
};

bool IsBranch(fz_context* ctx, pdf_obj* pNode) {
    pdf_obj* const pType = pdf_dict_get(ctx, pNode, PDF_NAME(Type));
    if (pType != nullptr) {
        return pdf_name_eq(ctx, pType, PDF_NAME(Pages)) != 0;
    }
    return pdf_dict_get(ctx, pNode, PDF_NAME(Kids)) != nullptr &&
           pdf_dict_get(ctx, pNode, PDF_NAME(MediaBox)) == nullptr;
}

void VisitKids(Walk& walk, pdf_obj* pNode, int nDepth);

void Visit(Walk& walk, pdf_obj* pNode, int nDepth) {
    fz_context* const ctx = walk.ctx;
    if (++walk.nVisits > kMinVisits + 2 * std::int64_t{walk.Room()} || nDepth > kMaxDepth) {
        fz_throw(ctx, FZ_ERROR_GENERIC, "the page tree has no end");
    }
    if (IsBranch(ctx, pNode)) {
        VisitKids(walk, pNode, nDepth + 1);
        return;
    }
    const int nObject = pdf_to_num(ctx, pNode);
    walk.objects[static_cast<std::size_t>(walk.leaves.nCount++)] = nObject;
    walk.leaves.bAllNumbered = walk.leaves.bAllNumbered && nObject > 0;
}

void VisitKids(Walk& walk, pdf_obj* pNode, int nDepth) {
    pdf_obj* const pKids = pdf_dict_get(walk.ctx, pNode, PDF_NAME(Kids));
    const int nKids = pdf_array_len(walk.ctx, pKids);
    for (int i = 0; i < nKids && walk.leaves.nCount < walk.Room(); ++i) {
        Visit(walk, pdf_array_get(walk.ctx, pKids, i), nDepth);
    }
}

}

PageLeaves ListPageLeaves(fz_context* ctx, pdf_document* pDocument,
                          std::span<std::int32_t> objects) {
    Walk walk{ctx, objects, {}, 0};
    pdf_obj* const pRoot = pdf_dict_get(ctx, pdf_trailer(ctx, pDocument), PDF_NAME(Root));
    VisitKids(walk, pdf_dict_get(ctx, pRoot, PDF_NAME(Pages)), 0);
    return walk.leaves;
}

}
