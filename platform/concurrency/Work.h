// A unit of work: a move-only `void()` callable.
//
// Unlike `std::function` it may own what cannot be copied, such as a suspended
// coroutine. A work that is destroyed without having run gives up what it owns.
#pragma once

#include <memory>
#include <type_traits>
#include <utility>

namespace concurrency {

class work {
public:
    work() = default;

    template <class F, class = std::enable_if_t<!std::is_same_v<std::decay_t<F>, work>>>
    work(F&& fnBody) // NOLINT(google-explicit-constructor): a callable is a work
        : m_pBody(std::make_unique<model<std::decay_t<F>>>(std::forward<F>(fnBody))) {}

    void operator()() { m_pBody->run(); }
    explicit operator bool() const { return m_pBody != nullptr; }

private:
    struct concept_t {
        virtual ~concept_t() = default;
        virtual void run() = 0;
    };
    template <class F>
    struct model final : concept_t {
        template <class G>
        explicit model(G&& fnBody) : m_fnBody(std::forward<G>(fnBody)) {}
        void run() override { m_fnBody(); }
        F m_fnBody;
    };

    std::unique_ptr<concept_t> m_pBody;
};

}
