// Counts a render in flight in its page's entry, until it is gone.
//
// Threads: made on the UI thread, goes on any.
#pragma once

#include <memory>
#include <utility>

#include "document/VLK_Document.h"

namespace velko::vkit {

class PageUse {
public:
    PageUse(std::shared_ptr<VLK_Document> pDocument, std::shared_ptr<WPPDFPage> pEntry)
        : m_pDocument(std::move(pDocument)), m_pEntry(std::move(pEntry)) {
        m_pDocument->AddPageUse(m_pEntry, 1);
    }
    ~PageUse() { m_pDocument->AddPageUse(m_pEntry, -1); }
    PageUse(const PageUse&) = delete;
    PageUse& operator=(const PageUse&) = delete;

private:
    const std::shared_ptr<VLK_Document> m_pDocument;
    const std::shared_ptr<WPPDFPage> m_pEntry;
};

}
