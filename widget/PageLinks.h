// The links of the shown document's pages, read on the task pool when they are
// first asked for.
//
// Threads: UI thread only. Errors: a page whose links cannot be read has none.
#pragma once

#include <QObject>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "document/engine/HostServices.h"

namespace velko::pdf {
class PDFDoc;
}

namespace velko::vkit {

class PDFViewCtrl;

class PageLinks : public QObject {
    Q_OBJECT

public:
    using Link = velko::pdf::LinkRecord;
    using Links = std::vector<Link>;

    explicit PageLinks(PDFViewCtrl& control) : m_control(control) {}

    // None over text that is set anew. Empty while they are read, which begins here at the latest;
    // `Read` tells of the end. What it gives stays as it is, whatever is forgotten here.
    std::shared_ptr<const Links> Find(std::int32_t nPage);

    // False when the control shows another document than at the call before; what
    // was known is forgotten then.
    bool IsSameDocument();
    std::shared_ptr<velko::pdf::PDFDoc> Document() const { return m_wkDocument.lock(); }

signals:
    void Read(int nPage);

private:
    void Begin(std::int32_t nPage);
    void OnRead(const std::weak_ptr<velko::pdf::PDFDoc>& wkDocument, std::int32_t nPage,
                Links links);

    PDFViewCtrl& m_control;
    std::weak_ptr<velko::pdf::PDFDoc> m_wkDocument;               // whose links these are
    std::map<std::int32_t, std::shared_ptr<const Links>> m_links; // empty while they are read
};

}
