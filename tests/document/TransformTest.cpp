// The ways between page space and device space.
#include <cmath>

#include "tests/document/DocumentFixture.h"

namespace velko::testing {
namespace {

using Windows::Foundation::Point;
using Windows::Foundation::Rect;

class TransformTest : public SteppedDocumentTest {
protected:
    TransformTest() {
        ScriptedPage page = MakePage(200, 100);
        page.rcBox = {10, 20, 210, 120};
        m_pEngine->SetPages({page, page});
        m_pDocument = WrapDocument();
        m_pDocument->GetPageSize(0);
    }
    DocumentPtr m_pDocument;
};

void ExpectNear(const Rect& rc, const Rect& rcExpected) {
    EXPECT_NEAR(rc.X, rcExpected.X, 0.01F);
    EXPECT_NEAR(rc.Y, rcExpected.Y, 0.01F);
    EXPECT_NEAR(rc.Width, rcExpected.Width, 0.01F);
    EXPECT_NEAR(rc.Height, rcExpected.Height, 0.01F);
}

TEST_F(TransformTest, CornersOfThePageFillTheDeviceRectangleAndComeBack) {
    // The lower left corner of the page box, at twice its size.
    struct Case {
        std::int32_t nRotate;
        double dbWidth;
        double dbHeight;
        Point ptDevice;
    };
    for (const Case& turn : {Case{0, 400, 200, {30, 240}}, Case{1, 200, 400, {30, 40}},
                             Case{2, 400, 200, {430, 40}}, Case{3, 200, 400, {230, 440}}}) {
        const Point pt = m_pDocument->PagePointToDevicePoint(0, 30, 40, turn.dbWidth, turn.dbHeight,
                                                             turn.nRotate, {10, 20});
        EXPECT_NEAR(pt.X, turn.ptDevice.X, 0.01F) << turn.nRotate;
        EXPECT_NEAR(pt.Y, turn.ptDevice.Y, 0.01F) << turn.nRotate;
        const Point ptBack = m_pDocument->DevicePointToPagePoint(
            0, 30, 40, turn.dbWidth, turn.dbHeight, turn.nRotate, turn.ptDevice);
        EXPECT_NEAR(ptBack.X, 10.0F, 0.01F) << turn.nRotate;
        EXPECT_NEAR(ptBack.Y, 20.0F, 0.01F) << turn.nRotate;
        const Rect rcPage(10, 20, 200, 100);
        const Rect rcDevice(30, 40, static_cast<float>(turn.dbWidth),
                            static_cast<float>(turn.dbHeight));
        ExpectNear(m_pDocument->PageRectToDeviceRect(0, 30, 40, turn.dbWidth, turn.dbHeight,
                                                     turn.nRotate, rcPage),
                   rcDevice);
        ExpectNear(m_pDocument->DeviceRectToPageRect(0, 30, 40, turn.dbWidth, turn.dbHeight,
                                                     turn.nRotate, rcDevice),
                   rcPage);
    }
}

TEST_F(TransformTest, PlaceIsTruncatedToWholePixels) {
    const auto exact = m_pDocument->GetDisplayMatrix(0, -7, 13, 400, 200, 0);
    const auto cut = m_pDocument->GetDisplayMatrix(0, -7.9, 13.9, 400.9, 200.9, 0);
    EXPECT_EQ(cut.E, exact.E) << "towards zero, below it too";
    EXPECT_EQ(cut.F, exact.F);
    EXPECT_EQ(cut.A, exact.A);
    const auto huge = m_pDocument->GetDisplayMatrix(0, 1e300, -1e300, NAN, 200, 0);
    EXPECT_EQ(huge.A, 0.0F) << "no number is no width";
}

TEST_F(TransformTest, WithoutAnEntryNothingIsTransformed) {
    const Point pt{3, 4};
    EXPECT_EQ(m_pDocument->PagePointToDevicePoint(1, 0, 0, 400, 200, 0, pt), pt);
    EXPECT_EQ(m_pDocument->DevicePointToPagePoint(1, 0, 0, 400, 200, 0, pt), pt);
    EXPECT_TRUE(m_pDocument->PageRectToDeviceRect(1, 0, 0, 400, 200, 0, {1, 2, 3, 4}).IsEmpty());
    EXPECT_TRUE(m_pDocument->DeviceRectToPageRect(1, 0, 0, 400, 200, 0, {1, 2, 3, 4}).IsEmpty());
    EXPECT_EQ(m_pDocument->GetDisplayMatrix(1, 5, 5, 400, 200, 1).E, 0.0F);
    EXPECT_EQ(m_pEngine->Count(EngineOp::GetPage, 1), 0) << "and no entry is made";
    EXPECT_TRUE(m_pDocument->PageRectToDeviceRect(0, 0, 0, 400, 200, 0, Rect::Empty()).IsEmpty());
}

}
}
