// Where the failures of handlers go when whoever called them is not to hear of
// them: to the one who listens, or to the log while nobody does.
//
// Lifetime: a step may take the sink away; what it fails with then is told nobody.
// Threads: one at a time. Errors: what the listener throws passes through.
#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <utility>

namespace Platform {

class FailureSink {
public:
    using Listener = std::function<void(const std::exception_ptr&)>;

    // `szPlace` is what the log calls the steps, and lives as long as the program:
    // "a handler of input".
    explicit FailureSink(const char* szPlace);

    void Listen(Listener fnTell) { m_pState->fnTell = std::move(fnTell); } // empty: the log

    template <class F>
    void Run(F&& fnStep) const {
        const std::weak_ptr<const State> wkState = m_pState;
        try {
            std::forward<F>(fnStep)();
        } catch (...) {
            if (const auto pState = wkState.lock()) {
                Tell(*pState, std::current_exception());
            }
        }
    }

    void Tell(const std::exception_ptr& pFailure) const { Tell(*m_pState, pFailure); }

private:
    struct State {
        const char* szPlace;
        Listener fnTell;
    };
    static void Tell(const State& state, const std::exception_ptr& pFailure);

    std::shared_ptr<State> m_pState;
};

}
