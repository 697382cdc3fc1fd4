// Commands, gestures, wheels, resizes, faults and a host that misbehaves, in any
// order: what holds whatever came before, and in every frame.
//
// VELKO_RANDOM_SESSIONS=N runs N sessions instead of the few of every day.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <map>
#include <random>
#include <stdexcept>

#include "document/engine/AnnotEditor.h"
#include "surface/PDFViewCanvas.h"
#include "tests/control/ControlFixture.h"
#include "tests/support/scripted_engine/ScriptedDestination.h"
#include "viewers/core/ViewerInspection.h"

namespace velko::testing {
namespace {

using namespace std::chrono_literals;
using Pages = std::vector<std::int32_t>;

class HostsOwnFailure : public std::runtime_error {
public:
    HostsOwnFailure() : std::runtime_error("the host's handler fails") {}
};

struct Setting {
    unsigned nSeed;
    const char* szFamily;
    float fScale;
    int nPages;
    bool bEvilHost;
};

constexpr double kRounding = 1e-6;

// Whether something of the page is drawn at that share of it. What division into
// blocks truncates moves their edges: `nPixels` more, or fewer, on each side.
bool Shows(const vkit::PageItemState& item, double dbX, double dbY, int nPixels) {
    const double dbMoreX = nPixels / std::max(1.0, double(item.screenRect.nWidth));
    const double dbMoreY = nPixels / std::max(1.0, double(item.screenRect.nHeight));
    const auto fnHolds = [&](const vkit::PageShare& share) {
        return dbX >= share.dbLeft - dbMoreX && dbX <= share.dbLeft + share.dbWidth + dbMoreX &&
               dbY >= share.dbTop - dbMoreY && dbY <= share.dbTop + share.dbHeight + dbMoreY;
    };
    return std::any_of(item.standIns.begin(), item.standIns.end(), fnHolds) ||
           std::any_of(item.blocks.begin(), item.blocks.end(), [&](const auto& block) {
               return block.bIsDisplay && block.bHasBitmap && fnHolds(block.share);
           });
}

// The points of a page, as shares of its sides, at which it was seen drawn.
class SeenPoints {
public:
    static constexpr int kPoints = 7; // a side
    static constexpr int kEdge = 9;   // pixels

    void Look(const vkit::PageItemState& item, const Windows::Foundation::Rect& rcScreen) {
        for (int n = 0; n < kPoints * kPoints; ++n) {
            m_seen[n] = IsOnScreen(item, rcScreen, n) && Shows(item, X(n), Y(n), -kEdge);
        }
    }
    // How many that were seen are on the screen and blank now.
    int Lost(const vkit::PageItemState& item, const Windows::Foundation::Rect& rcScreen) const {
        int nLost = 0;
        for (int n = 0; n < kPoints * kPoints; ++n) {
            nLost += m_seen[n] && IsOnScreen(item, rcScreen, n) && !Shows(item, X(n), Y(n), kEdge)
                         ? 1
                         : 0;
        }
        return nLost;
    }

private:
    static double X(int n) { return (n % kPoints + 0.5) / kPoints; }
    static double Y(int n) { return (n / kPoints + 0.5) / kPoints; }
    static bool IsOnScreen(const vkit::PageItemState& item,
                           const Windows::Foundation::Rect& rcScreen, int n) {
        const double dbX = item.screenRect.dbOffsetX + X(n) * item.screenRect.nWidth;
        const double dbY = item.screenRect.dbOffsetY + Y(n) * item.screenRect.nHeight;
        return dbX > 0.0 && dbX < rcScreen.Width && dbY > 0.0 && dbY < rcScreen.Height;
    }
    std::array<bool, kPoints * kPoints> m_seen{};
};

std::vector<ScriptedPage> MixedPages(std::mt19937& random, int nPages) {
    std::vector<ScriptedPage> pages;
    for (int n = 0; n < nPages; ++n) {
        pages.push_back(MakePage(40.0F + static_cast<float>(random() % 900),
                                 30.0F + static_cast<float>(random() % 1200),
                                 static_cast<std::int32_t>(random() % 4)));
        pages.back().ePaper = ScriptedPage::Paper::None;
        pages.back().nTextHeight = std::max(0, static_cast<int>(random() % 700) - 100);
        pages.back().nPictureHeight = static_cast<int>(random() % 3) * 50;
    }
    pages.front().nTextHeight += 40; // there is something to show
    return pages;
}

class RandomCommandsTest : public ControlFixture, public ::testing::WithParamInterface<Setting> {
protected:
    RandomCommandsTest() : random(GetParam().nSeed) {
        pEngine = std::make_shared<ScriptedEngine>(MixedPages(random, GetParam().nPages));
        pReplaced = std::make_unique<ScriptedEngine::Registration>(pEngine);
        host.Environment().SetDeviceFamily(GetParam().szFamily);
        pEngine->OnCall(EngineOp::Reflow, [this](const auto&) {
            host.Clock().Pass(std::chrono::milliseconds(nMeasuring));
        });
        Show(480.0F, 360.0F);
        Panel().CompositionScale(GetParam().fScale, GetParam().fScale);
        Open();
        Watch();
    }

    int Below(int nLimit) { return static_cast<int>(random() % static_cast<unsigned>(nLimit)); }
    float Coordinate() { return static_cast<float>(Below(5000) - 500) / 3.0F; }
    Point AnyPoint() { return {Coordinate(), Coordinate()}; }
    int AnyPage() { return Below(GetParam().nPages + 2) - 1; }

    // --- what the host hears ---

    // Pages go before pages come, and the record that closes tells of both.
    void Watch() {
        pControl->PageInvisibleEvent.add([this](const auto&, const auto& pArgs) {
            EXPECT_TRUE(shown.empty() || GetParam().bEvilHost) << "a page goes after one came";
            gone.push_back(pArgs->PageIndex);
            MayMisbehave();
        });
        pControl->PageVisibleEvent.add([this](const auto&, const auto& pArgs) {
            shown.push_back(pArgs->PageIndex);
            MayMisbehave();
        });
        pControl->PageChangedEvent.add([this](const auto&, const auto& pArgs) {
            Pages expectedGone = Missing(pArgs->OldVisiblePages, pArgs->NewVisiblePages);
            Pages expectedShown = Missing(pArgs->NewVisiblePages, pArgs->OldVisiblePages);
            if (!GetParam().bEvilHost) { // frames within frames are the host's own doing
                EXPECT_EQ(gone, expectedGone);
                EXPECT_EQ(shown, expectedShown);
            }
            gone.clear();
            shown.clear();
            ++nFrames;
            MayMisbehave();
        });
        for (auto* const pEvent : {&pControl->RenderCanvasEvent, &pControl->ReflowCanvasEvent}) {
            pEvent->add([this](const auto&, const auto& pArgs) {
                CheckFrame(pArgs->nPageIndex);
                MayMisbehave();
            });
        }
        pControl->PageLoadedEvent.add([this](const auto&, const auto&) { MayMisbehave(); });
        pControl->PageUnloadedEvent.add([this](const auto&, const auto&) { MayMisbehave(); });
        pControl->CloseDocEvent.add([this](const auto&, const auto&) { MayMisbehave(); });
    }
    // In the order of `pages`, those that `others` lacks.
    static Pages Missing(const Pages& pages, const Pages& others) {
        Pages missing;
        std::copy_if(pages.begin(), pages.end(), std::back_inserter(missing), [&](auto nPage) {
            return std::find(others.begin(), others.end(), nPage) == others.end();
        });
        return missing;
    }
    void MayMisbehave() {
        if (!GetParam().bEvilHost || nDepth > 2 || Below(12) != 0) {
            return;
        }
        ++nMisdeeds;
        if (Below(3) == 0) {
            gone.clear();
            shown.clear();
            throw HostsOwnFailure();
        }
        ++nDepth;
        Act();
        --nDepth;
    }

    // --- what the reader and the host do ---

    void Act() {
        using Action = void (RandomCommandsTest::*)();
        static constexpr std::array<Action, 17> kActions = {
            &RandomCommandsTest::Move,      &RandomCommandsTest::Move,
            &RandomCommandsTest::Pan,       &RandomCommandsTest::Pan,
            &RandomCommandsTest::Pinch,     &RandomCommandsTest::Pinch,
            &RandomCommandsTest::TurnWheel, &RandomCommandsTest::TurnWheel,
            &RandomCommandsTest::Goto,      &RandomCommandsTest::Zoom,
            &RandomCommandsTest::Resize,    &RandomCommandsTest::Look,
            &RandomCommandsTest::Rework,    &RandomCommandsTest::ChangeMode,
            &RandomCommandsTest::Convert,   &RandomCommandsTest::Reopen,
            &RandomCommandsTest::Fault,
        };
        const std::size_t nAction = random() % kActions.size();
        strDone += " " + std::to_string(nAction);
        (this->*kActions[nAction])();
    }
    void Move() {
        pControl->MoveScreen(Coordinate(), Coordinate() / 4);
        if (!GetParam().bEvilHost && pControl->GetPageLayoutMode() == 1) {
            CheckEnds();
        }
    }
    void Pan() {
        Point pt = AnyPoint();
        Start(pt);
        const Point ptStep = {Coordinate() / 10, Coordinate() / 10};
        for (int n = Below(12); n > 0; --n) {
            pt = {pt.X + ptStep.X, pt.Y + ptStep.Y};
            Delta(pt, 1, 1, n < 3);
            MayRun();
        }
        Complete(pt);
    }
    // Without an engine call, and with no stand-in left once it has ended.
    void Pinch() {
        const Point pt = AnyPoint();
        Start(pt);
        float fCumulative = 1.0F;
        const float fStep = Below(2) == 0 ? 1.1F : 0.93F;
        if (nDepth == 0) {
            host.Drain();
        }
        const auto nRenders = pEngine->Count(EngineOp::StartRender);
        const auto nFaults = pGraphics->FaultsHappened();
        // Else, or when it has zoomed all pages away from a screen of a few pixels, it lays out
        // anew.
        const bool bHasPages = Screen().Width > 4.0F && !pControl->GetVisiblePages().empty();
        for (int n = Below(10); n > 0; --n) {
            fCumulative *= fStep;
            Delta({pt.X + Coordinate() / 50, pt.Y}, fStep, fCumulative);
        }
        if (!GetParam().bEvilHost) {
            host.Drain();
            if (bHasPages && pGraphics->FaultsHappened() == nFaults) { // a lost device renders anew
                EXPECT_EQ(pEngine->Count(EngineOp::StartRender), nRenders);
            }
        }
        Complete(pt, fCumulative);
    }
    void TurnWheel() {
        const bool bControl = Below(3) == 0;
        const Point pt = AnyPoint();
        const int nNotches = Below(7) - 3;
        Wheel(pt, nNotches * 120, bControl, Below(5) == 0);
        host.Clock().Advance(std::chrono::milliseconds(Below(400)));
    }
    void OneOf(std::initializer_list<std::function<void()>> acts) {
        acts.begin()[Below(static_cast<int>(acts.size()))]();
    }
    void Goto() {
        OneOf({[&] { pControl->GotoFirstPage(); }, [&] { pControl->GotoLastPage(); },
               [&] { pControl->GotoPrevPage(); }, [&] { pControl->GotoNextPage(); },
               [&] { pControl->GotoExactlyPage(AnyPage(), AnyPoint()); },
               [&] { GotoDestination(); }, [&] { pControl->GotoPage(AnyPage()); }});
    }
    void GotoDestination() {
        const auto pDestination = std::make_shared<ScriptedDestination>();
        pDestination->nPageIndex = AnyPage();
        pDestination->nZoomMode = Below(10);
        pDestination->fLeft = Coordinate();
        pDestination->fTop = Coordinate();
        pDestination->fRight = Below(2) == 0 ? 0.0F : Coordinate();
        pDestination->fBottom = Coordinate();
        pControl->GotoDestination(std::make_shared<ScriptedAction>(pDestination));
    }
    void Zoom() {
        OneOf({[&] { pControl->SetScale(static_cast<float>(Below(80)) / 10); },
               [&] { pControl->SetZoomMode(Below(5)); },
               [&] { pControl->RotateViewer(Below(9) - 4); },
               [&] {
                   pControl->ZoomAtPoint(AnyPoint(), 0.1 + Below(80) / 10.0, false, Below(2) == 0);
               }});
    }
    void Resize() {
        static constexpr std::array<std::array<float, 2>, 6> kSizes = {
            {{1, 1}, {0, 0}, {333, 217}, {400, 400}, {480, 360}, {360, 480}}};
        const auto& size = kSizes[random() % kSizes.size()];
        if (Below(8) == 0) { // for a moment only: its blocks are large
            pControl->Arrange(Below(2) == 0 ? Windows::Foundation::Size{4000, 3000}
                                            : Windows::Foundation::Size{1920, 1080});
            Pan();
        }
        pControl->Arrange({size[0], size[1]});
        if (size[0] < 2) {
            seen.clear(); // nothing is to be seen for a while
        }
    }
    void Look() {
        pControl->GetVisiblePages();
        pControl->GetCurrentPageIndex();
        if (pControl->GetPageCount() > 0) {
            Windows::Foundation::Collections::PropertySet values;
            pControl->SaveViewState(values);
        }
        MayRun();
    }
    void Rework() {
        OneOf({[&] { pControl->RedrawScreen(); }, [&] { pControl->NightMode(Below(2) == 0); },
               [&] { pControl->UpdatePageAfterAnnotEdit(AnyPage()); },
               [&] { pControl->CancelRender(); }, [&] { pControl->UpdateViewer(); },
               [&] { Edit(AnyPage()); }, [&] { Save(); },
               [&] {
                   pControl->TextStyle({Below(2) == 0, Below(2) == 0, Below(2) * 60.0});
               }});
    }
    void Edit(std::int32_t nPage) {
        pControl
            ->EditPage(nPage,
                       [nPage](velko::pdf::IAnnotEditor& editor) {
                           velko::pdf::AnnotRecord record;
                           record.nType = 9;
                           editor.AddAnnot(nPage, record);
                       })
            .mark_observed();
    }
    // One at a time, which hosts see to.
    void Save() {
        if (!saving || saving->is_done()) {
            saving = pControl->SaveDocument();
            saving->mark_observed();
        }
    }
    void ChangeMode() { pControl->SetPageLayoutMode(1 + Below(3)); }
    void Convert() {
        const Point pt = AnyPoint();
        pControl->DevicePointToPagePoint(pt);
        pControl->PagePointToDevicePoint(AnyPage(), pt);
        pControl->GetPageRectAtPoint(pt, AnyPage());
        pControl->GetDisplayMatrix(AnyPage(), 0);
    }
    void Reopen() {
        if (Below(4) == 0) {
            pControl->CloseDocument();
        } else if (!pControl->GetPDFDoc() || Below(6) == 0) {
            opening = pControl->OpenPdfDocument(File(), "");
            host.AwaitFiles(); // so that a seed gives the same steps on any disk
        }
    }
    // A render that fails, text that takes long, a frame that fails, a device that is
    // lost.
    void Fault() {
        OneOf({[&] { pEngine->FailCall(EngineOp::StartRender, 1 + Below(4)); },
               [&] { pEngine->FailCall(EngineOp::Reflow, 1 + Below(4)); },
               [&] { nMeasuring = Below(3) * 60; },
               [&] { pGraphics->FailCallOf(Platform::Fake::GraphicsCall::Present1, 1 + Below(3)); },
               [&] { pGraphics->LoseDeviceAtPresent(1 + Below(3)); }});
    }
    void MayRun() {
        for (int n = nDepth == 0 ? Below(30) : 0; n > 0; --n) {
            host.Dispatcher().RunOne();
            if (Below(2) == 0) {
                host.Pool().RunOne();
            }
        }
    }

    // --- what holds after each step ---

    std::shared_ptr<vkit::IViewerInspection> Inspection() {
        return std::dynamic_pointer_cast<vkit::IViewerInspection>(
            Parts().PageViewMgr()->GetViewer());
    }
    Windows::Foundation::Rect Screen() {
        const auto& canvas = *Parts().ViewControl()->ViewCtrl();
        return {0, 0, canvas.GetScaledWidth(), canvas.GetScaledHeight()};
    }

    // What one frame has shown of a page, the next one that draws it does not
    // lose, however it is laid out: blank paper comes before pixels, never after.
    void CheckFrame(std::int32_t nPage) {
        const auto pInspection = Inspection();
        const vkit::ViewerState state = pInspection ? pInspection->Inspect() : vkit::ViewerState();
        const auto it = std::find_if(state.items.begin(), state.items.end(),
                                     [&](const auto& item) { return item.nPageIndex == nPage; });
        if (it == state.items.end()) {
            return;
        }
        const bool bSame = seenIn.lock() == pInspection && nSeenRotate == it->nRotate;
        seenIn = pInspection;
        nSeenRotate = it->nRotate;
        const auto nFaults = pGraphics->FaultsHappened();
        if (!bSame || std::exchange(nFaultsSeen, nFaults) != nFaults) {
            seen.clear(); // a lost device loses all that was seen
        }
        std::erase_if(seen, [&](const auto& entry) { // gone since
            return std::none_of(state.items.begin(), state.items.end(),
                                [&](const auto& item) { return item.nPageIndex == entry.first; });
        });
        if (const auto known = seen.find(nPage); known != seen.end()) {
            EXPECT_EQ(known->second.Lost(*it, Screen()), 0)
                << "page " << nPage << " of " << it->screenRect.nWidth << " x "
                << it->screenRect.nHeight << " at " << it->screenRect.dbOffsetX << ", "
                << it->screenRect.dbOffsetY << " in " << it->grid.nRows << " x " << it->grid.nCols
                << " turned blank; layout " << pControl->GetPageLayoutMode() << ", "
                << it->standIns.size() << " stand-ins, snapshot " << state.bShowScaleSnapshot;
        }
        seen[nPage].Look(*it, Screen());
    }

    void Check(bool bAtRest) {
        const auto pInspection = Inspection();
        if (!pInspection || !pControl->GetPDFDoc()) {
            return;
        }
        const vkit::ViewerState state = pInspection->Inspect();
        const bool bSingle = pControl->GetPageLayoutMode() == 2;
        if (bSingle) {
            EXPECT_LE(state.items.size(), 2U);
        }
        for (std::size_t n = 0; n < state.items.size(); ++n) {
            const auto& item = state.items[n];
            EXPECT_GE(item.nPageIndex, 0);
            EXPECT_LT(item.nPageIndex, GetParam().nPages);
            if (n > 0) {
                CheckNeighbours(state.items[n - 1], item);
            }
            if (pControl->GetPageLayoutMode() != 3 &&
                (bAtRest || (!bSingle && !GetParam().bEvilHost))) {
                CheckSideways(item);
            }
            CheckBlocks(item);
        }
        // Of single pages, asking for the place in the middle of a turn takes one away.
        // Text set anew has none for a screen whose width is mere margins.
        EXPECT_TRUE(bSingle || state.items.empty() || Screen().Width < 2.0F ||
                    std::any_of(state.items.begin(), state.items.end(),
                                [&](const auto& item) {
                                    const auto& rc = item.screenRect;
                                    return rc.dbOffsetX < Screen().Width &&
                                           rc.dbOffsetX + rc.nWidth > 0.0 &&
                                           rc.dbOffsetY < Screen().Height &&
                                           rc.dbOffsetY + rc.nHeight + 15 > 0.0;
                                }))
            << "no page is on the screen";
        EXPECT_GE(pControl->GetCurrentPageIndex(), 0);
        EXPECT_LT(pControl->GetCurrentPageIndex(), GetParam().nPages);
        EXPECT_LE(pControl->GetScale(), pControl->GetMaxScale());
    }

    // Pages in their order, each once; a column with a gap, but for what
    // truncation takes.
    // Where text is set anew, pages without any are left out.
    void CheckNeighbours(const vkit::PageItemState& above, const vkit::PageItemState& below) {
        constexpr double kAllPagesShow = 0.03; // at less the smallest ones are left out
        const std::int32_t nMode = pControl->GetPageLayoutMode();
        if (above.dbScale < kAllPagesShow || nMode == 3) {
            EXPECT_GT(below.nPageIndex, above.nPageIndex);
        } else {
            EXPECT_EQ(below.nPageIndex, above.nPageIndex + 1);
        }
        if (above.dbScale >= kAllPagesShow && nMode != 2) {
            const double dbGap = below.screenRect.dbOffsetY -
                                 (above.screenRect.dbOffsetY + above.screenRect.nHeight);
            EXPECT_LT(std::abs(dbGap - (nMode == 3 ? 5.0 : 15.0)), 1.0 + kRounding);
        }
    }

    // No move leaves the document's start below the top, or the end of one that
    // is taller than the screen above the bottom.
    void CheckEnds() {
        const auto pInspection = Inspection();
        const vkit::ViewerState state = pInspection ? pInspection->Inspect() : vkit::ViewerState();
        if (state.items.empty()) {
            return;
        }
        const auto& first = state.items.front();
        const auto& last = state.items.back();
        EXPECT_TRUE(first.nPageIndex > 0 || first.screenRect.dbOffsetY <= 0.001);
        const bool bTaller = first.nPageIndex > 0 || first.screenRect.dbOffsetY < -0.001;
        EXPECT_TRUE(last.nPageIndex < GetParam().nPages - 1 || !bTaller ||
                    last.screenRect.dbOffsetY + last.screenRect.nHeight >= Screen().Height - 1.0);
    }

    // A page narrower than the screen stands in the middle, another one covers
    // the screen's width.
    void CheckSideways(const vkit::PageItemState& item) {
        const auto& rc = item.screenRect;
        EXPECT_TRUE(std::isfinite(rc.dbOffsetX + rc.dbOffsetY));
        const double dbRoom = Screen().Width - rc.nWidth;
        if (dbRoom > 0.0) {
            EXPECT_NEAR(rc.dbOffsetX, dbRoom * 0.5, 1.0);
        } else {
            EXPECT_LE(rc.dbOffsetX, kRounding);
            EXPECT_GE(rc.dbOffsetX, dbRoom - kRounding);
        }
    }

    // Blocks cover their page exactly, and only displayed ones are at work.
    void CheckBlocks(const vkit::PageItemState& item) {
        double dbArea = 0.0;
        for (const vkit::BlockState& block : item.blocks) {
            dbArea += double(block.screenRect.nWidth) * block.screenRect.nHeight;
            EXPECT_TRUE(block.bIsDisplay || !block.bIsRendering);
        }
        EXPECT_EQ(dbArea, double(item.screenRect.nWidth) * item.screenRect.nHeight);
        EXPECT_EQ(static_cast<std::int32_t>(item.blocks.size()), item.grid.nRows * item.grid.nCols);
    }

    // The reader's last wish is met in either layout: all that shows is sharp
    // and in its place, and nothing else is kept.
    void CheckAtRest(std::int32_t nMode) {
        pGraphics->ClearFaults();
        pEngine->ClearFailures();
        if (!pControl->GetPDFDoc()) {
            Open();
        }
        pControl->Arrange({480, 360});
        pControl->SetPageLayoutMode(nMode);
        pControl->ZoomAtPoint({100, 100}, 1.0, false, true);
        host.Clock().Advance(1s);
        host.Drain();
        const auto state = Inspection()->Inspect();
        EXPECT_FALSE(state.items.empty());
        EXPECT_EQ(state.nScaleCacheEntries, 0U);
        EXPECT_EQ(state.nStandIns, 0U);
        EXPECT_FALSE(state.bShowScaleSnapshot);
        std::int64_t nHeld = 0;
        for (const auto& item : state.items) {
            for (const auto& block : item.blocks) {
                EXPECT_TRUE(block.bIsSharp || !block.bIsDisplay);
                EXPECT_FALSE(block.bIsRendering);
                EXPECT_TRUE(!block.bIsDisplay || block.nBitmapWidth == block.screenRect.nWidth);
                nHeld += block.bHasBitmap ? 1 : 0;
            }
        }
        EXPECT_EQ(pGraphics->LiveBitmaps(), nHeld + static_cast<std::int64_t>(state.nOverviews));
        EXPECT_EQ(pEngine->LiveBitmaps(), 0);
        Check(true);
    }

    std::mt19937 random;
    std::unique_ptr<ScriptedEngine::Registration> pReplaced;
    std::optional<concurrency::task<ErrorCode>> opening;
    std::optional<concurrency::task<bool>> saving;
    Pages gone;
    Pages shown;
    std::map<std::int32_t, SeenPoints> seen; // in the last frame, by page
    std::weak_ptr<vkit::IViewerInspection> seenIn;
    std::int32_t nSeenRotate = 0;
    std::uint32_t nFaultsSeen = 0;
    int nMeasuring = 0;  // a page's text, milliseconds
    std::string strDone; // the actions of a step, by their numbers
    int nFrames = 0;
    int nMisdeeds = 0;
    int nDepth = 0;
};

TEST_P(RandomCommandsTest, HoldAfterAnySequence) {
    constexpr int kSteps = 420;
    for (int nStep = 0; nStep < kSteps; ++nStep) {
        try {
            Act();
            MayRun();
        } catch (const HostsOwnFailure&) {
            nDepth = 0;
        } catch (const Platform::Exception&) {
            EXPECT_GT(pGraphics->FaultsHappened(), 0U); // a frame failed
            nDepth = 0;
        }
        Check(false);
        pGraphics->ClearCalls();
        ASSERT_FALSE(HasFailure()) << "step " << nStep << " after actions" << strDone;
        strDone.clear();
    }
    EXPECT_GT(nFrames, kSteps / 8);
    EXPECT_EQ(nMisdeeds > 0, GetParam().bEvilHost);
    nDepth = 99; // the host behaves from here on
    CheckAtRest(1);
    CheckAtRest(2);
    CheckAtRest(3);
    const bool bUndisturbed = !GetParam().bEvilHost && pGraphics->FaultsHappened() == 0;
    EXPECT_FALSE(host.DebugContains("unobserved") && bUndisturbed);
}

std::vector<Setting> Settings() {
    constexpr std::array<const char*, 3> kFamilies = {"Windows.Desktop", "Windows.Mobile",
                                                      "Windows.Holographic"};
    constexpr std::array<float, 4> kScales = {1.0F, 1.25F, 1.5F, 2.0F};
    constexpr std::array<int, 4> kPages = {1, 2, 3, 500};
    std::vector<Setting> settings;
    const char* const szSessions = std::getenv("VELKO_RANDOM_SESSIONS");
    const unsigned nSessions = szSessions ? static_cast<unsigned>(std::atoi(szSessions)) : 24;
    for (unsigned n = 0; n < nSessions; ++n) {
        settings.push_back(
            {n + 1, kFamilies[n % 3], kScales[n / 3 % 4], kPages[(n + n / 4) % 4], n % 4 == 3});
    }
    return settings;
}
INSTANTIATE_TEST_SUITE_P(Settings, RandomCommandsTest, ::testing::ValuesIn(Settings()),
                         [](const auto& info) {
                             return std::string(info.param.szFamily).substr(8) +
                                    std::to_string(info.param.nPages) +
                                    (info.param.bEvilHost ? "Evil" : "") + "Seed" +
                                    std::to_string(info.param.nSeed);
                         });

}
}
