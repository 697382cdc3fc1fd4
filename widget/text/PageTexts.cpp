#include "widget/text/PageTexts.h"

#include <utility>

#include "viewers/core/Modes.h"

namespace velko::vkit {

using velko::pdf::ISetTextSource;
using velko::pdf::ITextSource;
using velko::pdf::PageText;
using Doc = velko::pdf::PDFDoc;

namespace {

PlacedText ReadOwn(const std::shared_ptr<Doc>& pDocument, std::int32_t nPage) {
    const auto pSource = std::dynamic_pointer_cast<ITextSource>(pDocument);
    return {pSource ? pSource->TextOf(nPage) : nullptr, 0};
}

// What it is set for may change meanwhile: then it is read once more.
PlacedText ReadSet(const std::shared_ptr<Doc>& pDocument, std::int32_t nPage) {
    const auto pSource = std::dynamic_pointer_cast<ISetTextSource>(pDocument);
    if (!pSource) {
        return {};
    }
    const std::uint64_t nSet = pSource->SetNumber();
    return {pSource->SetTextOf(nPage), nSet};
}

PageTexts::TextPtr OrNone(const std::shared_ptr<const PlacedText>& pRead) {
    static const auto s_pNone = std::make_shared<const PageText>();
    return !pRead ? nullptr : pRead->pText ? pRead->pText : s_pNone;
}

}

PlacedText ReadPlacedText(const std::shared_ptr<Doc>& pDocument, std::int32_t nPage, bool bSet) {
    return bSet ? ReadSet(pDocument, nPage) : ReadOwn(pDocument, nPage);
}

class PageTexts::SetTexts : public PageShelf<PlacedText> {
public:
    SetTexts(PDFViewCtrl& control, std::function<void(std::int32_t)> fnRead)
        : PageShelf(control, "set text", &ReadSet), m_fnRead(std::move(fnRead)) {}

    TextPtr TextOf(std::int32_t nPage) {
        const auto pRead = Find(nPage);
        const auto pSource = std::dynamic_pointer_cast<ISetTextSource>(Document());
        const std::uint64_t nNow = pSource ? pSource->SetNumber() : 0;
        if (pRead && pRead->nSet != nNow && std::exchange(m_asked[nPage], nNow) != nNow) {
            Renew(nPage);
        }
        return OrNone(pRead);
    }

    TextPtr Known(std::int32_t nPage) const { return OrNone(Peek(nPage)); }

    bool IsSame() {
        const bool bSame = IsSameDocument();
        if (!bSame) {
            m_asked.clear();
        }
        return bSame;
    }

protected:
    void OnRead(std::int32_t nPage) override { m_fnRead(nPage); }

private:
    const std::function<void(std::int32_t)> m_fnRead;
    std::map<std::int32_t, std::uint64_t> m_asked; // for what pages were read anew last, once each
};

PageTexts::PageTexts(PDFViewCtrl& control)
    : PageShelf(control, "text", &ReadOwn),
      m_pSet(std::make_unique<SetTexts>(control, [this](std::int32_t nPage) { OnRead(nPage); })) {}

PageTexts::~PageTexts() = default;

PageTexts::TextPtr PageTexts::TextOf(std::int32_t nPage) {
    return Control().GetPageLayoutMode() == LayoutMode::kReflow ? m_pSet->TextOf(nPage)
                                                                : OwnTextOf(nPage);
}

PageTexts::TextPtr PageTexts::Known(std::int32_t nPage) const {
    return Control().GetPageLayoutMode() == LayoutMode::kReflow ? m_pSet->Known(nPage)
                                                                : OrNone(Peek(nPage));
}

PageTexts::TextPtr PageTexts::OwnTextOf(std::int32_t nPage) {
    return OrNone(Find(nPage));
}

bool PageTexts::IsSameDocument() {
    m_pSet->IsSame();
    return PageShelf::IsSameDocument();
}

}
