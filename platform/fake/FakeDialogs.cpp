#include "platform/fake/FakeDialogs.h"

#include <stdexcept>
#include <utility>

namespace Platform::Fake {

using Windows::UI::IShownDialog;

namespace {

class Shown final : public IShownDialog {};

void CheckShown(bool bShown) {
    if (!bShown) {
        throw std::logic_error("no such dialog is shown");
    }
}

}

std::shared_ptr<IShownDialog> FakeDialogs::ShowMessage(const Windows::UI::MessageRequest& request,
                                                       MessageAnswer fnAnswer) {
    auto pShown = std::make_shared<Shown>();
    m_messages.push_back(request);
    m_fnMessage = std::move(fnAnswer);
    m_wkMessage = pShown;
    return pShown;
}

std::shared_ptr<IShownDialog> FakeDialogs::ShowSavePicker(const Windows::UI::SaveRequest& request,
                                                          PathAnswer fnAnswer) {
    auto pShown = std::make_shared<Shown>();
    m_pickers.push_back(request);
    m_fnPath = std::move(fnAnswer);
    m_wkPicker = pShown;
    return pShown;
}

void FakeDialogs::Choose(std::optional<std::size_t> nButton) {
    CheckShown(IsMessageShown());
    std::exchange(m_fnMessage, nullptr)(nButton);
}

void FakeDialogs::Pick(const std::optional<std::string>& strPath) {
    CheckShown(IsPickerShown());
    std::exchange(m_fnPath, nullptr)(strPath);
}

}
