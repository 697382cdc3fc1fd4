// Lets an object or a native handle travel where only objects are taken.
//
// A handle travels as a boxed 64-bit value
// (`Windows::Foundation::PropertyValue`). Threads: one at a time.
#pragma once

#include <memory>
#include <utility>

namespace velko::vkit {

class VelkoPointerWrapObj {
public:
    const std::shared_ptr<void>& Target() const { return m_pTarget; }
    void Target(std::shared_ptr<void> pTarget) { m_pTarget = std::move(pTarget); }

private:
    std::shared_ptr<void> m_pTarget;
};

}
