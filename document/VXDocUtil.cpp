#include "document/VXDocUtil.h"

#include <utility>

#include "document/SaveRun_p.h"
#include "document/engine/AnnotClasses.h"
#include "platform/foundation/Exception.h"

namespace velko::vkit {

using Windows::Storage::StorageFile;

concurrency::task<bool> VXDocUtil::SaveDocument(std::shared_ptr<velko::pdf::PDFDoc> pPdfDoc,
                                                std::shared_ptr<StorageFile> pFile,
                                                std::uint32_t nFlags, SaveSteps steps) {
    co_await concurrency::resume_background(steps.token);
    if (!pPdfDoc || !pFile) {
        co_return false;
    }
    detail::RunSave(*pPdfDoc, pFile, nFlags, steps);
    co_return true;
}

std::shared_ptr<velko::pdf::IAnnot> VXDocUtil::Typed(std::shared_ptr<velko::pdf::IAnnot> pAnnot) {
    if (!pAnnot) {
        throw Platform::InvalidCastException("the object is no annotation");
    }
    const char* const szClass = velko::pdf::AnnotClassOf(pAnnot->GetType());
    if (szClass == nullptr) {
        return pAnnot;
    }
    return Platform::GetActivationFactory<velko::pdf::IAnnotFactory>(szClass)->Create(
        std::move(pAnnot));
}

}
