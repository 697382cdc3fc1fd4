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
// It keeps the whole contract of `document/engine`: sizes with rotation, the
// display matrix, drawing clipped to the page, the abort flag (looked at
// before a drawing, at a gate, and once a row), annotations, passwords.
//
// Threads: script before the call that it is about; everything may be called
// from any thread. No lock of the engine is held while a hook runs or a gate waits.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "document/engine/ErrorCode.h"
#include "document/engine/PDFDoc.h"
#include "tests/support/scripted_engine/EngineCall.h"
#include "tests/support/scripted_engine/Gate.h"
#include "tests/support/scripted_engine/ScriptedPage.h"

namespace velko::testing {

class EngineScript;

class ScriptedEngine : public std::enable_shared_from_this<ScriptedEngine> {
public:
    static constexpr std::int32_t kAnyPage = -1;
    using Hook = std::function<void(const EngineCall&)>;

    explicit ScriptedEngine(std::vector<ScriptedPage> pages = MakePages(1));

    // Registers an engine's factories for its own length.
    class Registration {
    public:
        explicit Registration(std::shared_ptr<ScriptedEngine> pEngine);
        ~Registration();
        Registration(const Registration&) = delete;
        Registration& operator=(const Registration&) = delete;
    };

    // A document without a reader, loaded; for tests that need no file.
    std::shared_ptr<pdf::PDFDoc> MakeLoadedDoc();

    // The script. Pages are taken by a document at its `Load`.
    void SetPages(std::vector<ScriptedPage> pages);
    void SetPasswords(std::string strUser, std::string strOwner);
    void SetPermissions(std::uint32_t nPermissions);     // for the user password
    void SetEncryptionType(std::int32_t nType);          // 0 by default
    void SetLoadReads(bool bReads);                      // `Load` reads the file's head and end
    void QueueLoadResult(common::ErrorCode eCode);       // the next `Load` answers this
    void CutShort(std::int32_t nPage, bool bCut);        // its renders run out of their time
    void SetSavedBytes(std::vector<std::uint8_t> bytes); // what a save writes to the file's path

    // Makes calls wait; one gate per operation and page, the last one counts.
    std::shared_ptr<Gate> Hold(EngineOp eOp, std::int32_t nPage = kAnyPage);

    // Makes the N-th call from now (1 is the next) raise, once; and every call
    // about a page. `Load` answers the code, `StartParse` hands it to the caller.
    void FailCall(EngineOp eOp, int nCall,
                  common::ErrorCode eCode = common::ErrorCode::e_ErrUnknown);
    void FailPage(EngineOp eOp, std::int32_t nPage,
                  common::ErrorCode eCode = common::ErrorCode::e_ErrUnknown);
    void ClearFailures();
    int FailuresRaised() const; // how often a scripted failure struck

    // Runs on the calling thread when a call arrives, logged, before its gate.
    // A hook may do anything, also raise; the call raises the same.
    void OnCall(EngineOp eOp, Hook fnHook);

    // The log, in order of arrival.
    std::vector<EngineCall> Calls() const;
    std::vector<EngineCall> Calls(EngineOp eOp) const;
    int Count(EngineOp eOp, std::int32_t nPage = kAnyPage) const;
    void ClearLog();

    // Renders that were broken off by their abort flag, and objects alive now.
    int AbortedRenders() const;
    int LiveDocs() const;
    int LivePages() const;
    int LiveBitmaps() const;

    // Most renders that ran at the same moment.
    int PeakRenders() const;

private:
    std::shared_ptr<EngineScript> m_pScript; // shared with the engine's objects
};

}
