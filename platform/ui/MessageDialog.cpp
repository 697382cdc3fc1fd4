#include "platform/ui/MessageDialog.h"

#include <utility>

#include "platform/ui/Window.h"

namespace Windows::UI::Popups {

MessageDialog::MessageDialog(std::string strContent, std::string strTitle)
    : m_strContent(std::move(strContent)), m_strTitle(std::move(strTitle)) {}

Foundation::AsyncOperation<MessageDialog::CommandPtr> MessageDialog::ShowAsync() {
    if (Commands.empty()) {
        throw Platform::InvalidArgumentException("a question without an answer");
    }
    MessageRequest request{m_strTitle, m_strContent, {}, DefaultCommandIndex};
    for (const CommandPtr& pCommand : Commands) {
        request.labels.push_back(pCommand->Label);
    }
    IDialogs& dialogs = Xaml::Window::CurrentDialogs();
    auto& pending = m_pending.emplace();
    const auto task = pending.Answer();
    const auto fnChosen = [commands = Commands](const std::optional<std::size_t>& nChosen) {
        return nChosen ? commands.at(*nChosen) : nullptr;
    };
    pending.Keep(dialogs.ShowMessage(request, pending.Teller(fnChosen)));
    return task;
}

}
