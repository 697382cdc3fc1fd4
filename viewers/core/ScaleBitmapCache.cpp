#include "viewers/core/ScaleBitmapCache.h"

namespace velko::vkit {

void ScaleBitmapCache::Add(const std::shared_ptr<D2DBitmapSource>& pSource) {
    if (!pSource || !pSource->HasBitmap()) {
        return;
    }
    for (std::uint32_t n = 0; n < m_sources.Size(); ++n) {
        const std::shared_ptr<D2DBitmapSource> pHeld = m_sources.GetAt(n);
        if (pHeld->nPageIndex != pSource->nPageIndex || pHeld->m_nBlockId != pSource->m_nBlockId) {
            continue;
        }
        if (!pHeld->HasBitmap()) {
            m_sources.SetAt(n, pSource);
        }
        return;
    }
    m_sources.Append(pSource);
}

std::shared_ptr<D2DBitmapSource> ScaleBitmapCache::Find(std::int32_t nPageIndex,
                                                        std::int32_t nBlockId) const {
    for (const auto& pSource : m_sources) {
        if (pSource->nPageIndex == nPageIndex && pSource->m_nBlockId == nBlockId &&
            pSource->HasBitmap()) {
            return pSource;
        }
    }
    return nullptr;
}

Render_PageDavidBlock ScaleBitmapCache::FindGrid(std::int32_t nPageIndex) const {
    for (const auto& pSource : m_sources) {
        if (pSource->nPageIndex == nPageIndex) {
            return {pSource->nRows, pSource->nCols};
        }
    }
    return {};
}

void ScaleBitmapCache::Clear() {
    if (m_sources.Size() > 0) {
        m_sources.Clear();
    }
}

}
