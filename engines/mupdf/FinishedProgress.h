// The progress of work that was done at once, and of work that was put off.
#pragma once

#include <cstdint>
#include <functional>
#include <utility>

#include "document/engine/Progressive.h"

namespace velko::engines::mupdf {

class FinishedProgress final : public common::Progressive {
public:
    explicit FinishedProgress(std::int32_t nState = kFinished) : m_nState(nState) {}
    std::int32_t Continue() override { return m_nState; }

private:
    std::int32_t m_nState;
};

// Its first step says that there is something left to do, the second does it.
class PutOffProgress final : public common::Progressive {
public:
    explicit PutOffProgress(std::function<std::int32_t()> fnWork) : m_fnWork(std::move(fnWork)) {}
    std::int32_t Continue() override {
        if (!std::exchange(m_bTold, true)) {
            return kToBeContinued;
        }
        if (const auto fnWork = std::exchange(m_fnWork, nullptr)) {
            m_nEnd = fnWork();
        }
        return m_nEnd;
    }

private:
    std::function<std::int32_t()> m_fnWork;
    bool m_bTold = false;
    std::int32_t m_nEnd = 0; // failed
};

}
