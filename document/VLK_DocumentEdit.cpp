// Changing the document, between two blocks of its renders.
#include <utility>

#include "document/VLK_Document.h"
#include "document/engine/AnnotEditor.h"
#include "platform/foundation/FirstFailure.h"

namespace velko::vkit {

using concurrency::critical_section;
using velko::common::EngineException;
using velko::common::ErrorCode;
using velko::pdf::IAnnotEditor;

concurrency::task<void> VLK_Document::EditAsync(std::function<void(IAnnotEditor&)> fnEdit) {
    return EditOnPool(EngineDoc(), std::move(fnEdit));
}

concurrency::task<void> VLK_Document::EditOnPool(PdfDocPtr pPdfDoc,
                                                 std::function<void(IAnnotEditor&)> fnEdit) {
    const auto pSelf = shared_from_this();
    co_await concurrency::resume_on(m_pEditQueue, m_Cancellation.get_token());
    auto* const pEditor = dynamic_cast<IAnnotEditor*>(pPdfDoc.get());
    if (pEditor == nullptr) {
        throw EngineException(ErrorCode::e_ErrUnsupported, "the engine edits no annotations");
    }
    Platform::FirstFailure failure;
    failure.Run([&] {
        const critical_section::scoped_lock lock(m_RenderLock);
        m_Cancellation.get_token().throw_if_canceled(); // closed while this waited
        fnEdit(*pEditor);
    });
    ForgetAnnotLists(); // what failed half way may have changed something too
    failure.Rethrow();
}

void VLK_Document::ForgetAnnotLists() {
    const critical_section::scoped_lock lock(*m_spPageLock);
    for (const auto& [nPageIndex, pEntry] : m_pPageMap) {
        pEntry->m_bAnnotsLoaded = false;
    }
}

}
