#include "tools/replay/Output.h"

namespace velko::replay {

void Output::Print(const JsonObject& line) {
    const std::string strLine = line.Text() + '\n';
    const std::lock_guard<std::mutex> lock(m_lock);
    if (m_pFile == nullptr) {
        return;
    }
    std::fwrite(strLine.data(), 1, strLine.size(), m_pFile);
    std::fflush(m_pFile);
}

void Output::Close() {
    const std::lock_guard<std::mutex> lock(m_lock);
    m_pFile = nullptr;
}

}
