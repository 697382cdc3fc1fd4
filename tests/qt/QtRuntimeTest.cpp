// Making and ending the platform: in one order, and whole or not at all.
#include "platform/qt/QtRuntime.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>
#include <memory>
#include <string>

#include "platform/foundation/Exception.h"
#include "platform/storage/ApplicationData.h"

namespace velko::testing {

using Platform::Qt::QtRuntime;
using Windows::Storage::ApplicationData;

namespace {

// Says at its end whether the environment was still in force.
struct AtItsEnd {
    explicit AtItsEnd(bool& bSeen) : bSeenEnvironment(bSeen) {}
    ~AtItsEnd() { bSeenEnvironment = Platform::Environment() != nullptr; }
    bool& bSeenEnvironment;
};

TEST(QtRuntimeTest, WhatIsPostedUntilTheEndGoesUnrunWhileTheEnvironmentStands) {
    bool bRan = false;
    bool bSeenEnvironment = false;
    {
        const QtRuntime runtime({});
        const auto pDispatcher = runtime.Environment()->Dispatcher();
        concurrency::task_pool()->schedule(
            [&bRan, pDispatcher, pOwned = std::make_shared<AtItsEnd>(bSeenEnvironment)] {
                pDispatcher->post(concurrency::priority::normal, [&bRan, pOwned] { bRan = true; });
            });
        while (pDispatcher->PendingCount() == 0) {
            std::this_thread::yield();
        }
    }
    EXPECT_FALSE(bRan);
    EXPECT_TRUE(bSeenEnvironment);
    EXPECT_THROW(Platform::Environment(), Platform::Exception);
    EXPECT_THROW(concurrency::task_pool(), Platform::Exception);
    EXPECT_THROW(ApplicationData::Current(), Platform::Exception);
}

TEST(QtRuntimeTest, ItsOwnFolderGoesAndWhatIsSetStaysWhereItCan) {
    const QTemporaryDir folder;
    QDir folderOfOwn;
    std::shared_ptr<ApplicationData> pHeld;
    {
        QtRuntime runtime({});
        runtime.UseTemporaryData("velko-test-XXXXXX");
        folderOfOwn.setPath(QString::fromStdString(ApplicationData::Current()->LocalFolder()));
        EXPECT_TRUE(folderOfOwn.exists());
        runtime.UseData("/proc/nowhere");
        ApplicationData::Current()->MostRecentlyUsedList()->Add("/x", "/x");
        EXPECT_EQ(ApplicationData::Current()->MostRecentlyUsedList()->Entries().size(), 1U);
        runtime.UseData(folder.filePath("data").toStdString());
        EXPECT_TRUE(ApplicationData::Current()->MostRecentlyUsedList()->Entries().empty());
        pHeld = ApplicationData::Current();
        pHeld->MostRecentlyUsedList()->Add("/y", "/y");
    }
    EXPECT_FALSE(folderOfOwn.exists());
    const auto pAgain =
        Windows::Storage::OpenApplicationData(folder.filePath("data").toStdString());
    EXPECT_EQ(pAgain->MostRecentlyUsedList()->Entries().size(), 1U) << "stored by the end";
}

}

}
