// Real files for one test, and a hand on the system calls behind them.
//
// A document of the right kind for any test of the layers above:
//
//     const TemporaryFolder folder;
//     StorageCalls calls;
//     const auto pFile = folder.File(folder.WriteSparse("a.pdf", 40'000'000));
//     calls.Fail("pread", EIO, 2);
//
// File operations run and end on the storage's own threads: wait for a result
// (`TestHost::WaitUntil`, `Drain`), never for a time.
#pragma once

#include <stdlib.h> // mkdtemp
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/concurrency/Scheduler.h"
#include "platform/storage/StorageFaults.h"
#include "platform/storage/StorageFile.h"

// A folder for one test; goes with everything in it.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string strName = (std::filesystem::temp_directory_path() / "velko-test-XXXXXX");
        if (::mkdtemp(strName.data()) == nullptr) {
            throw std::runtime_error("no temporary folder");
        }
        m_strPath = strName;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_strPath, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& Path() const { return m_strPath; }
    std::string operator/(const std::string& strName) const { return m_strPath + "/" + strName; }

    // These give the path. The first writes a file in place: the same file, if
    // it is there, with other bytes.
    std::string Write(const std::string& strName, const std::string& strBytes) const {
        std::ofstream(*this / strName, std::ios::binary) << strBytes;
        return *this / strName;
    }
    // Cuts the file, or lengthens it by a hole that takes no room on the disk.
    std::string Resize(const std::string& strName, std::uint64_t nSize) const {
        std::filesystem::resize_file(*this / strName, nSize);
        return *this / strName;
    }
    std::string WriteSparse(const std::string& strName, std::uint64_t nSize,
                            const std::string& strHead = {}) const {
        Write(strName, strHead);
        return Resize(strName, nSize);
    }
    // Puts another file in its place, as programs do that save with care.
    std::string Replace(const std::string& strName, const std::string& strBytes) const {
        std::filesystem::rename(Write(strName + "~", strBytes), *this / strName);
        return *this / strName;
    }
    std::string Read(const std::string& strName) const {
        if (std::filesystem::is_directory(*this / strName)) {
            return {};
        }
        std::ifstream in(*this / strName, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    // How many entries the folder has, hidden ones too.
    std::size_t Entries() const {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(m_strPath), {}));
    }

    // The file of a path, as hosts get it; raises when there is none.
    static std::shared_ptr<Windows::Storage::StorageFile> File(const std::string& strPath) {
        return Windows::Storage::StorageFile::GetFileFromPathAsync(strPath).AsTask().get();
    }

private:
    std::string m_strPath;
};

// Every system call of the storage while this lives: counted, and on order
// failed, held, or met with an act of the test. One at a time. Threads: any.
class StorageCalls {
public:
    StorageCalls() {
        Windows::Storage::SetStorageFaultHook(
            [pState = m_pState](const char* pszCall) { return pState->Ask(pszCall); });
        const std::lock_guard<std::mutex> lock(s_currentLock);
        s_pCurrent = m_pState;
    }
    ~StorageCalls() {
        Release();
        const std::lock_guard<std::mutex> lock(s_currentLock);
        s_pCurrent = nullptr;
        Windows::Storage::SetStorageFaultHook({});
    }
    StorageCalls(const StorageCalls&) = delete;
    StorageCalls& operator=(const StorageCalls&) = delete;

    // The `nNth` call of that name from now on (1 is the next; no name is any
    // call) fails with the error number, with `bForEver` all later ones too.
    void Fail(const std::string& strCall, int nError, int nNth = 1, bool bForEver = false) {
        Order(strCall, nNth, bForEver, [nError] { return nError; });
    }
    // Runs `fnAct` just before the call, on the thread of the call.
    void Before(const std::string& strCall, std::function<void()> fnAct, int nNth = 1) {
        Order(strCall, nNth, false, [fnAct = std::move(fnAct)] {
            fnAct();
            return 0;
        });
    }
    // Ends what `Fail` and `Before` have ordered.
    void Pass() {
        const std::lock_guard<std::mutex> lock(m_pState->lock);
        m_pState->orders.clear();
    }
    // How many orders have been carried out since the last `Pass`.
    int Struck() const {
        const std::lock_guard<std::mutex> lock(m_pState->lock);
        int nStruck = 0;
        for (const OneOrder& order : m_pState->orders) {
            nStruck += order.nStruck;
        }
        return nStruck;
    }

    // Calls of that name wait from now on, each on its thread, until `Release`.
    void Hold(const std::string& strCall) {
        const std::lock_guard<std::mutex> lock(m_pState->lock);
        m_pState->strHeld = strCall;
    }
    void Release() {
        const std::lock_guard<std::mutex> lock(m_pState->lock);
        m_pState->strHeld.clear();
        m_pState->changed.notify_all();
    }
    // Waits until so many calls are held; false when they do not come.
    bool WaitForHeld(int nCalls = 1) const {
        std::unique_lock<std::mutex> lock(m_pState->lock);
        return m_pState->changed.wait_for(lock, std::chrono::seconds(20),
                                          [&] { return m_pState->nHeld >= nCalls; });
    }

    // Calls of that name so far, of any name without one; on that thread alone
    // when one is given.
    int Count(const std::string& strCall = {}, std::thread::id thread = {}) const {
        const std::lock_guard<std::mutex> lock(m_pState->lock);
        int nCount = 0;
        for (const auto& [strName, id] : m_pState->calls) {
            nCount += Fits(strCall, strName) && (thread == std::thread::id() || thread == id);
        }
        return nCount;
    }
    std::vector<std::string> Names() const { // in the order of the calls
        const std::lock_guard<std::mutex> lock(m_pState->lock);
        std::vector<std::string> names;
        for (const auto& [strName, id] : m_pState->calls) {
            names.push_back(strName);
        }
        return names;
    }

    // For calls that a test puts before the orders itself; 0 to let it pass.
    static int AskCurrent(const char* pszCall) {
        std::shared_ptr<State> pState;
        {
            const std::lock_guard<std::mutex> lock(s_currentLock);
            pState = s_pCurrent;
        }
        return pState ? pState->Ask(pszCall) : 0;
    }

private:
    struct OneOrder {
        std::string strCall;
        int nLeft = 1; // calls until it is its turn
        bool bForEver = false;
        std::function<int()> fnAct;
        int nStruck = 0;
    };

    static bool Fits(const std::string& strAsked, const std::string& strCall) {
        return strAsked.empty() || strAsked == strCall;
    }

    struct State {
        std::mutex lock; // guards everything; not held while an act runs or a call waits
        std::condition_variable changed;
        std::vector<OneOrder> orders;
        std::vector<std::pair<std::string, std::thread::id>> calls;
        std::string strHeld;
        int nHeld = 0;

        int Ask(const std::string& strCall) {
            std::unique_lock<std::mutex> hold(lock);
            calls.emplace_back(strCall, std::this_thread::get_id());
            std::function<int()> fnAct = TakeTurn(strCall);
            WaitWhileHeld(hold, strCall);
            hold.unlock();
            return fnAct ? fnAct() : 0;
        }

        std::function<int()> TakeTurn(const std::string& strCall) {
            for (OneOrder& order : orders) {
                if (!Fits(order.strCall, strCall) || order.nLeft == 0 || --order.nLeft > 0) {
                    continue;
                }
                order.nLeft = order.bForEver ? 1 : 0;
                ++order.nStruck;
                return order.fnAct;
            }
            return nullptr;
        }

        void WaitWhileHeld(std::unique_lock<std::mutex>& hold, const std::string& strCall) {
            if (strHeld != strCall) {
                return;
            }
            const concurrency::blocking_scope blocking;
            ++nHeld;
            changed.notify_all();
            changed.wait(hold, [&] { return strHeld != strCall; });
            --nHeld;
        }
    };

    void Order(const std::string& strCall, int nNth, bool bForEver, std::function<int()> fnAct) {
        const std::lock_guard<std::mutex> lock(m_pState->lock);
        m_pState->orders.push_back({strCall, nNth, bForEver, std::move(fnAct)});
    }

    static inline std::mutex s_currentLock;
    static inline std::shared_ptr<State> s_pCurrent;
    const std::shared_ptr<State> m_pState = std::make_shared<State>();
};
