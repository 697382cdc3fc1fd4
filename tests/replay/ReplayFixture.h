// Files for the tests of this folder, and what each session begins with.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/replay/ReplayProcess.h"
#include "tests/support/FileOnDisk.h"
#include "tests/support/pdf_writer/PdfWriter.h"

namespace velko::testing {

// A page whose marks differ from page to page and from corner to corner.
inline PdfPage MarkedPage(int nPage) {
    PdfPage page;
    const std::string strShift = std::to_string(60 + nPage * 37 % 300);
    page.strContent = "1 0 0 rg 20 700 80 60 re f 0 0 1 rg 500 30 90 50 re f 0 0.6 0 rg " +
                      strShift + " 300 120 200 re f BT 0 0 0 rg /F1 24 Tf 72 640 Td (Page " +
                      std::to_string(nPage) + ") Tj ET";
    return page;
}

class ReplayFixture : public ::testing::Test {
protected:
    // Marked pages of 612x792 points.
    std::string WritePages(int nPages) const {
        std::vector<PdfPage> pages;
        for (int n = 0; n < nPages; ++n) {
            pages.push_back(MarkedPage(n));
        }
        return folder.Write("a.pdf", MakePdf(pages));
    }
    static QJsonObject Open(ReplayProcess& replay, const std::string& strPath) {
        return replay.Run({{"op", "open"}, {"path", QString::fromStdString(strPath)}});
    }
    static QJsonObject State(ReplayProcess& replay) { return replay.Run({{"op", "state"}}); }
    static void ExpectIdle(ReplayProcess& replay) {
        const QJsonObject waited = replay.Run({{"op", "wait"}, {"timeout_ms", 30000}});
        EXPECT_TRUE(waited.value("idle").toBool()) << "busy";
    }
    void ExpectOpens(ReplayProcess& replay, int nPages) const {
        EXPECT_EQ(Open(replay, WritePages(nPages)).value("error").toInt(-1), 0);
        ExpectIdle(replay);
    }

    const TemporaryFolder folder;
};

}
