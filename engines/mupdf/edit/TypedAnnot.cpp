#include "engines/mupdf/edit/TypedAnnot.h"

#include <utility>

#include "document/engine/ErrorCode.h"
#include "engines/mupdf/Document.h"

namespace velko::engines::mupdf {

using common::EngineException;
using common::ErrorCode;

namespace {

class TypedAnnotFactory final : public pdf::IAnnotFactory {
public:
    explicit TypedAnnotFactory(std::int32_t nType) : m_nType(nType) {}

    std::shared_ptr<pdf::IAnnot> Create(std::shared_ptr<pdf::IAnnot> pAnnot) override {
        const auto pOwn = std::dynamic_pointer_cast<Annotation>(pAnnot);
        if (!pOwn) {
            throw EngineException(ErrorCode::e_ErrParam, "not an annotation of this engine");
        }
        if (pOwn->GetType() != m_nType) {
            throw EngineException(ErrorCode::e_ErrInvalidType, "an annotation of another kind");
        }
        return std::make_shared<TypedAnnot>(*pOwn);
    }

private:
    const std::int32_t m_nType;
};

}

pdf::ListedAnnot TypedAnnot::Describe() const {
    for (pdf::ListedAnnot& annot : Owner()->Owner().ListAnnots(Owner()->GetIndex())) {
        if (annot.nId == Id()) {
            return std::move(annot);
        }
    }
    throw EngineException(ErrorCode::e_ErrNotFound, "the annotation is not on its page any more");
}

void RegisterAnnotClasses() {
    for (const pdf::AnnotClass& annotClass : pdf::kAnnotClasses) {
        Platform::RegisterActivationFactory(annotClass.szName,
                                            std::make_shared<TypedAnnotFactory>(annotClass.nType));
    }
}

}
