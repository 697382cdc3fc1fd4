// The progress of work that was done at once.
#pragma once

#include "document/engine/Progressive.h"

namespace velko::engines::mupdf {

class FinishedProgress final : public common::Progressive {
public:
    explicit FinishedProgress(std::int32_t nState = kFinished) : m_nState(nState) {}
    std::int32_t Continue() override { return m_nState; }

private:
    std::int32_t m_nState;
};

}
