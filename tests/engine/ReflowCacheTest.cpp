// What is kept of pages set anew: how far it saves work, its bounds, its end.

#include <atomic>
#include <latch>
#include <limits>
#include <vector>

#include "engines/mupdf/Allocator.h"
#include "engines/mupdf/PageCache.h"
#include "platform/concurrency/ThreadPool.h"
#include "tests/engine/ReflowFixture.h"

namespace velko::testing {

using common::Progressive;
using engines::mupdf::PageCache;

namespace {

constexpr std::int32_t kPages = 12;

struct OpenedDocument {
    std::shared_ptr<MemoryReader> pReader;
    std::shared_ptr<pdf::PDFDoc> pDoc;
};

OpenedDocument Open(const std::string& strBytes) {
    OpenedDocument opened{std::make_shared<MemoryReader>(strBytes), nullptr};
    opened.pDoc = CreateDoc(opened.pReader);
    EXPECT_EQ(opened.pDoc->Load({}), common::ErrorCode::e_ErrSuccess);
    return opened;
}

std::shared_ptr<pdf::ReflowPage> Measure(const std::shared_ptr<pdf::PDFDoc>& pDoc,
                                         std::int32_t nPage, const Wanted& wanted = {}) {
    auto pReflow = CreateReflow(pDoc->GetPage(nPage));
    EXPECT_EQ(Parse(*pReflow, wanted), Progressive::kFinished);
    return pReflow;
}

std::shared_ptr<common::Bitmap> Picture(const std::shared_ptr<pdf::ReflowPage>& pReflow) {
    return DrawBand(pReflow, 0, pReflow->GetContentHeight());
}

// Everything but the sizes.
void EmptyPageCache(const std::shared_ptr<pdf::PDFDoc>& pOther) {
    PageCache::Instance().SetLimits({1, 1});
    pOther->GetPage(0)->StartParse(0, nullptr, 0); // the one that stays
    PageCache::Instance().SetLimits({});
}

}

class ReflowCacheTest : public MuPdfTest {};

TEST_F(ReflowCacheTest, APageMeasuredOnceHasItsSizeWithoutBeingReadAgain) {
    const auto [pReader, pDoc] = Open(MixedDocument(kPages));
    const auto pOther = OpenDoc(MixedDocument(1));
    std::vector<std::int32_t> heights;
    for (std::int32_t i = 0; i < kPages; ++i) {
        heights.push_back(Measure(pDoc, i)->GetContentHeight());
    }
    const auto pWanted = Picture(Measure(pDoc, 5));
    EmptyPageCache(pOther);

    const int nReads = pReader->Reads();
    const std::size_t nBytes = PageCache::Instance().Bytes();
    for (std::int32_t i = 0; i < kPages; ++i) {
        EXPECT_TRUE(pDoc->GetPage(i)->IsParsed()) << "nobody needs to parse it first";
        EXPECT_EQ(Measure(pDoc, i)->GetContentHeight(), heights[static_cast<std::size_t>(i)]);
    }
    EXPECT_EQ(pReader->Reads(), nReads);
    EXPECT_EQ(PageCache::Instance().Bytes(), nBytes) << "nothing was made";
    EXPECT_EQ(Compare(*Picture(Measure(pDoc, 5)), *pWanted).nPixels, 0) << "it is set when drawn";
}

TEST_F(ReflowCacheTest, ObjectsOfOnePageShareWhatWasSet) {
    const auto pDoc = OpenDoc(MixedDocument(2));
    const auto pLayout = LayoutOf(Measure(pDoc, 0));
    EXPECT_EQ(LayoutOf(Measure(pDoc, 0)), pLayout);
    const auto pNarrow = LayoutOf(Measure(pDoc, 0, {.fWidth = 200.0F}));
    EXPECT_NE(pNarrow, pLayout);
    EXPECT_EQ(pNarrow->pModel, pLayout->pModel) << "the text is read once";
    EXPECT_NE(LayoutOf(Measure(pDoc, 1)), pLayout);
    EXPECT_EQ(LayoutOf(Measure(pDoc, 0, {.fWidth = 400.9F})), pLayout) << "which sets alike";

    // More parameters than are remembered; numbers that are none are alike.
    const float fNan = std::numeric_limits<float>::quiet_NaN();
    for (int i = 0; i < 20; ++i) {
        const auto pOdd = Measure(pDoc, 0, {.fWidth = 100.0F + static_cast<float>(i)});
        EXPECT_EQ(pOdd->GetContentWidth(), 100 + i);
        Measure(pDoc, 0, {.fLineSpacing = fNan});
    }
    EXPECT_EQ(Measure(pDoc, 0)->GetContentHeight(), pLayout->nHeight);
}

TEST_F(ReflowCacheTest, WhatIsKeptStaysWithinTheBoundOfAllThatIsKept) {
    PageCache& cache = PageCache::Instance();
    const std::size_t nBefore = cache.Count();
    auto pDoc = OpenDoc(MixedDocument(kPages));
    std::vector<std::weak_ptr<const engines::mupdf::CacheItem>> items;
    for (std::int32_t i = 0; i < kPages; ++i) {
        const auto pLayout = LayoutOf(Measure(pDoc, i));
        EXPECT_GT(pLayout->nBytes, pLayout->glyphs.size() * sizeof pLayout->glyphs[0]);
        items.insert(items.end(), {pLayout, pLayout->pModel, pLayout->pModel->pContent});
    }
    const std::size_t nAll = cache.Bytes();
    cache.SetLimits({nAll / 3, nAll / 3});
    std::size_t nAlive = 0; // bytes, held by the cache or by what it holds
    for (const auto& wkItem : items) {
        const auto pItem = wkItem.lock();
        nAlive += pItem ? pItem->nBytes : 0;
    }
    EXPECT_GT(nAlive, 0U);
    EXPECT_LE(nAlive, nAll / 3) << "nothing that left the cache is held by what stayed";
    pDoc.reset();
    EXPECT_EQ(cache.Count(), nBefore);
}

TEST_F(ReflowCacheTest, AFileThatIsOpenedAnewIsReadAnew) {
    std::string strBytes = MixedDocument(3);
    const auto [pReader, pDoc] = Open(strBytes);
    const auto pLayout = LayoutOf(Measure(pDoc, 0));
    engines::mupdf::RefuseAllocation(3);
    EXPECT_EQ(EngineCodeOf([&] { Measure(pDoc, 1); }), common::ErrorCode::e_ErrOutOfMemory);
    ASSERT_TRUE(engines::mupdf::RefuseAllocation(0));
    Measure(pDoc, 2); // opens the file
    EXPECT_FALSE(pDoc->GetPage(0)->IsParsed());
    const auto pAnew = LayoutOf(Measure(pDoc, 0));
    EXPECT_NE(pAnew, pLayout);
    EXPECT_NE(pAnew->pModel, pLayout->pModel);
    EXPECT_EQ(pAnew->nHeight, pLayout->nHeight);
}

TEST_F(ReflowCacheTest, WhatWasCutShortIsToldSoUntilItIsAskedForAnew) {
    const auto pDoc = OpenDoc(Illustrated());
    engines::mupdf::SetBudgets({.parse = std::chrono::milliseconds(0)});
    const auto pPage = pDoc->GetPage(0);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(Parse(*CreateReflow(pPage)), Progressive::kCutShort);
        EXPECT_FALSE(pDoc->GetPage(0)->IsParsed());
    }
    engines::mupdf::SetBudgets({});
    pPage->StartParse(0, nullptr, 1);
    EXPECT_EQ(Measure(pDoc, 0)->GetContentHeight(), ReflowOf(Illustrated())->GetContentHeight());
}

// A viewer's pool and its UI thread at once, with less kept than they use, while
// documents close under them.
TEST_F(ReflowCacheTest, ManyThreadsMeasureAndDrawWhatOneDoes) {
    constexpr std::int32_t kWorks = 240;
    const std::string strBytes = MixedDocument(kPages);
    const auto fnWanted = [](std::int32_t i) { // more than are remembered
        return Wanted{.fWidth = 200.0F + static_cast<float>(i % 6) * 20.0F};
    };
    const auto fnDraw = [&](const std::shared_ptr<pdf::PDFDoc>& pDoc, std::int32_t i) {
        return DrawBand(Measure(pDoc, i % kPages, fnWanted(i)), 40, 60);
    };
    std::vector<std::shared_ptr<common::Bitmap>> wanted;
    const auto pFirst = OpenDoc(strBytes);
    for (std::int32_t i = 0; i < kPages * 6; ++i) {
        wanted.push_back(fnDraw(pFirst, i));
    }
    PageCache::Instance().SetLimits({200'000, 100'000});
    std::atomic<int> nWrong = 0;
    std::latch done(kWorks);
    concurrency::ThreadPool pool(4);
    auto pDoc = OpenDoc(strBytes);
    for (std::int32_t i = 0; i < kWorks; ++i) {
        pool.schedule([&, i, pShared = pDoc] {
            const auto pDrawn = fnDraw(pShared, i * 7 % (kPages * 6));
            nWrong +=
                Compare(*pDrawn, *wanted[static_cast<std::size_t>(i * 7 % (kPages * 6))]).nPixels;
            done.count_down();
        });
        Measure(pDoc, i % kPages, fnWanted(i));
        if (i % 60 == 59) {
            pDoc = OpenDoc(strBytes); // works go on in the one that was closed
        }
    }
    done.wait();
    EXPECT_EQ(nWrong, 0);
}

}
