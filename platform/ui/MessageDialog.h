// A question with buttons, above the current window.
//
// Units: none. Threads: UI thread only. Lifetime: shown once; `Close`, or letting go
// of it, takes it away, and its operation ends as cancelled.
// Errors: `ShowAsync` raises `NullReferenceException` where no window can show it,
// and `InvalidArgumentException` without a command.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/AsyncOperation.h"
#include "platform/foundation/PropertyValue.h"
#include "platform/ui/Dialogs.h"

namespace Windows::UI::Popups {

struct UICommand {
    std::string Label;
    Foundation::PropertyValue Id;
};

class MessageDialog {
public:
    using CommandPtr = std::shared_ptr<const UICommand>;

    explicit MessageDialog(std::string strContent, std::string strTitle = {});
    MessageDialog(const MessageDialog&) = delete;
    MessageDialog& operator=(const MessageDialog&) = delete;

    std::vector<CommandPtr> Commands; // the buttons, in their order
    std::uint32_t DefaultCommandIndex = 0;

    // Ends with the command that was chosen; empty when the reader chose none.
    Foundation::AsyncOperation<CommandPtr> ShowAsync();
    void Close() { m_pending.reset(); }

private:
    const std::string m_strContent;
    const std::string m_strTitle;
    std::optional<PendingDialog<CommandPtr>> m_pending;
};

}
