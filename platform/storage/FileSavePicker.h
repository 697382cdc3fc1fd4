// Lets the reader choose the file to save into, above the current window.
//
// Threads: UI thread only. Lifetime: shown once; `Close`, or letting go of it, takes
// it away, and its operation ends as cancelled.
// Errors: `PickSaveFileAsync` raises `NullReferenceException` where no window can
// show it.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/AsyncOperation.h"
#include "platform/storage/StorageFile.h"
#include "platform/ui/Dialogs.h"

namespace Windows::Storage::Pickers {

enum class PickerLocationId { DocumentsLibrary = 0 };

class FileSavePicker {
public:
    using FilePtr = std::shared_ptr<StorageFile>;

    FileSavePicker() = default;
    FileSavePicker(const FileSavePicker&) = delete;
    FileSavePicker& operator=(const FileSavePicker&) = delete;

    PickerLocationId SuggestedStartLocation = PickerLocationId::DocumentsLibrary;
    std::map<std::string, std::vector<std::string>> FileTypeChoices; // extensions with their dot
    std::string SuggestedFileName;

    // Ends with the file of the chosen path, whether or not it is there; empty when the
    // reader gave up. Makes no file.
    Foundation::AsyncOperation<FilePtr> PickSaveFileAsync();
    void Close() { m_pending.reset(); }

private:
    std::optional<UI::PendingDialog<FilePtr>> m_pending;
};

}
