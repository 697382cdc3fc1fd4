// The dialogs of the window, answered by the script.
//
// Threads: the UI thread.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "platform/ui/Dialogs.h"

namespace velko::replay {

class OrderedDialogs final : public Windows::UI::IDialogs {
public:
    // What is answered from now on: the button of a question and the path of a file;
    // empty for a reader who gives up, which is what is answered at first.
    void Answer(std::optional<std::size_t> nButton, std::optional<std::string> strPath);

    int Asked() const { return m_nAsked; } // dialogs shown so far

    std::shared_ptr<Windows::UI::IShownDialog> ShowMessage(
        const Windows::UI::MessageRequest& request, MessageAnswer fnAnswer) override;
    std::shared_ptr<Windows::UI::IShownDialog> ShowSavePicker(
        const Windows::UI::SaveRequest& request, PathAnswer fnAnswer) override;

private:
    std::optional<std::size_t> m_nButton;
    std::optional<std::string> m_strPath;
    int m_nAsked = 0;
};

}
