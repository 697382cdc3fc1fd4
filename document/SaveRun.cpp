#include "document/SaveRun_p.h"
#include "document/engine/SaveProgress.h"

namespace velko::vkit::detail {

using velko::common::ISaveProgress;
using velko::common::Progressive;

namespace {

void Tell(const SaveSteps& steps, const ISaveProgress* pProgress) {
    if (pProgress != nullptr && steps.fnShare) {
        steps.fnShare(pProgress->Share());
    }
}

}

std::int32_t RunSave(velko::pdf::PDFDoc& pdfDoc,
                     const std::shared_ptr<Windows::Storage::StorageFile>& pFile,
                     std::uint32_t nFlags, const SaveSteps& steps) {
    steps.token.throw_if_canceled();
    const std::shared_ptr<Progressive> pSave = pdfDoc.StartSaveAs(pFile, nFlags, nullptr);
    if (!pSave) {
        return Progressive::kFinished;
    }
    const auto* const pProgress = dynamic_cast<const ISaveProgress*>(pSave.get());
    for (;;) {
        steps.token.throw_if_canceled();
        const std::int32_t nState = pSave->Continue();
        Tell(steps, pProgress);
        if (nState != Progressive::kToBeContinued) {
            return nState;
        }
    }
}

}
