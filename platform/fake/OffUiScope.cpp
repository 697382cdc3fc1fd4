#include "platform/fake/OffUiScope.h"

#include <utility>

namespace Platform::Fake {

namespace {
thread_local int t_nDepth = 0;
}

OffUiScope::OffUiScope() : m_hidden(nullptr) {
    ++t_nDepth;
}

OffUiScope::~OffUiScope() {
    --t_nDepth;
}

bool OffUiScope::IsActive() {
    return t_nDepth > 0;
}

OnUiScope::OnUiScope(std::shared_ptr<concurrency::context> pContext)
    : m_nDepthBefore(std::exchange(t_nDepth, 0)), m_shown(std::move(pContext)) {}

OnUiScope::~OnUiScope() {
    t_nDepth = m_nDepthBefore;
}

}
