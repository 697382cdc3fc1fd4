// What works on an engine's document and its annotations alone.
//
// Threads: any.
#pragma once

#include <cstdint>
#include <memory>

#include "document/SaveSteps.h"
#include "document/engine/Annot.h"
#include "document/engine/PDFDoc.h"
#include "platform/concurrency/Task.h"

namespace velko::vkit {

class VXDocUtil {
public:
    VXDocUtil() = delete;

    // Writes the document into the file on a pool thread, step by step, to the end,
    // however that comes out. False without a document or a file, else true. Fails
    // with what the engine raises. `steps` is told of each step, and may end it.
    static concurrency::task<bool> SaveDocument(
        std::shared_ptr<velko::pdf::PDFDoc> pPdfDoc,
        std::shared_ptr<Windows::Storage::StorageFile> pFile, std::uint32_t nFlags,
        SaveSteps steps = SaveSteps());

    // The annotation as an object of its kind's class; of a kind without a class the
    // annotation itself. Raises `InvalidCastException` for no object and for one that is
    // no annotation, and what the class raises.
    template <class Object>
    static std::shared_ptr<velko::pdf::IAnnot> GetAnnotObject(
        const std::shared_ptr<Object>& pObject) {
        return Typed(std::dynamic_pointer_cast<velko::pdf::IAnnot>(pObject));
    }

private:
    static std::shared_ptr<velko::pdf::IAnnot> Typed(std::shared_ptr<velko::pdf::IAnnot> pAnnot);
};

}
