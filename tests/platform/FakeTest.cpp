#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>

#include "platform/concurrency/Task.h"
#include "platform/fake/TestHost.h"
#include "platform/foundation/Exception.h"
#include "platform/storage/DataReaderWriter.h"

namespace {

using concurrency::priority;
using Platform::Fake::FileCompletion;
using Platform::Fake::FileFailure;
using Platform::Fake::MemoryStorageFile;
using Platform::Fake::TestHost;
using Windows::Foundation::AsyncStatus;
using Windows::Storage::FileAccessMode;
using namespace std::chrono_literals;

TEST(ManualDispatcherTest, RunsByPriorityThenAgeAndLogsAThrowingWork) {
    TestHost host;
    std::string strOrder;
    const auto fnPost = [&](priority ePriority, char c) {
        host.Dispatcher().post(ePriority, [&, c] { strOrder += c; });
    };
    fnPost(priority::low, 'd');
    fnPost(priority::normal, 'b');
    fnPost(priority::idle, 'e');
    fnPost(priority::high, 'a');
    fnPost(priority::normal, 'c');
    EXPECT_EQ(host.Dispatcher().Pending(priority::normal), 2U);
    host.Dispatcher().post(priority::high, [] { throw Platform::ReadFaultException("tick"); });
    EXPECT_EQ(host.Dispatcher().RunAll(), 6U);
    EXPECT_EQ(strOrder, "abcde");
    EXPECT_EQ(host.CountDebug("unhandled failure in the dispatcher: "
                              "Platform::ReadFaultException: tick\n"),
              1U);
}

TEST(ManualSchedulerTest, RunsInAnyOrderAwayFromTheUi) {
    TestHost host;
    std::string strOrder;
    for (const char c : {'a', 'b', 'c', 'd'}) {
        host.Pool().schedule([&, c] {
            EXPECT_FALSE(host.Dispatcher().HasThreadAccess());
            EXPECT_EQ(concurrency::context::current(), nullptr);
            strOrder += c;
        });
    }
    EXPECT_TRUE(host.Pool().Run(1));
    EXPECT_TRUE(host.Pool().RunNewest());
    EXPECT_TRUE(host.Pool().Drop(0));
    EXPECT_FALSE(host.Pool().Run(5));
    host.Drain();
    EXPECT_EQ(strOrder, "bdc");
    EXPECT_TRUE(host.Dispatcher().HasThreadAccess());
    bool bElsewhere = true;
    std::thread([&] { bElsewhere = host.Dispatcher().HasThreadAccess(); }).join();
    EXPECT_FALSE(bElsewhere);
}

TEST(ManualClockTest, TimersTickInTheOrderOfTheirTimes) {
    TestHost host;
    std::string strTicks;
    const auto pFast = host.Environment().CreateTimer();
    const auto pSlow = host.Environment().CreateTimer();
    pFast->Interval(200ms);
    pSlow->Interval(500ms);
    pFast->Tick.add([&] { strTicks += 'f'; });
    pSlow->Tick.add([&] {
        strTicks += 's';
        pSlow->Stop();
    });
    pSlow->Start();
    pFast->Start();
    host.Clock().Advance(499ms);
    EXPECT_EQ(strTicks, "ff");
    pFast->Start(); // begins anew: due at 699
    host.Clock().Advance(201ms);
    EXPECT_EQ(strTicks, "ffsf");
    EXPECT_FALSE(pSlow->IsEnabled());
    EXPECT_EQ(host.Clock().RunningTimers(), 1U);
    pFast->Tick.add([] { throw std::runtime_error("tick broke"); });
    host.Clock().Advance(200ms);
    EXPECT_TRUE(host.DebugContains("tick broke"));
    EXPECT_EQ(host.Clock().Now(), 900ms);
}

TEST(MemoryStorageFileTest, OperationsEndWhereTheTestSays) {
    TestHost host;
    const auto pFile = MemoryStorageFile::Create("/memory/a.pdf", {1, 2, 3, 4, 5});
    EXPECT_EQ(pFile->Name(), "a.pdf");
    EXPECT_EQ(pFile->GetBasicPropertiesAsync().GetResults().Size, 5U);

    pFile->SetCompletion(FileCompletion::OnDemand);
    const auto open = pFile->OpenAsync(FileAccessMode::Read);
    EXPECT_EQ(open.Status(), AsyncStatus::Started);
    EXPECT_TRUE(pFile->CompleteOne());
    EXPECT_FALSE(pFile->CompleteOne());
    const auto pStream = open.GetResults();

    pFile->SetCompletion(FileCompletion::OwnThread);
    std::thread::id idEnded;
    const auto pReader = Windows::Storage::Streams::DataReader::CreateDataReader(pStream);
    pStream->Seek(3);
    const auto load = pReader->LoadAsync(100);
    load.Completed([&](const auto&, AsyncStatus) { idEnded = std::this_thread::get_id(); });
    EXPECT_TRUE(host.WaitUntil([&] { return load.Status() != AsyncStatus::Started; }));
    EXPECT_EQ(load.GetResults(), 2U);
    EXPECT_EQ(pReader->ReadBuffer(2)->Bytes()[1], 5);
    EXPECT_EQ(pFile->Reads(), (std::vector<MemoryStorageFile::ReadRecord>{{3, 100}}));
}

TEST(MemoryStorageFileTest, FailuresAreThoseOfTheScriptAlsoThroughAPin) {
    const TestHost host;
    const auto pFile = MemoryStorageFile::Create("/memory/a.pdf", {1, 2, 3});
    const auto pPin = pFile->PinForReading();
    pFile->SetBytes({9});
    EXPECT_EQ(pPin->GetBasicPropertiesAsync().GetResults().Size, 3U);
    const auto pStream = pPin->OpenAsync(FileAccessMode::Read).GetResults();
    pFile->FailRead(2, FileFailure::ReadFault);
    EXPECT_EQ(pStream->ReadAsync(1).Status(), AsyncStatus::Completed);
    EXPECT_THROW(pStream->ReadAsync(1).GetResults(), Platform::ReadFaultException);
    EXPECT_EQ(pStream->ReadAsync(1).Status(), AsyncStatus::Completed);
    pFile->FailRead(1, FileFailure::Canceled, true);
    EXPECT_EQ(pStream->ReadAsync(1).Status(), AsyncStatus::Canceled);
    EXPECT_EQ(pStream->ReadAsync(1).Status(), AsyncStatus::Canceled);
    pFile->FailOpen(FileFailure::AccessDenied);
    EXPECT_THROW(pPin->OpenAsync(FileAccessMode::Read).GetResults(),
                 Platform::AccessDeniedException);
}

}
