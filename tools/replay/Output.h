// The program's output: one JSON object a line, flushed line by line.
//
// Threads: any (some events are raised by workers); a line is never torn.
#pragma once

#include <cstdio>
#include <mutex>

#include "tools/replay/JsonText.h"

namespace velko::replay {

class Output {
public:
    explicit Output(std::FILE* pFile) : m_pFile(pFile) {}
    void Print(const JsonObject& line);

    // From now on nothing is printed: what the end of a session raises is no
    // answer to a command.
    void Close();

private:
    std::mutex m_lock;
    std::FILE* m_pFile; // borrowed; null once closed
};

}
