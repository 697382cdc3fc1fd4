// The dialogs of a window as a test answers them.
//
//     pWindow->Dialogs(pDialogs);
//     ... the code under test asks ...
//     EXPECT_EQ(pDialogs->Messages().back().strTitle, "Save");
//     pDialogs->Choose(0);
//
// Threads: UI thread only.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/ui/Dialogs.h"

namespace Platform::Fake {

class FakeDialogs final : public Windows::UI::IDialogs {
public:
    std::shared_ptr<Windows::UI::IShownDialog> ShowMessage(
        const Windows::UI::MessageRequest& request, MessageAnswer fnAnswer) override;
    std::shared_ptr<Windows::UI::IShownDialog> ShowSavePicker(
        const Windows::UI::SaveRequest& request, PathAnswer fnAnswer) override;

    // All that were shown so far.
    const std::vector<Windows::UI::MessageRequest>& Messages() const { return m_messages; }
    const std::vector<Windows::UI::SaveRequest>& Pickers() const { return m_pickers; }
    bool IsMessageShown() const { return !m_wkMessage.expired(); }
    bool IsPickerShown() const { return !m_wkPicker.expired(); }

    // The reader answers what is shown; without a value gives up. Raises
    // `std::logic_error` when nothing is shown.
    void Choose(std::optional<std::size_t> nButton);
    void Pick(const std::optional<std::string>& strPath);

private:
    std::vector<Windows::UI::MessageRequest> m_messages;
    std::vector<Windows::UI::SaveRequest> m_pickers;
    MessageAnswer m_fnMessage;
    PathAnswer m_fnPath;
    std::weak_ptr<Windows::UI::IShownDialog> m_wkMessage;
    std::weak_ptr<Windows::UI::IShownDialog> m_wkPicker;
};

}
