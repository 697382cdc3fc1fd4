#include "widget/edit/SaveFailure.h"

#include "document/engine/ErrorCode.h"
#include "platform/foundation/Exception.h"
#include "platform/storage/FileChangedException.h"
#include "widget/OpenFailure.h"

namespace velko::vkit {

using velko::common::ErrorCode;

namespace {

SaveFailure OfEngine(ErrorCode eCode) {
    if (eCode == ErrorCode::e_ErrConflict) {
        return {SaveTrouble::Changed,
                QStringLiteral("Another program has changed the file since it was opened.")};
    }
    if (eCode == ErrorCode::e_ErrOutOfMemory) {
        return {SaveTrouble::Other,
                QStringLiteral("There is not enough memory: close other programs and save again.")};
    }
    if (eCode == ErrorCode::e_ErrUnsupported) {
        return {SaveTrouble::Other, QStringLiteral("Documents of this kind cannot be saved here.")};
    }
    return {SaveTrouble::Other,
            QStringLiteral("What was written could not be read back as this document, so the file "
                           "was left as it was. Save to another file or disk.")};
}

}

SaveFailure ToSaveFailure(const std::exception_ptr& pError) {
    try {
        std::rethrow_exception(pError);
    } catch (const Platform::FileChangedException&) {
        return OfEngine(ErrorCode::e_ErrConflict);
    } catch (const velko::common::EngineException& failure) {
        return OfEngine(failure.Code());
    } catch (const BadSaveException&) {
        return OfEngine(ErrorCode::e_ErrFormat);
    } catch (const Platform::AccessDeniedException&) {
        return {SaveTrouble::ReadOnly,
                QStringLiteral("You may not write to this file or to its folder.")};
    } catch (const Platform::DiskFullException&) {
        return {SaveTrouble::Other,
                QStringLiteral("The disk is full: delete what you do not need and save again, or "
                               "save to another disk.")};
    } catch (const Platform::FileNotFoundException&) {
        return {SaveTrouble::Other,
                QStringLiteral("Its folder is not there any more: save to another one.")};
    } catch (const Platform::WriteFaultException&) {
        return {SaveTrouble::Other,
                QStringLiteral("Writing failed: see whether the disk is connected and save again, "
                               "or save to another disk.")};
    } catch (const Platform::ReadFaultException&) {
        return {SaveTrouble::Other,
                QStringLiteral("The document could not be read to its end: see whether its disk "
                               "is connected and save again.")};
    } catch (...) {
        return {SaveTrouble::Other, ReasonOf(pError)};
    }
}

}
