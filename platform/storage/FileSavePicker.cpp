#include "platform/storage/FileSavePicker.h"

#include "platform/ui/Window.h"

namespace Windows::Storage::Pickers {

Foundation::AsyncOperation<FileSavePicker::FilePtr> FileSavePicker::PickSaveFileAsync() {
    UI::SaveRequest request;
    request.strName = SuggestedFileName;
    for (const auto& [strName, extensions] : FileTypeChoices) {
        request.types.push_back({strName, extensions});
    }
    UI::IDialogs& dialogs = UI::Xaml::Window::CurrentDialogs();
    auto& pending = m_pending.emplace();
    const auto task = pending.Answer();
    const auto fnFile = [](const std::optional<std::string>& strPath) {
        return strPath ? StorageFile::FromPath(*strPath) : nullptr;
    };
    pending.Keep(dialogs.ShowSavePicker(request, pending.Teller(fnFile)));
    return task;
}

}
