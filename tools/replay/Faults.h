// Faults that a script orders: each strikes once, after a number of further
// calls of its kind.
//
// `EngineThrow` counts the engine's renders, `ReadError` reads from files (the
// store of settings is no such file). Threads: any.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace velko::replay {

enum class Fault { EngineThrow, ReadError };

class Faults {
public:
    // `nAfter` calls pass, the next one fails. Replaces an earlier order.
    void Arm(Fault eFault, std::int32_t nAfter);

    // To be asked at each call of the kind: true when this is the one to fail.
    bool Strikes(Fault eFault);

private:
    static constexpr std::int64_t kUnarmed = -1;

    std::array<std::atomic<std::int64_t>, 2> m_remaining{kUnarmed, kUnarmed};
};

}
