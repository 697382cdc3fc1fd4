#include "engines/mupdf/Register.h"

#include <memory>
#include <utility>

#include "document/engine/PDFDoc.h"
#include "engines/mupdf/Document.h"
#include "engines/mupdf/PageRenderer.h"
#include "engines/mupdf/PixelBitmap.h"
#include "engines/mupdf/edit/TypedAnnot.h"
#include "engines/mupdf/reflow/ReflowedPage.h"

namespace velko::engines::mupdf {

namespace {

using common::EngineException;
using common::ErrorCode;

class DocumentFactory final : public pdf::IPDFDocFactory {
public:
    std::shared_ptr<pdf::PDFDoc> Create(
        std::shared_ptr<common::vxbase::IFileReaderCallback> pReader) override {
        if (!pReader) {
            throw EngineException(ErrorCode::e_ErrParam, "no reader for the document");
        }
        return std::make_shared<Document>(std::move(pReader));
    }
};

}

void RegisterEngine() {
    Platform::RegisterActivationFactory(pdf::kPDFDocClass, std::make_shared<DocumentFactory>());
    Platform::RegisterActivationFactory(pdf::kReflowPageClass,
                                        std::make_shared<reflow::ReflowedPageFactory>());
    Platform::RegisterActivationFactory(common::kBitmapClass,
                                        std::make_shared<PixelBitmapFactory>());
    Platform::RegisterActivationFactory(common::kRendererClass,
                                        std::make_shared<PageRendererFactory>());
    RegisterAnnotClasses();
}

}
