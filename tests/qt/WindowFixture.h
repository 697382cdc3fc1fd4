// The viewer's window with its bar, shown, for tests.
//
// Threads: the UI thread.
#pragma once

#include <memory>

#include "app/viewer/CommandLine.h"
#include "app/viewer/MainWindow.h"
#include "tests/qt/ViewFixture.h"

namespace velko::testing {

class WindowFixture : public ViewFixture {
protected:
    WindowFixture() {
        m_pWindow->Begin({}, {});
        m_pWindow->show();
        m_pWindow->activateWindow();
        EXPECT_TRUE(RunUntil([this] { return m_pWindow->isActiveWindow(); }));
    }
    ~WindowFixture() override { m_pWindow.reset(); }

    bool ShowUntilSharp(const QString& strFile) {
        return OpenUntilSharp(m_pWindow->View(), strFile) && Settles(m_pWindow->View());
    }

    std::unique_ptr<viewer::MainWindow> m_pWindow = std::make_unique<viewer::MainWindow>(
        vkit::VelkoPdfView::CreateControl(), viewer::CommandLine::kDefaultSize);
};

}
