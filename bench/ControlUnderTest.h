// The real control for a benchmark, without its events being printed.
//
// Make an application object first. Threads: the UI thread.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "tools/replay/Output.h"
#include "tools/replay/Session.h"

namespace velko::bench {

class ControlUnderTest {
public:
    ControlUnderTest(std::int32_t nWidth, std::int32_t nHeight); // device pixels

    velko::vkit::PDFViewCtrl& Control() { return m_session.Control(); }
    replay::Session& Session() { return m_session; }

    // Opens the document; returns when its first layout stands. Ends the
    // program when it cannot be opened.
    void Open(const std::string& strPath);
    void Close();

    // Runs the UI until every block on the screen (of page `nPage` alone when
    // it is given) has its picture.
    void RunUntilSharp(std::int32_t nPage = kAllPages);
    void RunUntilIdle();

    static constexpr std::int32_t kAllPages = -1;

private:
    bool IsSharp(std::int32_t nPage);

    struct CloseFile {
        void operator()(std::FILE* pFile) const { std::fclose(pFile); }
    };
    std::unique_ptr<std::FILE, CloseFile> m_pNowhere;
    replay::Output m_output;
    replay::Session m_session;
};

}
