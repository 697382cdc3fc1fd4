#include "engines/mupdf/Register.h"

#include <memory>
#include <utility>

#include "document/engine/PDFDoc.h"
#include "document/engine/ReflowPage.h"
#include "engines/mupdf/Document.h"
#include "engines/mupdf/PageRenderer.h"
#include "engines/mupdf/PixelBitmap.h"

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

class ReflowPageFactory final : public pdf::IReflowPageFactory {
public:
    std::shared_ptr<pdf::ReflowPage> Create(std::shared_ptr<pdf::PDFPage>) override {
        throw EngineException(ErrorCode::e_ErrUnsupported, "this engine does not reflow pages");
    }
};

}

void RegisterEngine() {
    Platform::RegisterActivationFactory(pdf::kPDFDocClass, std::make_shared<DocumentFactory>());
    Platform::RegisterActivationFactory(pdf::kReflowPageClass,
                                        std::make_shared<ReflowPageFactory>());
    Platform::RegisterActivationFactory(common::kBitmapClass,
                                        std::make_shared<PixelBitmapFactory>());
    Platform::RegisterActivationFactory(common::kRendererClass,
                                        std::make_shared<PageRendererFactory>());
}

}
