// A cancellation source that is replaced, generation after generation.
//
// Work takes the token of the generation in which it starts. Renewing cancels
// that generation and begins the next one. The source behind a generation is
// made when its first token is asked for, so renewing where no work was started
// costs nothing. Threads: the owner's thread; tokens travel.
#pragma once

#include "platform/concurrency/Cancellation.h"

namespace velko::vkit {

class CancellationGeneration {
public:
    concurrency::cancellation_token Token() {
        if (!m_source.is_live()) {
            m_source = concurrency::cancellation_token_source();
        }
        return m_source.get_token();
    }

    void Renew() {
        if (m_source.is_live()) {
            m_source.cancel();
            m_source = concurrency::cancellation_token_source::absent();
        }
    }

private:
    concurrency::cancellation_token_source m_source =
        concurrency::cancellation_token_source::absent();
};

}
