// Opens and closes at once with the real pool; for the thread sanitizer.

#include <random>

#include "control/PDFViewCtrl.h"
#include "platform/fake/CountingGraphicsFactory.h"
#include "platform/fake/TestHost.h"
#include "settings/AppConfig.h"
#include "tests/support/FileOnDisk.h"
#include "tests/support/scripted_engine/ScriptedEngine.h"

#include <gtest/gtest.h>

namespace velko::testing {
namespace {

using Platform::Fake::TestHost;

TEST(ControlStress, OpensMovesAndClosesInAnyOrder) {
    const TemporaryFolder folder;
    const auto pFile = TemporaryFolder::File(folder.Write("stress.pdf", std::string(5000, '%')));
    TestHost host{TestHost::RealPool{3}};
    host.Environment().SetGraphicsFactory(
        std::make_shared<Platform::Fake::CountingGraphicsFactory>());
    const auto pEngine = std::make_shared<ScriptedEngine>(MakePages(6, 300.0F, 400.0F));
    const ScriptedEngine::Registration registration(pEngine);
    std::atomic<int> nRendered = 0;
    std::mt19937 random(4711);
    constexpr int kRounds = 120;
    int nEnded = 0;
    for (int nRound = 0; nRound < kRounds; ++nRound) {
        auto pControl = vkit::PDFViewCtrl::Create();
        pControl->RenderPageEvent.add([&](const auto&, const auto&) { ++nRendered; });
        pControl->ApplyTemplate();
        pControl->Arrange({200, 300});
        const auto first = pControl->OpenPdfDocument(pFile, "");
        const auto second = pControl->OpenPdfDocument(pFile, "");
        const auto nAct = random() % 4;
        if (nAct != 0) {
            ASSERT_TRUE(host.WaitUntil([&] { return first.is_done() && second.is_done(); }));
            pControl->GotoLastPage();
            pControl->MoveScreen(-150, 0);
        }
        if (nAct == 3 && nRound % 5 == 0) { // some get as far as a render, on any machine
            const int nBefore = nRendered;
            ASSERT_TRUE(host.WaitUntil([&] { return nRendered > nBefore; }));
        }
        if (nAct == 1) {
            pControl->CloseDocument();
        } else if (nAct == 2) {
            pControl->Dispose();
        }
        pControl.reset();
        ASSERT_TRUE(host.WaitUntil([&] { return first.is_done() && second.is_done(); }));
        nEnded += first.is_value() + second.is_value();
    }
    host.Drain();
    EXPECT_EQ(nEnded, 2 * kRounds);
    EXPECT_GT(nRendered, 0);
    EXPECT_EQ(pEngine->LiveDocs(), 0);
    vkit::AppConfig::Close();
}

}
}
