// Reads the text of pages from a file of its own, beside the document's lock.
//
// What the cache of pages holds is used where it lies; nothing is put there.
// Threads: any but the UI thread. Its lock spans what the document's spans: the
// opening of the file, and the interpreting of a page.
#pragma once

#include <memory>

#include "document/engine/PageText.h"
#include "engines/mupdf/Document.h"

namespace velko::engines::mupdf::text {

class TextReader final : public pdf::ITextReader {
public:
    TextReader(std::shared_ptr<Document> pDocument, Operation::AbortFlag pAbort)
        : m_pDocument(std::move(pDocument)), m_pAbort(std::move(pAbort)) {}

    std::shared_ptr<const pdf::PageText> Read(std::int32_t nPageIndex) override;

private:
    std::shared_ptr<const Drawing> ContentOf(std::int32_t nPage);
    std::shared_ptr<OpenedFile> UsableFile() VLK_REQUIRES(m_lock);

    const std::shared_ptr<Document> m_pDocument;
    const Operation::AbortFlag m_pAbort;
    concurrency::critical_section m_lock;
    std::shared_ptr<OpenedFile> m_pFile VLK_GUARDED_BY(m_lock); // when first needed
};

}
