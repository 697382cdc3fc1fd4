#include "bench/ControlUnderTest.h"

#include <chrono>
#include <cstdlib>
#include <iostream>

#include "control/PDFViewCtrl.h"
#include "viewers/core/IPDFViewer.h"
#include "viewers/core/ViewerInspection.h"

namespace velko::bench {

namespace {

constexpr std::chrono::minutes kLimit{2};

replay::Options OptionsOf(std::int32_t nWidth, std::int32_t nHeight) {
    replay::Options options;
    options.nWidth = nWidth;
    options.nHeight = nHeight;
    return options;
}

[[noreturn]] void Fail(const std::string& strWhat) {
    std::cerr << strWhat << std::endl;
    std::exit(1);
}

}

ControlUnderTest::ControlUnderTest(std::int32_t nWidth, std::int32_t nHeight)
    : m_pNowhere(std::fopen("/dev/null", "w")),
      m_output(m_pNowhere.get()),
      m_session(OptionsOf(nWidth, nHeight), m_output) {}

void ControlUnderTest::Open(const std::string& strPath) {
    const auto opening = Control().OpenPdfDocument(strPath, std::string());
    if (m_session.Await(opening) != velko::common::ErrorCode::e_ErrSuccess) {
        Fail("cannot open " + strPath);
    }
}

void ControlUnderTest::Close() {
    Control().CloseDocument();
}

bool ControlUnderTest::IsSharp(std::int32_t nPage) {
    const auto pViewer =
        std::dynamic_pointer_cast<velko::vkit::IViewerInspection>(m_session.Viewer());
    const velko::vkit::ViewerState state = pViewer->Inspect();
    for (const auto& item : state.items) {
        if (nPage != kAllPages && item.nPageIndex != nPage) {
            continue;
        }
        for (const auto& block : item.blocks) {
            if (block.bIsDisplay && !block.bHasBitmap) {
                return false;
            }
        }
    }
    return !state.items.empty();
}

void ControlUnderTest::RunUntilSharp(std::int32_t nPage) {
    m_session.RunUntil([&] { return IsSharp(nPage); }, std::chrono::steady_clock::now() + kLimit);
    if (!IsSharp(nPage)) {
        Fail("the screen did not become sharp");
    }
}

void ControlUnderTest::RunUntilIdle() {
    if (!m_session.WaitUntilIdle(kLimit).empty()) {
        Fail("the control did not come to rest");
    }
}

}
