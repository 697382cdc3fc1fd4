// What a toolkit does for the dialogs of the system that stand above a window:
// questions with buttons, and the choice of a file to save into.
//
// `Xaml::Window::Dialogs` has the window's own; `MessageDialog` and
// `FileSavePicker` are what a program uses.
// Threads: UI thread only.
#pragma once

#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/concurrency/Task.h"

namespace Windows::UI {

// A dialog on the screen. Letting go of it, also in its own answer, takes it away;
// nothing is answered then.
class IShownDialog {
public:
    virtual ~IShownDialog() = default;
};

struct MessageRequest {
    std::string strTitle;
    std::string strContent;
    std::vector<std::string> labels; // of the buttons; at least one
    std::size_t nDefault = 0;        // the button of the Enter key
};

struct SaveRequest {
    struct FileType {
        std::string strName;
        std::vector<std::string> extensions; // with their dot, the usual one first
    };
    std::string strName; // suggested
    std::vector<FileType> types;
};

// Showing returns at once, and so never runs a loop of its own. The answer comes
// later, once at most, as a work of the UI thread's queue: the button's number, the
// path; empty when the reader gave up. The path ends with an extension of a type
// that was asked for when the reader typed none, and the reader has agreed to the
// replacing of a file that is there.
class IDialogs {
public:
    using MessageAnswer = std::function<void(std::optional<std::size_t>)>;
    using PathAnswer = std::function<void(std::optional<std::string>)>;

    virtual ~IDialogs() = default;
    virtual std::shared_ptr<IShownDialog> ShowMessage(const MessageRequest& request,
                                                      MessageAnswer fnAnswer) = 0;
    virtual std::shared_ptr<IShownDialog> ShowSavePicker(const SaveRequest& request,
                                                         PathAnswer fnAnswer) = 0;
};

// One dialog from its showing to its answer, for the classes that programs use. The
// task ends as cancelled when this goes first.
template <class Result>
class PendingDialog {
public:
    PendingDialog() : m_pState(std::make_shared<State>()) {}

    concurrency::task<Result> Answer() const { return m_pState->answered.get_task(); }

    // For the toolkit: `fnResult` makes the result of what it answers.
    template <class F>
    auto Teller(F fnResult) const {
        return [wkState = std::weak_ptr<State>(m_pState),
                fnResult = std::move(fnResult)](const auto& answer) {
            if (const auto pState = wkState.lock()) {
                pState->pShown.reset();
                try {
                    pState->answered.set(fnResult(answer));
                } catch (...) { // of the making of the result: who waits hears of it
                    pState->answered.set_exception(std::current_exception());
                }
            }
        };
    }

    // Keeps what was shown until the answer.
    void Keep(std::shared_ptr<IShownDialog> pShown) { m_pState->pShown = std::move(pShown); }

private:
    struct State {
        concurrency::task_completion_event<Result> answered;
        std::shared_ptr<IShownDialog> pShown;
    };

    std::shared_ptr<State> m_pState;
};

}
