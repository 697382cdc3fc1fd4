// The progress of work that was done at once.
#pragma once

#include "document/engine/Progressive.h"

namespace velko::engines::mupdf {

class FinishedProgress final : public common::Progressive {
public:
    std::int32_t Continue() override { return kFinished; }
};

}
