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

void PageViewerBase::StartRenders(bool bUseCacheOnly) {
    m_ctsRender.Renew();
    if (!HasItems()) {
        return;
    }
    std::vector<task<void>> renders;
    renders.reserve(m_pPageItems->size());
    for (const PageItem& pItem : *m_pPageItems) {
        if (pItem->HasBlocks()) {
            renders.push_back(pItem->RenderViewerPage(bUseCacheOnly));
        } else if (m_traits.szNothingToRender) {
            Platform::Debug::OutputDebugString(m_traits.szNothingToRender);
        }
    }
    if (!bUseCacheOnly || m_traits.bStepEndsSnapshot) {
        FinishRenders(std::move(renders), m_traits.szRenderOperation);
    }
}

void PageViewerBase::StartVisibleRenders() {
    std::vector<task<void>> renders;
    if (m_pPageItems) {
        for (const PageItem& pItem : *m_pPageItems) {
            if (pItem->HasBlocks()) {
                renders.push_back(pItem->RenderVisibleBlocks());
            }
        }
    }
    FinishRenders(std::move(renders), m_traits.szRenderOperation);
}

void PageViewerBase::RedrawScreen() {
    ThrowIfDisposed();
    if (!m_pPageItems) {
        return;
    }
    m_ctsRender.Renew();
    std::vector<task<void>> renders;
    for (const PageItem& pItem : *m_pPageItems) {
        if (pItem->HasBlocks()) {
            renders.push_back(pItem->Update(true));
        } else {
            Platform::Debug::OutputDebugString("RedrawScreen error\n");
        }
    }
    FinishRenders(std::move(renders), "RedrawScreen");
}

void PageViewerBase::UpdatePageAfterAnnotEdit(std::int32_t nPageIndex) {
    ThrowIfDisposed();
    if (!m_pPageItems) {
        return;
    }
    m_ctsRender.Renew();
    std::vector<task<void>> renders;
    for (const PageItem& pItem : *m_pPageItems) {
        if (pItem->nPageIndex == nPageIndex && pItem->HasBlocks()) {
            renders.push_back(pItem->Update(true));
        } else {
            Platform::Debug::OutputDebugString("RedrawScreen error\n");
        }
    }
    FinishRenders(std::move(renders), "UpdatePageAfterAnnotEdit");
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
    if (!m_bDisposed && HasItems()) {
        StartRenders(false);
    }
}

std::string PageViewerBase::LogPlace(const char* szOperation) const {
    return std::string(m_traits.szClass) + "::" + szOperation;
}

void PageViewerBase::FinishRenders(std::vector<task<void>> renders, const char* szOperation) {
    if (!renders.empty()) {
        FinishWhenRendered(std::move(renders), m_ctsRender.Token(), szOperation);
    }
}

// A failure of one page does not keep the others from the screen; what was
// cancelled is the affair of whoever cancelled it.
task<void> PageViewerBase::FinishWhenRendered(std::vector<task<void>> renders,
                                              cancellation_token token, const char* szOperation) {
    const auto pSelf = shared_from_this();
    const auto pDispatcher = m_pDispatcher;
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
        EndSnapshot();
        PaintCanvas();
    } catch (...) {
        WriteChainOutcome(LogPlace(szOperation));
    }
}

}
