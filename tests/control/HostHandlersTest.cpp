// Hosts that throw, re-enter, close or let go of the control inside its events.

#include <stdexcept>

#include "document/VLK_Document.h"
#include "tests/control/ControlFixture.h"

namespace velko::testing {
namespace {

struct HostFailure : std::runtime_error {
    HostFailure() : std::runtime_error("host") {}
};

class HostHandlersTest : public ControlFixture {
protected:
    HostHandlersTest() { Show(); }

    // A control of its own, for an event that ends it.
    std::shared_ptr<vkit::PDFViewCtrl> Short() {
        auto pShort = vkit::PDFViewCtrl::Create();
        Listen(*pShort);
        pShort->ApplyTemplate();
        pShort->Arrange({500.0F, 500.0F});
        return pShort;
    }
    void ExpectUsable() {
        EXPECT_EQ(Open("after.pdf"), ErrorCode::e_ErrSuccess);
        EXPECT_EQ(pControl->GetDocumentFile()->Name(), "after.pdf");
        EXPECT_EQ(pControl->GetVisiblePages().front(), 0);
        EXPECT_TRUE(pControl->GotoLastPage());
        EXPECT_EQ(pControl->GetVisiblePages().back(), 4);
    }
};

TEST_F(HostHandlersTest, AnyEventOfAnOpenMayFailCloseOrReplaceTheDocument) {
    for (const char* szEvent : {"PageLoaded", "PageVisible", "PageChanged", "Mode", "OpenDoc"}) {
        SCOPED_TRACE(szEvent);
        InEvent(szEvent, [] { throw HostFailure(); });
        EXPECT_THROW(Open(), HostFailure);
        ExpectUsable();
        pControl->CloseDocument();

        InEvent(szEvent, [&] { pControl->CloseDocument(); });
        EXPECT_EQ(Open(), ErrorCode::e_ErrSuccess);
        EXPECT_EQ(pControl->GetPDFDoc(), nullptr);
        EXPECT_EQ(Parts().PageViewMgr()->GetViewer(), nullptr);
        // Nothing is told of the document after it was told to be closed.
        EXPECT_EQ(DocEvents().back(), "CloseDoc 0 0");
        ExpectUsable();
        pControl->CloseDocument();

        const auto pOther = pEngine->MakeLoadedDoc();
        InEvent(szEvent, [&] { pControl->SetPDFDoc(pOther); });
        Open();
        EXPECT_EQ(pControl->GetPDFDoc(), pOther);
        ASSERT_NE(Parts().PageViewMgr()->GetViewer(), nullptr);
        EXPECT_EQ(pControl->GetVisiblePages().front(), 0);
        ExpectUsable();
        pControl->CloseDocument();
    }
}

TEST_F(HostHandlersTest, FailuresWhileClosingReachTheCallerAndLeaveNothingOpen) {
    for (const char* szEvent : {"PageUnloaded", "CloseDoc"}) {
        SCOPED_TRACE(szEvent);
        Open();
        InEvent(szEvent, [] { throw HostFailure(); });
        EXPECT_THROW(pControl->CloseDocument(), HostFailure);
        EXPECT_EQ(pControl->GetPDFDoc(), nullptr);
        EXPECT_EQ(Parts().PageViewMgr()->GetViewer(), nullptr);
        EXPECT_EQ(events.back(), "CloseDoc 0 0");
        ExpectUsable();
    }
}

TEST_F(HostHandlersTest, ADocumentAttachedWhileClosingKeepsItsViewer) {
    Open();
    const auto pOther = pEngine->MakeLoadedDoc();
    InEvent("CloseDoc", [&] { pControl->SetPDFDoc(pOther); });
    pControl->CloseDocument();
    EXPECT_EQ(pControl->GetPDFDoc(), pOther);
    EXPECT_NE(Parts().PageViewMgr()->GetViewer(), nullptr);
    ExpectUsable();
}

TEST_F(HostHandlersTest, ClosingInsideClosingClosesOnce) {
    Open();
    events.clear();
    InEvent("CloseDoc", [&] {
        pControl->CloseDocument();
        EXPECT_EQ(pControl->GetPageCount(), 0); // commands find no document by now
        pControl->GotoPage(2);
        EXPECT_EQ(pControl->GetScale(), 0.0F);
    });
    pControl->CloseDocument();
    EXPECT_EQ(DocEvents(), (Strings{"CloseDoc 0 0"}));
    ExpectUsable();
}

TEST_F(HostHandlersTest, AHostThatReplacesEveryDocumentDoesNotHangAnOpen) {
    Open();
    int nReplaced = 0;
    pControl->CloseDocEvent.add([&](const auto&, const auto&) {
        if (++nReplaced < 50) {
            pControl->SetPDFDoc(pEngine->MakeLoadedDoc());
        }
    });
    EXPECT_EQ(Open("new.pdf"), ErrorCode::e_ErrSuccess);
    EXPECT_LT(nReplaced, 50);
    EXPECT_EQ(pControl->GetDocumentFile()->Name(), "new.pdf");
}

TEST_F(HostHandlersTest, LettingGoOrDisposingInAnyEventEndsTheControlAfterIt) {
    for (const char* szEvent : {"PageLoaded", "PageVisible", "PageChanged", "Mode", "OpenDoc",
                                "PageUnloaded", "CloseDoc"}) {
        for (const bool bDispose : {false, true}) {
            SCOPED_TRACE(std::string(szEvent) + (bDispose ? " disposing" : " letting go"));
            auto pShort = Short();
            const std::weak_ptr<vkit::PDFViewCtrl> wkShort = pShort;
            InEvent(szEvent, [&] { bDispose ? pShort->Dispose() : pShort.reset(); });
            const auto opening = pShort->OpenPdfDocument(File(), "");
            host.Drain();
            EXPECT_EQ(opening.get(), ErrorCode::e_ErrSuccess);
            if (pShort && fnHook) { // it has not come to that event
                pShort->CloseDocument();
            }
            EXPECT_FALSE(fnHook);
            if (pShort) {
                EXPECT_THROW(pShort->GetPageCount(), Platform::ObjectDisposedException);
            }
            pShort.reset();
            host.Drain();
            EXPECT_TRUE(wkShort.expired());
        }
    }
    EXPECT_EQ(pEngine->LiveDocs(), 0);
}

TEST_F(HostHandlersTest, DisposingWhileADocumentIsReplacedAttachesNone) {
    for (const char* szEvent : {"PageUnloaded", "CloseDoc"}) {
        for (const bool bGiven : {false, true}) {
            SCOPED_TRACE(std::string(szEvent) + (bGiven ? " given" : " opened"));
            auto pShort = Short();
            Run(pShort->OpenPdfDocument(File(), ""));
            events.clear();
            InEvent(szEvent, [&] { pShort->Dispose(); });
            if (bGiven) {
                EXPECT_THROW(pShort->SetPDFDoc(pEngine->MakeLoadedDoc()),
                             Platform::ObjectDisposedException);
            } else {
                EXPECT_THROW(Run(pShort->OpenPdfDocument(File("b.pdf"), "")).get(),
                             Platform::ObjectDisposedException);
            }
            EXPECT_EQ(DocEvents(), (Strings{"CloseDoc 0 0"}));
            pShort.reset();
            host.Drain();
            EXPECT_EQ(pEngine->LiveDocs(), 0);
        }
    }
}

TEST_F(HostHandlersTest, AnEventTakesNoHandlerOnceTheControlIsDisposed) {
    auto pOwned = std::make_shared<int>(1);
    const auto token = pControl->OpenDocEvent.add([pOwned](auto&, auto&) {});
    pControl->Dispose();
    EXPECT_EQ(pOwned.use_count(), 1); // what handlers hold goes with the control
    EXPECT_NO_THROW(pControl->OpenDocEvent.remove(token));
    EXPECT_THROW(pControl->OpenDocEvent.add([](auto&, auto&) {}),
                 Platform::ObjectDisposedException);
    EXPECT_THROW(pControl->RenderPageEvent.add([](auto&, auto&) {}),
                 Platform::ObjectDisposedException);
}

TEST_F(HostHandlersTest, AnOpenThatOutlivesItsControlLeavesNothing) {
    auto pShort = vkit::PDFViewCtrl::Create();
    const auto forgotten = pShort->OpenPdfDocument(File(), "");
    pShort.reset();
    host.Drain();
    EXPECT_TRUE(forgotten.is_value());
    EXPECT_EQ(pEngine->LiveDocs(), 0);
    const auto opening = pControl->OpenPdfDocument(File(), "");
    pControl->Dispose();
    EXPECT_THROW(Run(opening).get(), Platform::ObjectDisposedException);
    EXPECT_EQ(pEngine->LiveDocs(), 0);
    EXPECT_THROW(pControl->OpenPdfDocument(File(), ""), Platform::ObjectDisposedException);
    EXPECT_NO_THROW(pControl->Dispose());
}

TEST_F(HostHandlersTest, DisconnectedSubscribersAreRemovedOthersFailTheStep) {
    int nCalls = 0;
    pControl->PageLoadedEvent.add([&](const auto&, const auto&) {
        ++nCalls;
        throw Platform::DisconnectedException();
    });
    Strings heard; // after one that goes while it is called
    pControl->PageLoadedEvent.add([&, strName = std::string(100, 'x')](const auto&, const auto&) {
        heard.push_back(strName);
    });
    EXPECT_EQ(Open(), ErrorCode::e_ErrSuccess);
    EXPECT_EQ(nCalls, 1);
    ASSERT_FALSE(heard.empty());
    EXPECT_EQ(heard.front(), std::string(100, 'x'));
    EXPECT_EQ(Open(), ErrorCode::e_ErrSuccess);
    EXPECT_EQ(nCalls, 1);
}

}
}
