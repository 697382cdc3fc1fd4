// Carries out steps that must all run although one of them fails, and raises
// the first failure at the end.
//
// Threads: one at a time.
#pragma once

#include <exception>
#include <utility>

namespace Platform {

class FirstFailure {
public:
    template <class F>
    void Run(F&& fnStep) {
        try {
            std::forward<F>(fnStep)();
        } catch (...) {
            if (!m_pFirst) {
                m_pFirst = std::current_exception();
            }
        }
    }

    void Rethrow() const {
        if (m_pFirst) {
            std::rethrow_exception(m_pFirst);
        }
    }

private:
    std::exception_ptr m_pFirst;
};

}
