// A list of subscribers with tokens: the shape of every event in this system.
//
// Threads: `add`, `remove` and `raise` from any thread; one leaf lock guards
// the list and is never held while a subscriber runs. A raise calls the
// subscribers that were there when it began, in the order of subscription, on
// the raising thread; an exception of a subscriber goes to whoever raised.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace Windows::Foundation {

struct EventRegistrationToken {
    std::int64_t Value = 0;
};

template <class... Args>
class Event {
public:
    using Handler = std::function<void(Args...)>;

    EventRegistrationToken add(Handler fnHandler) {
        const std::lock_guard<std::mutex> lock(m_lock);
        auto pNew = std::make_shared<List>(*m_pHandlers);
        const std::int64_t nToken = ++m_nLastToken;
        pNew->emplace_back(nToken, std::move(fnHandler));
        m_pHandlers = std::move(pNew);
        return {nToken};
    }

    void remove(EventRegistrationToken token) {
        std::shared_ptr<const List> pOld; // goes after the lock: what a handler owns may call here
        const std::lock_guard<std::mutex> lock(m_lock);
        auto pNew = std::make_shared<List>(*m_pHandlers);
        std::erase_if(*pNew, [&](const auto& entry) { return entry.first == token.Value; });
        pOld = std::exchange(m_pHandlers, std::move(pNew));
    }

    void raise(Args... args) const {
        const std::shared_ptr<const List> pSnapshot = Snapshot();
        for (const auto& [nToken, fnHandler] : *pSnapshot) {
            fnHandler(args...);
        }
    }

    // The subscribers at this moment; for a raise that treats failures of its own.
    using List = std::vector<std::pair<std::int64_t, Handler>>;
    std::shared_ptr<const List> Snapshot() const {
        const std::lock_guard<std::mutex> lock(m_lock);
        return m_pHandlers;
    }

    bool empty() const { return Snapshot()->empty(); }

private:
    mutable std::mutex m_lock;
    std::int64_t m_nLastToken = 0;
    std::shared_ptr<const List> m_pHandlers = std::make_shared<const List>();
};

}
