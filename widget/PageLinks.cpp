#include "widget/PageLinks.h"

#include "document/engine/PDFDoc.h"
#include "viewers/core/Modes.h"

namespace velko::vkit {

PageLinks::PageLinks(PDFViewCtrl& control)
    : PageShelf(control, "links", [](const std::shared_ptr<Doc>& pDocument, std::int32_t nPage) {
          const auto pSource = std::dynamic_pointer_cast<velko::pdf::ILinkSource>(pDocument);
          return pSource ? pSource->GetLinks(nPage) : Links();
      }) {}

std::shared_ptr<const PageLinks::Links> PageLinks::Find(std::int32_t nPage) {
    if (Control().GetPageLayoutMode() == LayoutMode::kReflow) {
        static const auto s_pNone = std::make_shared<const Links>();
        return s_pNone;
    }
    return PageShelf::Find(nPage);
}

}
