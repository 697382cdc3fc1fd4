// Pages that cannot be shown: who hears of it, and what heals them.
#include "platform/storage/FileChangedException.h"
#include "tests/document/DocumentFixture.h"

namespace velko::testing {
namespace {

using common::EngineException;
using common::ErrorCode;
using vkit::BitmapBox;
using vkit::RenderBlockRequest;

class PageFailureTest : public SteppedDocumentTest {
protected:
    // Loads, and answers whether that went well.
    bool Load(std::int32_t nPageIndex) {
        const auto pending = m_pDocument->LoadPageAsync(nPageIndex);
        m_host.Drain();
        return pending.is_value();
    }
    bool Render(std::int32_t nLeft, float fWidth = 100.0F) {
        RenderBlockRequest request = Block(m_pPage, nLeft, 0, 8, 8);
        request.fDisplayWidth = fWidth;
        BitmapBox box;
        try {
            return m_pDocument->RenderPageBlock(request, box);
        } catch (const EngineException&) {
            return false;
        }
    }
    // The code of page 1, and what the owner heard since the last time.
    ErrorCode Code() {
        const auto failure = m_pDocument->PageFailureOf(1);
        return failure ? failure->eCode : ErrorCode::e_ErrSuccess;
    }
    int Told() {
        m_host.Drain();
        const Texts events = m_pOwner->TakeEvents();
        return static_cast<int>(std::count(events.begin(), events.end(), "failure of 1"));
    }

    DocumentPtr m_pDocument = WrapDocument();
    std::shared_ptr<pdf::PDFPage> m_pPage = m_pDocument->PdfDoc()->GetPage(1);
};

TEST_F(PageFailureTest, ALoadThatFailsIsToldUntilOneSucceeds) {
    m_pEngine->FailPage(EngineOp::StartParse, 1, ErrorCode::e_ErrFile);
    EXPECT_FALSE(Load(1));
    EXPECT_EQ(Told(), 1);
    EXPECT_EQ(Code(), ErrorCode::e_ErrFile);
    EXPECT_FALSE(m_pDocument->PageFailureOf(1)->strReason.empty());
    EXPECT_EQ(m_pDocument->PageFailureOf(0), std::nullopt);
    EXPECT_FALSE(Load(1));
    EXPECT_EQ(Told(), 0) << "nothing new";
    m_pEngine->ClearFailures();
    EXPECT_TRUE(Load(1));
    EXPECT_EQ(Told(), 1);
    EXPECT_EQ(Code(), ErrorCode::e_ErrSuccess);
}

TEST_F(PageFailureTest, APartStaysFailedUntilItIsDrawnOrNoLongerShown) {
    m_pEngine->FailCall(EngineOp::StartRender, 1, ErrorCode::e_ErrOutOfMemory);
    EXPECT_FALSE(Render(0));
    EXPECT_TRUE(Render(-50));
    EXPECT_TRUE(Load(1));
    EXPECT_EQ(Code(), ErrorCode::e_ErrOutOfMemory) << "the first part is still blank";
    EXPECT_TRUE(Render(0));
    EXPECT_EQ(Code(), ErrorCode::e_ErrSuccess);
    EXPECT_EQ(Told(), 2);
    m_pEngine->FailCall(EngineOp::StartRender, 1);
    EXPECT_FALSE(Render(0));
    EXPECT_TRUE(Render(-50, 200.0F));
    EXPECT_EQ(Code(), ErrorCode::e_ErrSuccess) << "nobody sees the other size any more";
}

TEST_F(PageFailureTest, APageCutShortIsShownAndTold) {
    m_pEngine->CutShort(1, true);
    EXPECT_TRUE(Render(0));
    EXPECT_EQ(Code(), ErrorCode::e_ErrDataNotReady);
    EXPECT_EQ(Told(), 1);
    m_pEngine->CutShort(1, false);
    EXPECT_TRUE(Render(0));
    EXPECT_EQ(Code(), ErrorCode::e_ErrSuccess);
}

TEST_F(PageFailureTest, TheReasonKeepsItsKind) {
    const std::pair<std::function<void()>, ErrorCode> kReasons[] = {
        {[] { throw Platform::FileChangedException(); }, ErrorCode::e_ErrConflict},
        {[] { throw std::bad_alloc(); }, ErrorCode::e_ErrOutOfMemory},
        {[] { throw std::runtime_error("odd"); }, ErrorCode::e_ErrUnknown},
    };
    for (const auto& [fnRaise, eCode] : kReasons) {
        m_pEngine->OnCall(EngineOp::StartParse, [&](const EngineCall&) { fnRaise(); });
        EXPECT_FALSE(Load(1));
        EXPECT_EQ(Code(), eCode);
    }
}

TEST_F(PageFailureTest, WhatIsNoFailureOfThePageSaysNothing) {
    EXPECT_FALSE(Load(99)) << "no such page";
    m_pEngine->OnCall(EngineOp::StartRender,
                      [](const EngineCall&) { throw concurrency::task_canceled(); });
    EXPECT_THROW(Render(0), concurrency::task_canceled);
    m_pEngine->OnCall(EngineOp::StartRender, nullptr);
    m_pOwner->fnOnRendered = [](const auto&) { throw Platform::AccessDeniedException(); };
    EXPECT_THROW(Render(0), Platform::AccessDeniedException) << "the host's own";
    EXPECT_EQ(Code(), ErrorCode::e_ErrSuccess);

    m_pEngine->FailPage(EngineOp::StartParse, 1);
    const auto pending = m_pDocument->LoadPageAsync(1);
    m_host.RunUntil([&] { return pending.is_done(); });
    m_pDocument->Dispose();
    EXPECT_EQ(Told(), 0) << "a closed document tells nothing";
    EXPECT_EQ(m_pDocument->PageFailureOf(99), std::nullopt);
}

}
}
