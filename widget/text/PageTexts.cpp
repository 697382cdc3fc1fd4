#include "widget/text/PageTexts.h"

namespace velko::vkit {

using velko::pdf::PageText;

PageTexts::PageTexts(PDFViewCtrl& control)
    : PageShelf(control, "text", [](const std::shared_ptr<Doc>& pDocument, std::int32_t nPage) {
          const auto pSource = std::dynamic_pointer_cast<velko::pdf::ITextSource>(pDocument);
          return pSource ? pSource->TextOf(nPage) : nullptr;
      }) {}

std::shared_ptr<const PageText> PageTexts::TextOf(std::int32_t nPage) {
    static const auto s_pNone = std::make_shared<const PageText>();
    const auto pRead = Find(nPage);
    return !pRead ? nullptr : *pRead ? *pRead : s_pNone;
}

}
