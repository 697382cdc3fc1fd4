// The bitmaps that stand in for blocks while a zoom is under way, at most one
// a page and block. It has no limit: a gesture adds the blocks of the pages on
// the screen once, and its end empties it.
//
// A bitmap of a lost device counts as none. Threads: the UI thread only.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/foundation/Collections.h"
#include "surface/D2DBitmapSource.h"
#include "viewers/core/Records.h"

namespace velko::vkit {

class ScaleBitmapCache {
public:
    std::uint32_t Size() const { return m_sources.Size(); }

    // Adds a block's bitmap unless there is one of that page and block.
    void Add(const std::shared_ptr<D2DBitmapSource>& pSource);

    std::shared_ptr<D2DBitmapSource> Find(std::int32_t nPageIndex, std::int32_t nBlockId) const;

    // The grid of the page's bitmaps; both 0 when it has none.
    Render_PageDavidBlock FindGrid(std::int32_t nPageIndex) const;

    void Clear();

private:
    Windows::Foundation::Collections::ObservableVector<std::shared_ptr<D2DBitmapSource>> m_sources;
};

}
