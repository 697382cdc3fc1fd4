// What becomes of pages that cannot be shown.
#include <new>
#include <utility>

#include "document/VLK_Document.h"
#include "platform/foundation/Describe.h"
#include "platform/foundation/Exception.h"
#include "platform/storage/FileChangedException.h"
#include "platform/system/Environment.h"
#include "platform/ui/CoreDispatcher.h"

namespace velko::vkit {

using velko::common::ErrorCode;

namespace {

ErrorCode CodeOf(const std::exception_ptr& pError) {
    try {
        std::rethrow_exception(pError);
    } catch (const velko::common::EngineException& error) {
        return error.Code();
    } catch (const Platform::FileChangedException&) {
        return ErrorCode::e_ErrConflict;
    } catch (const Platform::OutOfMemoryException&) {
        return ErrorCode::e_ErrOutOfMemory;
    } catch (const std::bad_alloc&) {
        return ErrorCode::e_ErrOutOfMemory;
    } catch (...) {
        return ErrorCode::e_ErrUnknown;
    }
}

bool IsCancelled(const std::exception_ptr& pError) {
    try {
        std::rethrow_exception(pError);
    } catch (const concurrency::task_canceled&) {
        return true;
    } catch (...) {
        return false;
    }
}

}

// Raises `task_canceled` for what failed because the document was closed
// meanwhile, which is nobody's failure.
void VLK_Document::NoteFailure(const PageFailures::Part& part, std::int32_t nPageIndex,
                               const std::exception_ptr& pError) {
    if (m_bDisposed) {
        throw concurrency::task_canceled();
    }
    if (IsCancelled(pError) || !IsPageIndex(nPageIndex)) {
        return;
    }
    if (m_failures.Note(part, {nPageIndex, CodeOf(pError), Platform::Describe(pError)})) {
        TellPageFailure(nPageIndex);
    }
}

void VLK_Document::NoteCutShort(const PageFailures::Part& part, std::int32_t nPageIndex) {
    if (m_failures.Note(part, {nPageIndex, ErrorCode::e_ErrDataNotReady,
                               "the page was cut short: it takes too long"})) {
        TellPageFailure(nPageIndex);
    }
}

void VLK_Document::NoteSuccess(const PageFailures::Part& part, std::int32_t nPageIndex) {
    if (m_failures.Heal(nPageIndex, part)) {
        TellPageFailure(nPageIndex);
    }
}

void VLK_Document::TellPageFailure(std::int32_t nPageIndex) {
    if (!Owner()) {
        return;
    }
    const auto fnTell = [wkSelf = weak_from_this(), nPageIndex] {
        const auto pSelf = wkSelf.lock();
        const auto pOwner = pSelf ? pSelf->Owner() : nullptr; // none once it is closed
        if (pOwner) {
            pOwner->RaisePageFailure(nPageIndex);
        }
    };
    Platform::Environment()->MainDispatcher()->RunAsync(
        Windows::UI::Core::CoreDispatcherPriority::normal, fnTell);
}

}
