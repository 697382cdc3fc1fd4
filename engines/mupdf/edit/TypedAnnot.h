// The annotation classes by their kinds: one class serves all, with a factory for each.
//
// Threads: any.
#pragma once

#include <memory>

#include "document/engine/AnnotClasses.h"
#include "engines/mupdf/Page.h"

namespace velko::engines::mupdf {

class TypedAnnot final : public Annotation, public pdf::IAnnotDescription {
public:
    explicit TypedAnnot(const Annotation& generic) : Annotation(generic) {}
    pdf::ListedAnnot Describe() const override;
};

// Registers `pdf::kAnnotClasses`.
void RegisterAnnotClasses();

}
