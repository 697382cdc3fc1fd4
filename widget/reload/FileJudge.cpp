#include "widget/reload/FileJudge.h"

#include <limits>
#include <utility>

#include "document/engine/ErrorCode.h"
#include "document/engine/HostServices.h"
#include "document/engine/PDFDoc.h"
#include "platform/storage/StorageFile.h"
#include "widget/reload/AsideDocument.h"
#include "widget/reload/OpenedFile.h"

namespace velko::vkit {

using velko::common::ErrorCode;
using Windows::Storage::StorageFile;
using Kind = JudgedFile::Kind;
using FilePtr = std::shared_ptr<StorageFile>;

namespace {

Kind KindOf(velko::pdf::PDFDoc& document, ErrorCode eCode) {
    if (eCode == ErrorCode::e_ErrFile || eCode == ErrorCode::e_ErrConflict) {
        return Kind::Unread;
    }
    if (eCode == ErrorCode::e_ErrPassword) {
        return Kind::Locked;
    }
    if (eCode != ErrorCode::e_ErrSuccess || document.GetPageCount() == 0) {
        return Kind::Broken;
    }
    const auto* const pRepair = dynamic_cast<const velko::pdf::IRepair*>(&document);
    return pRepair != nullptr && pRepair->WasRepaired() ? Kind::Repaired : Kind::Good;
}

Kind Judge(const FilePtr& pPinned, std::int32_t nSize, const Platform::SecretText& password) {
    try {
        AsideDocument aside(pPinned, nSize);
        const ErrorCode eCode = aside.Load(password);
        return KindOf(*aside.Document(), eCode);
    } catch (...) { // what the engine cannot bear is as bad for the control
        return Kind::Broken;
    }
}

}

concurrency::task<JudgedFile> JudgeFile(FilePath path, Platform::SecretText password) {
    JudgedFile judged;
    const auto pinning = concurrency::create_task(
        [path] { return StorageFile::FromPath(path.Bytes())->PinForReading(); });
    const FilePtr pPinned = co_await pinning;
    const auto asking = pPinned->GetVersionAsync().AsTask();
    co_await asking.settled();
    asking.mark_observed();
    if (!asking.is_value()) {
        co_return judged;
    }
    judged.version = asking.get();
    if (judged.version.Size > std::numeric_limits<std::int32_t>::max()) {
        judged.eKind = Kind::Broken;
        co_return judged;
    }
    const auto nSize = static_cast<std::int32_t>(judged.version.Size);
    const auto judging = concurrency::create_task(
        [pPinned, nSize, password] { return Judge(pPinned, nSize, password); });
    judged.eKind = co_await judging;
    if (judged.eKind != Kind::Broken && judged.eKind != Kind::Unread) {
        judged.pFile = std::make_shared<OpenedFile>(pPinned);
    }
    co_return judged;
}

}
