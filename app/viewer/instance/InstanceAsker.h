// Asks the viewers that run already whether one of them shows a file, and has it show it.
//
// The question is put when this is made and costs nothing where nobody runs; the answer is
// waited for when it is needed, so that what the start has to do meanwhile goes on.
// Threads: one. Errors: none; whoever does not answer in time does not show it.
#pragma once

#include <chrono>
#include <vector>

#include "app/viewer/instance/InstanceSocket.h"

namespace velko::viewer {

class InstanceAsker {
public:
    // In all, from the question on.
    static constexpr std::chrono::milliseconds kLongest{200};

    explicit InstanceAsker(const InstanceCall& call);

    // True: a window with the file has come to the front, and there is nothing to open.
    bool IsTaken();

private:
    bool WaitForAnswer(std::chrono::milliseconds left);

    const std::chrono::steady_clock::time_point m_asked;
    std::vector<Descriptor> m_asking; // who has not answered
    bool m_bTaken = false;
};

}
