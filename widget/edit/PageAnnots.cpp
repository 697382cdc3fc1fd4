#include "widget/edit/PageAnnots.h"

#include <algorithm>
#include <cmath>

namespace velko::vkit {

using velko::common::vxbase::PointF;
using velko::common::vxbase::RectF;
using velko::pdf::AnnotId;
using velko::pdf::TextQuad;

namespace {

constexpr std::int32_t kLink = 2;
constexpr std::int32_t kWidget = 20;
constexpr std::int32_t kPopup = 26;

// On which side of the line from one point to another, as a sign.
float SideOf(PointF from, PointF to, PointF pt) {
    return (to.X - from.X) * (pt.Y - from.Y) - (to.Y - from.Y) * (pt.X - from.X);
}

bool IsWithin(const TextQuad& quad, PointF pt) {
    const float sides[] = {SideOf(quad.ptTopLeft, quad.ptTopRight, pt),
                           SideOf(quad.ptTopRight, quad.ptBottomRight, pt),
                           SideOf(quad.ptBottomRight, quad.ptBottomLeft, pt),
                           SideOf(quad.ptBottomLeft, quad.ptTopLeft, pt)};
    return std::all_of(std::begin(sides), std::end(sides), [](float f) { return f >= 0.0F; }) ||
           std::all_of(std::begin(sides), std::end(sides), [](float f) { return f <= 0.0F; });
}

bool Lies(const PageAnnots::Annot& annot, PointF pt) {
    const auto& quads = annot.record.quads;
    return quads.empty() ? PageAnnots::IsWithin(annot.record.rcArea, pt)
                         : std::any_of(quads.begin(), quads.end(),
                                       [&](const TextQuad& quad) { return IsWithin(quad, pt); });
}

// Links, fields of forms and windows of notes are not the reader's marks.
bool IsMark(const PageAnnots::Annot& annot) {
    const std::int32_t nType = annot.record.nType;
    return nType != kLink && nType != kWidget && nType != kPopup;
}

}

PageAnnots::PageAnnots(PDFViewCtrl& control)
    : PageShelf(
          control, "annotations", [](const std::shared_ptr<Doc>& pDocument, std::int32_t nPage) {
              const auto pEditor = std::dynamic_pointer_cast<velko::pdf::IAnnotEditor>(pDocument);
              return pEditor ? pEditor->ListAnnots(nPage) : std::vector<Annot>();
          }) {}

bool PageAnnots::IsWithin(const RectF& rc, PointF pt) {
    return pt.X >= std::min(rc.Left, rc.Right) && pt.X <= std::max(rc.Left, rc.Right) &&
           pt.Y >= std::min(rc.Bottom, rc.Top) && pt.Y <= std::max(rc.Bottom, rc.Top);
}

std::optional<PageAnnots::Annot> PageAnnots::At(const PagePoint& point) {
    const auto pAnnots = Find(point.nPage);
    if (!pAnnots) {
        return std::nullopt;
    }
    const auto it = std::find_if(pAnnots->rbegin(), pAnnots->rend(), [&](const Annot& annot) {
        return IsMark(annot) && Lies(annot, point.pt);
    });
    return it == pAnnots->rend() ? std::nullopt : std::optional(*it);
}

std::optional<PageAnnots::Annot> PageAnnots::Named(std::int32_t nPage, AnnotId nId) {
    const auto pAnnots = Find(nPage);
    if (!pAnnots) {
        return std::nullopt;
    }
    const auto it = std::find_if(pAnnots->begin(), pAnnots->end(),
                                 [&](const Annot& annot) { return annot.nId == nId; });
    return it == pAnnots->end() ? std::nullopt : std::optional(*it);
}

}
