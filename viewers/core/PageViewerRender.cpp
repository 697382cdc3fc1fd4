// The renders of what is laid out, for all items at once.
#include <utility>

#include "document/VLK_Document.h"
#include "platform/system/Debug.h"
#include "platform/ui/CoreDispatcher.h"
#include "viewers/core/ChainLog.h"
#include "viewers/core/PageViewerBase.h"

namespace velko::vkit {

using concurrency::cancellation_token;
using concurrency::task;

// From the first item down; what has nothing to render is left out. `szNoBlocks`
// is written for an item without blocks, if it is not empty.
template <class F>
PageViewerBase::Renders PageViewerBase::CollectRenders(const char* szNoBlocks, F fnStart) {
    Renders renders;
    if (!m_pPageItems) {
        return renders;
    }
    for (const PageItem& pItem : *m_pPageItems) {
        if (!pItem->HasBlocks()) {
            if (szNoBlocks) {
                Platform::Debug::OutputDebugString(szNoBlocks);
            }
            continue;
        }
        task<void> render = fnStart(*pItem);
        if (!render.is_done()) {
            renders.push_back(std::move(render));
        }
    }
    return renders;
}

void PageViewerBase::StartRenders(bool bUseCacheOnly) {
    m_ctsRender.Renew();
    Renders renders = CollectRenders(m_traits.szNothingToRender, [&](ViewerPageItem& item) {
        return item.RenderViewerPage(bUseCacheOnly);
    });
    if (!bUseCacheOnly) {
        ++m_nRenderStarts;
        FinishRenders(std::move(renders), Closing::WhatChanged, m_traits.szRenderOperation);
    }
}

void PageViewerBase::StartVisibleRenders() {
    m_ctsRender.Renew();
    RegridItems();
    ++m_nRenderStarts;
    FinishRenders(
        CollectRenders(nullptr, [](ViewerPageItem& item) { return item.RenderVisibleBlocks(); }),
        Closing::WhatChanged, m_traits.szRenderOperation);
}

void PageViewerBase::RedrawScreen() {
    ThrowIfDisposed();
    if (!m_pPageItems) {
        return;
    }
    RegridItems();
    m_standIns.MarkStale();
    m_ctsRender.Renew();
    FinishRenders(CollectRenders("RedrawScreen error\n",
                                 [](ViewerPageItem& item) { return item.Update(true); }),
                  Closing::Always, "RedrawScreen");
}

// A page that is not laid out changes nothing: what is under way closes as it
// would have.
void PageViewerBase::UpdatePageAfterAnnotEdit(std::int32_t nPageIndex) {
    ThrowIfDisposed();
    if (!m_pPageItems) {
        return;
    }
    Renders renders;
    for (const PageItem& pItem : *m_pPageItems) {
        if (pItem->nPageIndex == nPageIndex && pItem->HasBlocks()) {
            EmptyScaleCache();
            pItem->DividToBlock(CalcPageDavidBlock(*pItem));
            m_standIns.MarkStale(nPageIndex);
            renders.push_back(pItem->Update(true));
        } else {
            Platform::Debug::OutputDebugString("RedrawScreen error\n");
        }
    }
    if (!renders.empty()) {
        m_ctsRender.Renew();
        FinishRenders(std::move(renders), Closing::Always, "UpdatePageAfterAnnotEdit");
    }
}

void PageViewerBase::CancelRender() {
    ThrowIfDisposed();
    if (m_pPageItems) {
        for (const PageItem& pItem : *m_pPageItems) {
            pItem->ClearBlocks();
        }
    }
    m_ctsRender.Renew();
    EndSnapshot();
}

// Blocks whose bitmap died render again; so do those that failed meanwhile.
void PageViewerBase::OnDeviceRemade() {
    if (!IsDisposed() && HasItems()) {
        RegridItems();
        StartRenders(false);
    }
}

std::string PageViewerBase::LogPlace(const char* szOperation) const {
    return std::string(m_traits.szClass) + "::" + szOperation;
}

// With nothing to render, the step's own frame is all that there is to show.
void PageViewerBase::FinishRenders(Renders renders, Closing eClosing, const char* szOperation) {
    if (renders.empty()) {
        EndSnapshot();
    } else {
        FinishWhenRendered(std::move(renders), m_ctsRender.Token(), eClosing, szOperation);
    }
}

// A failure of one page does not keep the others from the screen; what was
// cancelled is the affair of whoever cancelled it. Each block has painted when
// it came, so the end paints only what the snapshot's end uncovers.
task<void> PageViewerBase::FinishWhenRendered(Renders renders, cancellation_token token,
                                              Closing eClosing, const char* szOperation) {
    const auto pSelf = shared_from_this();
    const auto pDispatcher = UiDispatcher();
    bool bCanceled = false;
    try {
        // The step that started the renders ends first, also when none is left to do.
        co_await concurrency::resume_foreground(pDispatcher);
        const task<void> rendered = concurrency::when_all(std::move(renders), token);
        co_await rendered;
    } catch (...) {
        bCanceled = WriteChainOutcome(LogPlace(szOperation));
    }
    if (bCanceled || token.is_canceled()) {
        co_return;
    }
    try {
        if (m_standIns.EndSnapshot() || eClosing == Closing::Always) {
            PaintCanvas();
        }
    } catch (...) {
        WriteChainOutcome(LogPlace(szOperation));
    }
}

}
