// The text with its places of the shown document's pages, as the pages are shown: on the
// pages themselves or set anew. A page's characters have the same indexes in both.
//
// Threads: UI thread only. Errors: a page whose text cannot be read has none.
#pragma once

#include <memory>

#include "document/engine/PageText.h"
#include "widget/PageShelf.h"

namespace velko::vkit {

// A page's text in one of its two forms.
struct PlacedText {
    std::shared_ptr<const velko::pdf::PageText> pText; // empty for a page without
    std::uint64_t nSet = 0;                            // what it is set for; 0 on its page
};

// As it stands on the page itself, or set anew. Any thread but the UI thread; raises what
// the engine's document raises.
PlacedText ReadPlacedText(const std::shared_ptr<velko::pdf::PDFDoc>& pDocument, std::int32_t nPage,
                          bool bSet);

class PageTexts : public PageShelf<PlacedText> {
    Q_OBJECT

public:
    using TextPtr = std::shared_ptr<const velko::pdf::PageText>;

    explicit PageTexts(PDFViewCtrl& control);
    ~PageTexts() override;

    // With the places at which the page is shown now; empty while it is read. While text
    // is set for another size, the places from before stand in.
    TextPtr TextOf(std::int32_t nPage);
    // The same of what is there by now; nothing is read for it.
    TextPtr Known(std::int32_t nPage) const;

    // As it stands on the page itself, with its lines and hyphens, whatever is shown.
    TextPtr OwnTextOf(std::int32_t nPage);

    // As `PageShelf`, of both forms.
    bool IsSameDocument();

signals:
    void Read(int nPage); // one of its forms

protected:
    void OnRead(std::int32_t nPage) override { emit Read(nPage); }

private:
    class SetTexts;

    const std::unique_ptr<SetTexts> m_pSet;
};

}
