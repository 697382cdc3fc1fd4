// The records of the page table: one entry per page that was ever asked for.
//
// Threads: the fields of a handle, `m_pPageHandle`, `m_nUseCount` and
// `m_bAnnotsLoaded` change under the document's page lock. Handles come and go
// on the UI thread, except in an entry whose page is being brought back, which
// nobody draws from. Size and rotation are fixed once the entry is in the table.
#pragma once

#include <cstdint>
#include <memory>

#include "document/engine/PDFPage.h"
#include "platform/foundation/Geometry.h"

namespace velko::vkit {

struct VLK_PageSize {
    float fWidth = 0.0F;  // points
    float fHeight = 0.0F; // points
};

struct VLK_PageHandle {
    std::shared_ptr<velko::pdf::PDFPage> m_pPage; // the table's one strong reference

    // The page box: x is left, y is bottom, sides never negative. Written once
    // per handle, by the first asynchronous load of the page; zeros before.
    // `VLK_Document::PageBox` reads it while a load may be under way.
    Windows::Foundation::Rect m_rcPageBox;
};

struct WPPDFPage {
    std::shared_ptr<VLK_PageHandle> m_pPageHandle; // empty after a drop
    std::shared_ptr<VLK_PageSize> m_pPageSize;     // stays across a drop
    std::int32_t m_nUseCount = 0;                  // renders in flight
    std::int32_t m_nRotation = 0;                  // quarter turns of the file
    bool m_bAnnotsLoaded = false;
};

}
