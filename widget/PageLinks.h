// The links of the shown document's pages.
//
// Threads: UI thread only. Errors: a page whose links cannot be read has none.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "document/engine/HostServices.h"
#include "widget/PageShelf.h"

namespace velko::vkit {

class PageLinks : public PageShelf<std::vector<velko::pdf::LinkRecord>> {
    Q_OBJECT

public:
    using Link = velko::pdf::LinkRecord;
    using Links = std::vector<Link>;

    explicit PageLinks(PDFViewCtrl& control);

    // None over text that is set anew.
    std::shared_ptr<const Links> Find(std::int32_t nPage);

signals:
    void Read(int nPage);

protected:
    void OnRead(std::int32_t nPage) override { emit Read(nPage); }
};

}
