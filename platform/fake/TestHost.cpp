#include "platform/fake/TestHost.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <mutex>
#include <stdexcept>

#include "platform/fake/OffUiScope.h"
#include "platform/storage/StorageActivity.h"
#include "platform/system/Debug.h"

namespace Platform::Fake {

using Windows::Storage::ApplicationData;

struct TestHost::Log {
    std::mutex lock;
    std::vector<std::string> texts;
};

namespace {

std::shared_ptr<ApplicationData> MakeData() {
    static std::atomic<int> s_nHosts = 0;
    const auto folder =
        std::filesystem::temp_directory_path() /
        ("velko-host-" + std::to_string(::getpid()) + "-" + std::to_string(++s_nHosts));
    return Windows::Storage::OpenApplicationData(folder);
}

}

TestHost::TestHost(ManualPool /*eKind*/) : TestHost(std::make_shared<ManualScheduler>(), nullptr) {}

TestHost::TestHost(RealPool pool)
    : TestHost(nullptr, std::make_shared<concurrency::ThreadPool>(pool.nThreads)) {}

TestHost::TestHost(std::shared_ptr<ManualScheduler> pManualPool,
                   std::shared_ptr<concurrency::ThreadPool> pRealPool)
    : m_pData(MakeData()),
      m_pLog(std::make_shared<Log>()),
      m_pManualPool(std::move(pManualPool)),
      m_pRealPool(std::move(pRealPool)) {
    if (m_pManualPool) {
        concurrency::set_task_pool(m_pManualPool);
    } else {
        concurrency::set_task_pool(m_pRealPool);
    }
    m_fnSinkBefore = Debug::SetSink([pLog = m_pLog](std::string_view strText) {
        const std::lock_guard<std::mutex> lock(pLog->lock);
        pLog->texts.emplace_back(strText);
    });
    SetEnvironment(m_pEnvironment);
    ApplicationData::SetCurrent(m_pData);
    m_context.emplace(m_pDispatcher);
}

TestHost::~TestHost() {
    if (m_pManualPool) {
        m_pManualPool->ShutDown();
    }
    if (m_pRealPool) {
        m_pRealPool->stop();
    }
    concurrency::set_task_pool(nullptr);
    m_pDispatcher->ShutDown();
    m_context.reset();
    ApplicationData::SetCurrent(nullptr);
    m_pData->Flush();        // so that no file thread makes the folder again
    std::error_code ignored; // a folder that stays is no fault of the test
    std::filesystem::remove_all(m_pData->LocalFolder(), ignored);
    SetEnvironment(nullptr);
    Debug::SetSink(std::move(m_fnSinkBefore));
}

ManualScheduler& TestHost::Pool() const {
    if (!m_pManualPool) {
        throw std::logic_error("the host runs a pool of real threads");
    }
    return *m_pManualPool;
}

bool TestHost::Step() {
    return m_pDispatcher->RunOne() || (m_pManualPool && m_pManualPool->RunOne());
}

bool TestHost::RunUntil(const std::function<bool()>& fnDone) {
    constexpr std::size_t kLimit = 1'000'000;
    for (std::size_t nStep = 0; nStep < kLimit; ++nStep) {
        if (fnDone()) {
            return true;
        }
        if (!Step()) {
            return fnDone();
        }
    }
    throw std::logic_error("works never end");
}

bool TestHost::WaitUntil(const std::function<bool()>& fnDone, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!RunUntil(fnDone)) {
        if (std::chrono::steady_clock::now() >= end) {
            return false;
        }
        m_pDispatcher->WaitForWork(std::chrono::milliseconds(1));
    }
    return true;
}

void TestHost::AwaitFiles() {
    while (Windows::Storage::AreFileOperationsPending()) {
        m_pDispatcher->WaitForWork(std::chrono::milliseconds(1));
    }
}

void TestHost::Drain() {
    const auto fnNothingLeft = [this] {
        // In this order: each may post to those after it, and the pool to files.
        return !Windows::Storage::AreFileOperationsPending() &&
               (!m_pRealPool || m_pRealPool->is_idle()) &&
               !Windows::Storage::AreFileOperationsPending() &&
               (!m_pManualPool || m_pManualPool->Pending() == 0) && m_pDispatcher->Pending() == 0;
    };
    if (!WaitUntil(fnNothingLeft)) {
        throw std::logic_error("the pool does not come to rest");
    }
}

std::vector<std::string> TestHost::DebugOutput() const {
    const std::lock_guard<std::mutex> lock(m_pLog->lock);
    return m_pLog->texts;
}

std::size_t TestHost::CountDebug(const std::string& strText) const {
    const std::vector<std::string> texts = DebugOutput();
    return static_cast<std::size_t>(std::count(texts.begin(), texts.end(), strText));
}

bool TestHost::DebugContains(const std::string& strPart) const {
    const std::vector<std::string> texts = DebugOutput();
    return std::any_of(texts.begin(), texts.end(), [&](const std::string& strText) {
        return strText.find(strPart) != std::string::npos;
    });
}

void TestHost::ClearDebug() {
    const std::lock_guard<std::mutex> lock(m_pLog->lock);
    m_pLog->texts.clear();
}

}
