#include "widget/places/SnippetSearch.h"

#include <utility>
#include <vector>

#include "document/engine/PDFDoc.h"
#include "platform/storage/StorageFile.h"
#include "widget/reload/AsideDocument.h"
#include "widget/reload/FileJudge.h"
#include "widget/reload/OpenedFile.h"

namespace velko::vkit {

using velko::pdf::PDFDoc;

namespace {

using FilePtr = std::shared_ptr<Windows::Storage::StorageFile>;

constexpr SnippetFinder::Limits kBeforeReload{1'000, std::chrono::milliseconds(120)};

// With the document that it looks in.
struct AsideFinder {
    AsideDocument aside;
    std::unique_ptr<SnippetFinder> pFinder;
};

// Empty for what cannot be opened.
std::shared_ptr<SnippetFinder> FinderIn(const FilePtr& pPinned, std::int32_t nSize,
                                        const Platform::SecretText& password, SoughtPlace sought,
                                        const SnippetFinder::AbortFlag& pAbort) {
    try {
        const auto pAside =
            std::shared_ptr<AsideFinder>(new AsideFinder{AsideDocument(pPinned, nSize), nullptr});
        if (pAside->aside.Load(password) != velko::common::ErrorCode::e_ErrSuccess) {
            return nullptr;
        }
        pAside->pFinder = std::make_unique<SnippetFinder>(
            pAside->aside.Document(), std::vector{std::move(sought)}, pAbort, kBeforeReload);
        return {pAside, pAside->pFinder.get()};
    } catch (...) {
        return nullptr;
    }
}

}

void SnippetSearch::Begin(std::shared_ptr<PDFDoc> pDocument, SoughtPlace sought, Then fnThen) {
    Run(
        this,
        [pDocument = std::move(pDocument), sought = std::move(sought)](const Flag& pAbort) {
            return std::make_shared<SnippetFinder>(pDocument, std::vector{sought}, pAbort,
                                                   SnippetFinder::Limits());
        },
        std::move(fnThen));
}

void SnippetSearch::BeginIn(const JudgedFile& judged, Platform::SecretText password,
                            SoughtPlace sought, Then fnThen) {
    const FilePtr pPinned = judged.pFile->Judged();
    const auto nSize = static_cast<std::int32_t>(judged.version.Size);
    Run(
        this,
        [pPinned, nSize, password = std::move(password),
         sought = std::move(sought)](const Flag& pAbort) {
            return pPinned ? FinderIn(pPinned, nSize, password, sought, pAbort) : nullptr;
        },
        std::move(fnThen));
}

void SnippetSearch::End() {
    if (const Flag pAbort = std::exchange(m_pAbort, nullptr)) {
        pAbort->store(true, std::memory_order_release);
    }
}

concurrency::task<void> SnippetSearch::Run(QPointer<SnippetSearch> pSelf,
                                           std::function<FinderPtr(Flag)> fnMake, Then fnThen) {
    pSelf->End();
    const auto pAbort = std::make_shared<std::atomic<bool>>(false);
    pSelf->m_pAbort = pAbort;
    const auto making = concurrency::create_task([fnMake, pAbort] { return fnMake(pAbort); });
    FinderPtr pFinder = co_await making;
    std::optional<FoundPlace> found;
    if (pFinder) {
        const auto running = RunToEnd(pFinder);
        co_await running;
        found = pFinder->Found().front();
        concurrency::create_task([pGone = std::move(pFinder)] {}); // what it goes with takes time
    }
    if (pSelf && pSelf->m_pAbort == pAbort) {
        pSelf->m_pAbort.reset();
        fnThen(found);
    }
}

concurrency::task<void> RunToEnd(std::shared_ptr<SnippetFinder> pFinder) {
    for (bool bMore = true; bMore;) {
        const auto running = concurrency::create_task([pFinder] { return pFinder->Run(); });
        bMore = co_await running;
    }
}

}
