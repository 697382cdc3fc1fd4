// An engine for tests: pages, delays and failures by script, and a log.
//
// A test makes one, scripts it, registers it under the engine's class names and
// looks afterwards at what was asked of it:
//
//     auto pEngine = std::make_shared<ScriptedEngine>(MakePages(10));
//     ScriptedEngine::Registration registration(pEngine);
//     auto pGate = pEngine->Hold(EngineOp::StartRender, 3);
//     ... the code under test renders; the render of page 3 waits ...
//     pGate->Open();
//     EXPECT_EQ(pEngine->Count(EngineOp::StartRender), 2);
//
// It passes the tests of every engine (tests/engine); what it saves is the bytes that it
// read and "edits N\n". The abort flag is looked at before a drawing, at a gate, and once
// a row.
//
// Threads: script before the call that it is about; everything may be called
// from any thread. No lock of the engine is held while a hook runs or a gate waits.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "document/engine/ErrorCode.h"
#include "document/engine/PDFDoc.h"
#include "tests/support/scripted_engine/Gate.h"
#include "tests/support/scripted_engine/ScriptedPage.h"

namespace velko::testing {

// The operations that a script can hold, fail and count.
enum class EngineOp {
    CreateDoc,
    Load,
    GetPage,
    StartParse,
    GetAnnotCount,
    GetAnnot,
    CreateBitmap,
    CreateRenderer,
    StartRender, // of pages set anew too
    RenderAnnot,
    Reflow,
    ReleaseReader,
    Edit,
    StartSaveAs,
    SaveStep, // by its number, as `nIndex`
};

// How saves go: in so many steps, none being nothing to save, to the last answer.
struct SaveScript {
    std::int32_t nSteps = 2;
    std::int32_t nResult = common::Progressive::kFinished;
};

struct EngineCall {
    EngineCall(EngineOp op = EngineOp::Load, std::int32_t nOfPage = -1, std::int32_t nOfIndex = -1)
        : eOp(op), nPage(nOfPage), nIndex(nOfIndex) {}

    EngineOp eOp;
    std::int32_t nPage;  // the page that it is about; -1 for none
    std::int32_t nIndex; // the annotation's index in its page; -1 for none

    // Renders: page space to the bitmap, the bitmap's size, the renderer's state.
    common::vxbase::Matrix2D matrix;
    std::int32_t nWidth = 0;
    std::int32_t nHeight = 0;
    std::int32_t nColorMode = 0;
    std::uint32_t nBackColor = 0;
    std::uint32_t nForeColor = 0;
};

class ScriptedEngine : public std::enable_shared_from_this<ScriptedEngine> {
public:
    static constexpr std::int32_t kAnyPage = -1;
    using Hook = std::function<void(const EngineCall&)>;

    // What a document takes at its `Load`.
    struct Contents {
        std::vector<ScriptedPage> pages;
        std::string strUserPassword;
        std::string strOwnerPassword;
        std::uint32_t nPermissions = 0xFFFFFFFFU; // for the user password
        std::int32_t nEncryptionType = 0;
        bool bLoadReads = false; // `Load` reads the file's head and end
    };

    explicit ScriptedEngine(std::vector<ScriptedPage> pages = MakePages(1)) {
        SetPages(std::move(pages));
    }

    // Registers an engine's factories for its own length.
    class Registration {
    public:
        explicit Registration(const std::shared_ptr<ScriptedEngine>& pEngine);
        ~Registration();
        Registration(const Registration&) = delete;
        Registration& operator=(const Registration&) = delete;
    };

    // A document without a reader, loaded; for tests that need no file.
    std::shared_ptr<pdf::PDFDoc> MakeLoadedDoc();

    void SetPages(std::vector<ScriptedPage> pages);
    void SetPasswords(std::string strUser, std::string strOwner);
    void SetPermissions(std::uint32_t nPermissions);
    void SetEncryptionType(std::int32_t nType);
    void SetLoadReads(bool bReads);
    void QueueLoadResult(common::ErrorCode eCode); // the next `Load` answers this
    void CutShort(std::int32_t nPage, bool bCut);  // its renders run out of their time
    void SetSave(SaveScript script);

    // Makes calls wait; one gate per operation and page, the last one counts.
    std::shared_ptr<Gate> Hold(EngineOp eOp, std::int32_t nPage = kAnyPage);

    // Makes the N-th call from now (1 is the next) raise, once; and every call
    // about a page. `Load` answers the code.
    void FailCall(EngineOp eOp, int nCall,
                  common::ErrorCode eCode = common::ErrorCode::e_ErrUnknown);
    void FailPage(EngineOp eOp, std::int32_t nPage,
                  common::ErrorCode eCode = common::ErrorCode::e_ErrUnknown);
    void ClearFailures();
    int FailuresRaised() const { return m_nFailures; } // how often a scripted failure struck

    // Runs on the calling thread when a call arrives, logged, before its gate.
    // A hook may do anything, also raise; the call raises the same.
    void OnCall(EngineOp eOp, Hook fnHook);

    // The log, in order of arrival.
    std::vector<EngineCall> Calls() const;
    std::vector<EngineCall> Calls(EngineOp eOp) const;
    int Count(EngineOp eOp, std::int32_t nPage = kAnyPage) const;
    void ClearLog();

    // Renders that were broken off by their abort flag, objects alive now, and
    // the most renders that ran at the same moment.
    int AbortedRenders() const { return m_nAborted; }
    int LiveDocs() const { return m_nDocs; }
    int LivePages() const { return m_nPages; }
    int LiveBitmaps() const { return m_nBitmaps; }
    int PeakRenders() const { return m_nPeakRenders; }

    // --- for the engine's own objects ---

    // Counts itself in `nCounter` for its length.
    class Counted {
    public:
        explicit Counted(std::atomic<int>& nCounter) : m_nCounter(nCounter) { ++m_nCounter; }
        ~Counted() { --m_nCounter; }
        Counted(const Counted&) = delete;
        Counted& operator=(const Counted&) = delete;

    private:
        std::atomic<int>& m_nCounter;
    };

    // What every operation does first: logs the call, runs the hook, waits at
    // the gate, and raises what the script says. Raises `task_canceled` when
    // `pAbort` is set before or at the gate.
    void Arrive(const EngineCall& call, const std::atomic<bool>* pAbort = nullptr);
    void ThrowIfAborted(const std::atomic<bool>* pAbort);

    Contents GetContents() const;
    common::ErrorCode TakeLoadResult();
    bool IsCutShort(std::int32_t nPage) const;
    SaveScript GetSaveScript() const;

    std::atomic<int> m_nDocs = 0;
    std::atomic<int> m_nPages = 0;
    std::atomic<int> m_nBitmaps = 0;
    std::atomic<int> m_nRenders = 0;
    std::atomic<int> m_nPeakRenders = 0;
    std::atomic<int> m_nAborted = 0;
    std::atomic<int> m_nFailures = 0;

private:
    struct Failure {
        EngineOp eOp;
        std::int32_t nPage; // or any
        int nCallsToGo;     // 0: every call
        common::ErrorCode eCode;
    };

    bool TakeFailure(const EngineCall& call, common::ErrorCode* peCode);

    // Reads or changes what the lock guards.
    template <class Act>
    void Locked(const Act& fnAct) {
        const std::scoped_lock lock(m_mutex);
        fnAct();
    }

    mutable std::mutex m_mutex; // guards everything below
    Contents m_contents;
    std::deque<common::ErrorCode> m_loadResults;
    std::set<std::int32_t> m_cutShort;
    SaveScript m_save;
    std::map<std::pair<EngineOp, std::int32_t>, std::shared_ptr<Gate>> m_gates;
    std::vector<Failure> m_failures;
    std::map<EngineOp, Hook> m_hooks;
    std::vector<EngineCall> m_log;
};

}
