// Fitting scales, zoom modes and the limits of a scale.

#include "tests/control/ControlFixture.h"

namespace velko::testing {
namespace {

class ZoomTest : public ControlFixture {
protected:
    ZoomTest() {
        Show(1000, 800); // pages of 600 x 800 points are 800 x 1066.67 at 96 dpi
        Open();
        pViewer = UseScriptedViewer();
    }
    std::shared_ptr<ScriptedViewer> pViewer;
};

TEST_F(ZoomTest, FitScalesOfUprightAndTurnedPages) {
    struct Case {
        int nRotate;
        int nMode;
        double dbFit;
    };
    const double dbWidth = 800.0;
    const double dbHeight = 800.0 / 72.0 * 96.0;
    const Case cases[] = {
        {0, 1, 800 / dbHeight},  {0, 2, 1000 / dbWidth},
        {0, 3, 800 / dbHeight},  {0, 0, 1.0},
        {1, 1, 800 / dbWidth},   {1, 2, 1000 / dbHeight},
        {1, 3, 800 / dbWidth},   {2, 1, 800 / dbHeight},
        {3, 2, 1000 / dbHeight},
    };
    for (const Case& test : cases) {
        pViewer->nRotate = test.nRotate;
        EXPECT_DOUBLE_EQ(pControl->GetFitScale(test.nMode), test.dbFit)
            << test.nRotate << " " << test.nMode;
    }
    pControl->Arrange({400, 800}); // now the width limits an upright page
    pViewer->nRotate = 0;
    EXPECT_DOUBLE_EQ(pControl->GetFitScale(1), 400 / dbWidth);
    pViewer->nRotate = 1; // but not a turned one
    EXPECT_DOUBLE_EQ(pControl->GetFitScale(1), 800 / dbWidth);
    host.Environment().SetLogicalDpi(192);
    EXPECT_DOUBLE_EQ(pControl->GetFitScale(1), 400 / dbWidth);
    Panel().CompositionScale(2.0F, 2.0F); // a fit divides logical sizes
    EXPECT_DOUBLE_EQ(pControl->GetFitScale(1), 400 / dbWidth);
    pViewer->nCurrentPage = 99; // no such page
    EXPECT_DOUBLE_EQ(pControl->GetFitScale(1), 1.0);
}

TEST_F(ZoomTest, AZoomModeLaysOutUnlessItHoldsAlready) {
    pViewer->nCurrentPage = 2;
    pControl->SetZoomMode(2);
    EXPECT_EQ(pControl->GetZoomMode(), 2);
    EXPECT_EQ(pViewer->fScale, 1.25F);
    EXPECT_EQ(pViewer->calls.back(), "InitLayOut 2 1.25 0 0");
    pViewer->calls.clear();
    pControl->SetZoomMode(2);
    EXPECT_TRUE(pViewer->calls.empty());
}

TEST_F(ZoomTest, AScaleStaysWithinTheLimitsAndLaysOutWhenItDiffers) {
    pControl->SetScale(100.0F);
    EXPECT_EQ(pViewer->fScale, 4.0F);
    pControl->SetScale(9.0F);
    pControl->SetScale(0.01F);
    EXPECT_EQ(pViewer->fScale, 0.5F);
    EXPECT_EQ(pViewer->calls, (Strings{"InitLayOut 0 4 0 0", "InitLayOut 0 0.5 0 0"}));
}

TEST_F(ZoomTest, DesktopLayoutsEndAtTheFit) {
    Open(); // with the real viewer
    const auto fFit = static_cast<float>(pControl->GetFitScale(1));
    EXPECT_EQ(pControl->GetScale(), fFit);
    pControl->SetScale(2.0F);
    EXPECT_EQ(pControl->GetScale(), fFit);
    pControl->ZoomAtPoint({500, 400}, 2.0, false, true);
    EXPECT_EQ(pControl->GetScale(), 2.0F);
}

}
}
