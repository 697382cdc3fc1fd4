// An engine's save from its start to its last step.
#pragma once

#include <cstdint>
#include <memory>

#include "document/SaveSteps.h"
#include "document/engine/PDFDoc.h"

namespace velko::vkit::detail {

// On the calling thread, which is no UI thread. Gives the engine's last answer,
// `kFinished` too where it has nothing to do. Raises what the engine raises, and
// `task_canceled`.
std::int32_t RunSave(velko::pdf::PDFDoc& pdfDoc,
                     const std::shared_ptr<Windows::Storage::StorageFile>& pFile,
                     std::uint32_t nFlags, const SaveSteps& steps);

}
