// Waits for what another thread will do, without guessing how long that takes.
#pragma once

#include <chrono>
#include <thread>

// False when the condition did not come true within half a minute.
template <class F>
bool Eventually(F fnCondition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!fnCondition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}
