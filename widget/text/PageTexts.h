// The text with its places of the shown document's pages.
//
// Threads: UI thread only. Errors: a page whose text cannot be read has none.
#pragma once

#include "document/engine/PageText.h"
#include "widget/PageShelf.h"

namespace velko::vkit {

class PageTexts : public PageShelf<std::shared_ptr<const velko::pdf::PageText>> {
    Q_OBJECT

public:
    explicit PageTexts(PDFViewCtrl& control);

    // Empty while it is read.
    std::shared_ptr<const velko::pdf::PageText> TextOf(std::int32_t nPage);

signals:
    void Read(int nPage);

protected:
    void OnRead(std::int32_t nPage) override { emit Read(nPage); }
};

}
