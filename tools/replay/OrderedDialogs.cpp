#include "tools/replay/OrderedDialogs.h"

#include <utility>

#include "platform/system/Environment.h"
#include "platform/ui/CoreDispatcher.h"

namespace velko::replay {

namespace {

class Shown final : public Windows::UI::IShownDialog {};

// Answers as a work of the UI thread's queue, unless the dialog has gone by then.
template <class Answer, class Result>
std::shared_ptr<Windows::UI::IShownDialog> AnswerLater(Answer fnAnswer, Result result) {
    auto pShown = std::make_shared<Shown>();
    Platform::Environment()->MainDispatcher()->RunAsync(
        Windows::UI::Core::CoreDispatcherPriority::normal,
        [wkShown = std::weak_ptr<Shown>(pShown), fnAnswer = std::move(fnAnswer),
         result = std::move(result)] {
            if (const auto pStillShown = wkShown.lock()) {
                fnAnswer(result);
            }
        });
    return pShown;
}

}

void OrderedDialogs::Answer(std::optional<std::size_t> nButton,
                            std::optional<std::string> strPath) {
    m_nButton = nButton;
    m_strPath = std::move(strPath);
}

std::shared_ptr<Windows::UI::IShownDialog> OrderedDialogs::ShowMessage(
    const Windows::UI::MessageRequest& request, MessageAnswer fnAnswer) {
    ++m_nAsked;
    const bool bHasButton = m_nButton && *m_nButton < request.labels.size();
    return AnswerLater(std::move(fnAnswer), bHasButton ? m_nButton : std::nullopt);
}

std::shared_ptr<Windows::UI::IShownDialog> OrderedDialogs::ShowSavePicker(
    const Windows::UI::SaveRequest&, PathAnswer fnAnswer) {
    ++m_nAsked;
    return AnswerLater(std::move(fnAnswer), m_strPath);
}

}
