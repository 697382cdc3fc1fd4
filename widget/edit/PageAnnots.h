// The annotations of the shown document's pages, as far as a reader may change them.
//
// Threads: UI thread only. Errors: a page whose annotations cannot be read has none.
#pragma once

#include <optional>
#include <vector>

#include "document/engine/AnnotEditor.h"
#include "widget/PageShelf.h"
#include "widget/text/PagePlaces.h"

namespace velko::vkit {

// Numbers of `IAnnot::GetType`.
namespace AnnotType {
inline constexpr std::int32_t kNote = 1;
inline constexpr std::int32_t kHighlight = 9;
}

class PageAnnots : public PageShelf<std::vector<velko::pdf::ListedAnnot>> {
    Q_OBJECT

public:
    using Annot = velko::pdf::ListedAnnot;

    explicit PageAnnots(PDFViewCtrl& control);

    static bool IsWithin(const velko::common::vxbase::RectF& rc, velko::common::vxbase::PointF pt);

    // The topmost one there; nothing also while the page's are read.
    std::optional<Annot> At(const PagePoint& point);
    std::optional<Annot> Named(std::int32_t nPage, velko::pdf::AnnotId nId);

signals:
    void Read(int nPage);

protected:
    void OnRead(std::int32_t nPage) override { emit Read(nPage); }
};

}
