#include <utility>

#include "engines/mupdf/Document.h"
#include "engines/mupdf/save/SaveProgress.h"

namespace velko::engines::mupdf {

using common::EngineException;
using common::ErrorCode;

// Nothing is done yet that anybody might not want to wait for: the pause is not asked.
std::shared_ptr<common::Progressive> Document::StartSaveAs(
    std::shared_ptr<Windows::Storage::StorageFile> pFile, std::uint32_t nFlags,
    common::IPauseCallback*) {
    const auto pState = LoadedState();
    if (!pFile) {
        throw EngineException(ErrorCode::e_ErrParam, "no file to save into");
    }
    SaveOrder order;
    order.pDocument = shared_from_this();
    order.pReader = m_pReader;
    order.password = pState->password;
    order.nPages = pState->table.Count();
    order.edits = Edits().NetEntries();
    order.bUpdate = (nFlags & kIncremental) != 0;
    order.pFile = std::move(pFile);
    return std::make_shared<SaveProgress>(std::move(order));
}

}
