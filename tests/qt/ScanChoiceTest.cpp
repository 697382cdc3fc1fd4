// What becomes of scans in the dark, chosen in the menu.
#include <gtest/gtest.h>

#include <QMenu>

#include "app/viewer/ColorMenu.h"
#include "tests/qt/WindowFixture.h"

namespace velko {
namespace {

using testing::RunUntil;

class ScanChoiceTest : public testing::WindowFixture {
protected:
    QString WriteScan() {
        testing::PdfOptions options;
        options.images = {{1, 1, "\xF0\xF0\xF0"}};
        testing::PdfPage page;
        page.strContent = "q 612 0 0 792 0 0 cm /I1 Do Q";
        return Write("scan.pdf", testing::MakePdf({page}, options));
    }
    // In the menu and on the screen.
    bool Choose(int nChoice, int nLeast, int nMost) {
        auto& view = m_pWindow->View();
        viewer::ColorMenu menu(view, new QAction(&view), m_pWindow.get());
        const auto choices = menu.actions().last()->menu()->actions();
        choices[nChoice]->trigger();
        const bool bDrawn = RunUntil([&] {
            const QImage frame = view.Window().FrontImage();
            const int nLight = frame.pixelColor(frame.rect().center()).lightness();
            return view.IsSharp() && nLight >= nLeast && nLight <= nMost;
        });
        emit menu.aboutToShow();
        return bDrawn && choices[nChoice]->isChecked();
    }
};

TEST_F(ScanChoiceTest, TheChoiceShowsAtOnceAndIsKept) {
    ASSERT_TRUE(ShowUntilSharp(WriteScan()));
    m_pWindow->View().SetNightMode(true);
    EXPECT_TRUE(Choose(0, 30, 60));
    EXPECT_TRUE(Choose(2, 240, 240));
    EXPECT_TRUE(Choose(1, 120, 170));
    const vkit::VelkoPdfView other;
    EXPECT_EQ(other.ScanColors(), common::ScanColors::Dimmed);
}

}
}
