#include "widget/VelkoPdfView.h"

#include <gtest/gtest.h>

#include <QColor>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QRegularExpression>
#include <QSplitter>
#include <QTimer>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <functional>
#include <initializer_list>
#include <memory>
#include <new>
#include <stdexcept>

#include "component/KeptView.h"
#include "control/ControlParts.h"
#include "control/PDFViewerManager.h"
#include "platform/foundation/Exception.h"
#include "platform/qt/QtElementWindow.h"
#include "platform/system/Debug.h"
#include "tests/qt/ViewFixture.h"
#include "widget/OpenFailure.h"
#include "widget/PageNotices.h"

namespace velko {
namespace {

using testing::RunUntil;
using vkit::VelkoPdfView;
using State = VelkoPdfView::State;

class VelkoPdfViewTest : public testing::ViewFixture {
protected:
    VelkoPdfViewTest() {
        QObject::connect(m_pView.get(), &VelkoPdfView::OpenFailed, m_pView.get(),
                         [this](const QString& strPath, const QString& strReason) {
                             m_failures << QFileInfo(strPath).fileName() + ": " + strReason;
                         });
        QObject::connect(m_pView.get(), &VelkoPdfView::Failed, m_pView.get(),
                         [this](const QString& strReason) { m_failures << strReason; });
        QObject::connect(m_pView.get(), &VelkoPdfView::Opened, m_pView.get(),
                         [this](int nPages) { m_opened << nPages; });
        m_pView->resize(500, 600);
        m_pView->show();
    }
    ~VelkoPdfViewTest() override { m_pView.reset(); }

    bool FailsToOpen(const QString& strFile) {
        const auto nBefore = m_failures.size();
        m_pView->Open(strFile);
        return RunUntil([&] { return m_failures.size() > nBefore; });
    }
    vkit::PDFViewCtrl& Control() { return *m_pView->Control(); }
    void Key(int nKey) {
        QKeyEvent event(QEvent::KeyPress, nKey, Qt::NoModifier);
        QCoreApplication::sendEvent(&m_pView->Window(), &event);
    }
    // Where a point of a page stands on the screen, device pixels.
    Windows::Foundation::Point OnScreen(int nPage, float fX, float fY) {
        return Control().PagePointToDevicePoint(nPage, {fX, fY});
    }
    bool SettlesSharp() { return Settles(*m_pView); }

    std::unique_ptr<VelkoPdfView> m_pView = std::make_unique<VelkoPdfView>();
    QStringList m_failures;
    QList<int> m_opened;
};

TEST_F(VelkoPdfViewTest, ShowsAPageSharpAndTellsWhereTheReaderIs) {
    ASSERT_TRUE(OpenUntilSharp(*m_pView, WritePages("three.pdf", 3)));
    EXPECT_EQ(m_opened, QList{3});
    EXPECT_EQ(m_pView->PageCount(), 3);
    const auto pt = OnScreen(0, 306.0F, 396.0F);
    const QImage picture = m_pView->grab().toImage();
    EXPECT_EQ(picture.pixelColor(static_cast<int>(pt.X), static_cast<int>(pt.Y)),
              QColor(255, 0, 0));
    QList<int> pages;
    QObject::connect(m_pView.get(), &VelkoPdfView::PageChanged, m_pView.get(),
                     [&](int nPage) { pages << nPage; });
    m_pView->GotoPage(1);
    EXPECT_TRUE(RunUntil([&] { return m_pView->CurrentPage() == 1; }));
    m_pView->GotoPage(99);
    EXPECT_TRUE(RunUntil([&] { return m_pView->CurrentPage() == 2; }));
    Key(Qt::Key_Home);
    EXPECT_TRUE(RunUntil([&] { return m_pView->CurrentPage() == 0; }));
    EXPECT_EQ(pages, (QList{1, 2, 0}));
    m_pView->CloseDocument();
    EXPECT_EQ(m_pView->ViewState(), State::Empty);
    EXPECT_EQ(m_pView->PageCount(), 0);
    EXPECT_FALSE(m_pView->HasInk());
    EXPECT_TRUE(m_failures.isEmpty()) << m_failures.join("; ").toStdString();
}

TEST_F(VelkoPdfViewTest, TellsInWordsWhyADocumentDoesNotOpen) {
    struct Case {
        QString strFile;
        const char* szWords;
        State eState;
    };
    const Case cases[] = {
        {m_folder.filePath("missing.pdf"), "no such file", State::Failed},
        {m_folder.path(), "folder", State::Failed},
        {Write("text.pdf", "hello"), "not a PDF", State::Failed},
        {Write("empty.pdf", ""), "file is empty", State::Failed},
        {Write("cut.pdf", "%PDF-1.7 1 0 obj"), "end of the document", State::Failed},
        {WriteLocked(), "password", State::PasswordNeeded},
    };
    Control().IsPasswordDialogEnabled(false); // which would ask instead
    for (const Case& item : cases) {
        ASSERT_TRUE(FailsToOpen(item.strFile)) << item.strFile.toStdString();
        EXPECT_TRUE(m_failures.back().contains(item.szWords)) << m_failures.back().toStdString();
        EXPECT_TRUE(m_failures.back().startsWith(QFileInfo(item.strFile).fileName()));
        EXPECT_EQ(m_pView->ViewState(), item.eState) << item.strFile.toStdString();
        EXPECT_EQ(m_pView->PageCount(), 0);
    }
    EXPECT_TRUE(OpenUntilSharp(*m_pView, WritePages("good.pdf", 1))) << "after all that";
}

TEST_F(VelkoPdfViewTest, AFailedOpenEndsWithTheDocumentFromBeforeAtItsPlace) {
    const QString strGood = WritePages("good.pdf", 5);
    const QString strOther = WritePages("other.pdf", 1);
    m_pView->KeepPlace(true);
    const auto fnShowsGood = [&] {
        return m_pView->ViewState() == State::Shown && m_pView->File().Text() == strGood &&
               m_pView->PageCount() == 5 && m_pView->CurrentPage() == 4;
    };
    const auto fnShowsNothing = [&] {
        return m_pView->ViewState() == State::Failed && m_pView->PageCount() == 0 &&
               m_pView->CurrentPage() == 0 && m_pView->Zoom() == 0.0 && !m_pView->HasInk() &&
               !Control().GetPDFDoc();
    };
    ASSERT_TRUE(OpenUntilSharp(*m_pView, strGood));
    m_pView->GotoPage(4);
    ASSERT_TRUE(SettlesSharp());
    ASSERT_TRUE(FailsToOpen(m_folder.filePath("missing.pdf")));
    EXPECT_TRUE(fnShowsGood()) << "the control never came to the new file";
    ASSERT_TRUE(FailsToOpen(Write("text.pdf", "hello")));
    EXPECT_TRUE(fnShowsGood()) << "the control has closed it, and it is brought back";
    testing::PdfOptions locked;
    locked.strUserPassword = "secret";
    m_pView->Open(Write("locked.pdf", testing::MakePdf({testing::PdfPage()}, locked)));
    ASSERT_TRUE(RunUntil([&] { return m_pView->ViewState() == State::PasswordNeeded; }));
    m_pView->CloseDocument();
    EXPECT_TRUE(RunUntil(fnShowsGood)) << "the reader gave up";
    const auto token = Control().PageLayoutModeChangedEvent.add(
        [](const auto&, const auto&) { throw std::runtime_error("host failed"); });
    ASSERT_TRUE(FailsToOpen(strOther));
    EXPECT_TRUE(fnShowsNothing()) << "it failed for both";
    Control().PageLayoutModeChangedEvent.remove(token);
    const auto tokenOpen = Control().OpenDocEvent.add(
        [](const auto&, const auto&) { throw std::runtime_error("host failed"); });
    m_pView->Open(strGood);
    ASSERT_TRUE(RunUntil([&] { return fnShowsGood() && m_pView->IsSharp(); }))
        << "it failed after the document was there";
    Control().OpenDocEvent.remove(tokenOpen);
    Control().CloseDocument(); // by the host
    EXPECT_TRUE(RunUntil([&] { return m_pView->ViewState() == State::Empty; }));
    EXPECT_TRUE(m_pView->File().IsEmpty());
    m_pView.reset();
    EXPECT_FALSE(vkit::FindView(strOther.toStdString())) << "no place of another document";
    EXPECT_TRUE(vkit::FindView(strGood.toStdString()));
}

TEST_F(VelkoPdfViewTest, APlaceThatCannotBeReadKeepsNobodyFromTheDocument) {
    using Windows::Foundation::PropertyValue;
    const QString strFile = WritePages("pages.pdf", 3);
    const auto pBroken = std::make_shared<Windows::Foundation::Collections::PropertySet>();
    pBroken->Insert("Scale", PropertyValue::Create(std::string("large")));
    vkit::StoreView({strFile.toStdString(), pBroken});
    EXPECT_TRUE(OpenUntilSharp(*m_pView, strFile));
    EXPECT_TRUE(m_failures.isEmpty()) << m_failures.join("; ").toStdString();
    EXPECT_EQ(m_opened, QList{3});
    EXPECT_FALSE(vkit::FindView(strFile.toStdString()));
    EXPECT_EQ(vkit::RecentFiles().size(), 1U) << "the file itself is remembered";
}

TEST_F(VelkoPdfViewTest, ADocumentThatIsClosedWhileItOpensIsNotShown) {
    ASSERT_TRUE(OpenUntilSharp(*m_pView, WritePages("two.pdf", 2)));
    m_pView->Open(WritePages("three.pdf", 3));
    m_pView->CloseDocument();
    const auto opened = m_opened; // a quick open ends within its call
    EXPECT_TRUE(RunUntil([&] {
        return !Control().GetPDFDoc() && !vkit::ControlParts(Control()).IsProgressRingVisible();
    }));
    EXPECT_EQ(m_opened, opened);
    EXPECT_EQ(m_pView->ViewState(), State::Empty);
    EXPECT_EQ(m_pView->PageCount(), 0);
}

// The view goes in a handler of each of its signals in turn.
TEST_F(VelkoPdfViewTest, AHandlerMayDestroyTheViewThatTellsIt) {
    const QString strFile = WritePages("pages.pdf", 3);
    int nSignal = 0;
    const auto fnGoesAt = [&](auto pSignal) {
        m_pView = std::make_unique<VelkoPdfView>();
        m_pView->resize(500, 600);
        m_pView->show();
        QObject::connect(m_pView.get(), pSignal, [this] { m_pView.reset(); });
        const auto fnFailHost = [](const auto&, const auto&) { throw std::runtime_error("host"); };
        for (const auto& fnCommand : std::initializer_list<std::function<void()>>{
                 [&] { m_pView->Open(m_folder.filePath("missing.pdf")); },
                 [&] {
                     RunUntil([&] { return !m_pView || m_pView->ViewState() == State::Failed; });
                 },
                 [&] { m_pView->Open(strFile); },
                 [&] { RunUntil([&] { return !m_pView || m_pView->IsSharp(); }); },
                 [&] { Control().PageChangedEvent.add(fnFailHost); }, [&] { m_pView->GotoPage(1); },
                 [&] { m_pView->ZoomTo(2.0); }, [&] { m_pView->JumpToName("nowhere"); }}) {
            if (m_pView) {
                fnCommand();
            }
        }
        EXPECT_TRUE(RunUntil([&] { return !m_pView; })) << "signal " << nSignal++;
    };
    const auto fnGoesAtEach = [&](auto... told) { (..., fnGoesAt(told)); };
    fnGoesAtEach(&View::StateChanged, &View::Opened, &View::OpenFailed, &View::PageChanged,
                 &View::PageCountChanged, &View::ZoomChanged, &View::ViewChanged, &View::Failed,
                 &View::LinkRefused);
}

TEST_F(VelkoPdfViewTest, TwoViewsInOneWindowHaveEachTheirOwnSize) {
    QSplitter splitter;
    splitter.resize(1000, 500);
    auto* const pLeft = new VelkoPdfView(&splitter);
    auto* const pRight = new VelkoPdfView(&splitter);
    splitter.setSizes({600, 400});
    splitter.show();
    const QString strFile = WritePages("pages.pdf", 9);
    const auto pEnvironment = vkit::VelkoRuntime::Environment();
    int nTold = 0;
    const auto token = pEnvironment->WindowSizeChanged.add([&](const auto&) { ++nTold; });
    const auto fnFits = [](VelkoPdfView& view) {
        return view.IsSharp() && !view.Window().IsFrameHeld() &&
               std::fabs(view.Zoom() - view.width() / (612.0 / 72.0 * 96.0)) < 0.01 &&
               view.Control()->GetCanvasSize().Width == static_cast<float>(view.width()) &&
               view.Window().FrontImage().size() == view.size();
    };
    for (VelkoPdfView* const pView : {pLeft, pRight}) {
        ASSERT_TRUE(OpenUntilSharp(*pView, strFile));
        pView->FitWidth();
    }
    pLeft->GotoPage(4);
    for (const int nLeft : {600, 300, 750}) {
        splitter.setSizes({nLeft, 1000 - nLeft});
        EXPECT_TRUE(RunUntil([&] { return fnFits(*pLeft) && fnFits(*pRight); })) << nLeft;
        EXPECT_EQ(pEnvironment->WindowBounds().Width, 1000.0F);
    }
    EXPECT_EQ(nTold, 0) << "the window is as large as before";
    EXPECT_EQ(pLeft->CurrentPage(), 4);
    EXPECT_EQ(pRight->CurrentPage(), 0);
    pEnvironment->WindowSizeChanged.remove(token);
}

TEST_F(VelkoPdfViewTest, AViewMayGoWhileADocumentOpens) {
    m_pView->Open(WritePages("slow.pdf", 50, 500));
    m_pView.reset();
    m_pRuntime.reset(); // joins what still runs
    EXPECT_TRUE(m_opened.isEmpty());
}

TEST_F(VelkoPdfViewTest, AZoomKeepsTheTopWhileItIsInSightElseTheMiddle) {
    ASSERT_TRUE(OpenUntilSharp(*m_pView, WritePages("pages.pdf", 5)));
    m_pView->GotoPage(2);
    ASSERT_TRUE(SettlesSharp());
    m_pView->FitWidth();
    EXPECT_NEAR(OnScreen(2, 0.0F, 792.0F).Y, 0.0F, 1.0F);
    m_pView->ScrollBy(0.0, 200.0);
    const auto pAtMiddle = Control().DevicePointToPagePoint({250.0F, 300.0F});
    m_pView->ZoomTo(2.0);
    EXPECT_TRUE(RunUntil([&] { return m_pView->Zoom() == 2.0; }));
    const auto pt = OnScreen(pAtMiddle->nPageIndex, pAtMiddle->pt.X, pAtMiddle->pt.Y);
    EXPECT_NEAR(pt.X, 250.0F, 2.0F);
    EXPECT_NEAR(pt.Y, 300.0F, 2.0F);
    ASSERT_TRUE(SettlesSharp());
    m_pView->ZoomTo(1000.0);
    EXPECT_TRUE(RunUntil([&] { return m_pView->Zoom() == Control().GetMaxScale(); }));
    m_pView->ZoomTo(0.0);
    const auto fLeast = static_cast<float>(m_pView->LeastZoom());
    EXPECT_TRUE(RunUntil([&] { return m_pView->Zoom() == fLeast; }));
    EXPECT_LT(fLeast, Control().GetMinScale()) << "an overview needs less than a gesture";
}

TEST_F(VelkoPdfViewTest, PageKeysGoFromTopToTopWhereAPageFits) {
    ASSERT_TRUE(OpenUntilSharp(*m_pView, WritePages("pages.pdf", 4)));
    const auto fnAtTop = [&](int nPage) { // of the view, as far as the document's end lets it
        return Control().GetCurrentPageIndex() == nPage &&
               std::fabs(OnScreen(nPage, 0.0F, 792.0F).Y) < 1.5F;
    };
    for (const int nKey : {Qt::Key_PageDown, Qt::Key_Space, Qt::Key_Right}) {
        const int nBefore = Control().GetCurrentPageIndex();
        Key(nKey);
        EXPECT_TRUE(fnAtTop(nBefore + 1)) << nKey;
    }
    Key(Qt::Key_PageUp);
    EXPECT_TRUE(fnAtTop(2));
    m_pView->ScrollBy(0.0, -50.0);
    Key(Qt::Key_Return);
    EXPECT_TRUE(fnAtTop(2)) << "not past the page that begins further down";
    m_pView->ZoomTo(1.5);
    const float fBefore = OnScreen(2, 0.0F, 792.0F).Y;
    Key(Qt::Key_PageDown);
    EXPECT_NEAR(OnScreen(2, 0.0F, 792.0F).Y, fBefore - 540.0F, 1.5F) << "nine tenths of a screen";
    m_pView->SetLayoutMode(View::Layout::SinglePage);
    m_pView->ZoomTo(1.108); // so that 570 of 1170 pixels are out of sight
    m_pView->GotoPage(1);
    Key(Qt::Key_PageDown);
    EXPECT_NEAR(OnScreen(1, 0.0F, 0.0F).Y, 600.0F, 1.5F) << "no step for a rest of one line";
    Key(Qt::Key_PageDown);
    EXPECT_EQ(Control().GetCurrentPageIndex(), 2);
}

// The page before may reach into the view by less than a pixel.
TEST_F(VelkoPdfViewTest, ThePageThatIsReadStaysOverSizesAndLayouts) {
    ASSERT_TRUE(OpenUntilSharp(*m_pView, WritePages("pages.pdf", 20)));
    m_pView->GotoPage(9);
    ASSERT_TRUE(SettlesSharp());
    for (const QSize size : {QSize(377, 255), QSize(500, 600), QSize(431, 283), QSize(500, 600)}) {
        m_pView->resize(size);
        ASSERT_TRUE(SettlesSharp());
        EXPECT_EQ(Control().GetCurrentPageIndex(), 9);
        EXPECT_NEAR(OnScreen(9, 0.0F, 792.0F).Y, 0.0F, 1.0F);
    }
    m_pView->ScrollBy(0.0, 400.0); // more of the next one than of this
    for (const auto eLayout : {View::Layout::SinglePage, View::Layout::Continuous}) {
        m_pView->SetLayoutMode(eLayout);
        EXPECT_EQ(Control().GetCurrentPageIndex(), 10);
    }
}

struct Resize {
    QSize before;
    QSize after;
    double dbZoom;
};
constexpr Resize kResizes[] = {{{500, 600}, {700, 600}, 1.5},
                               {{700, 600}, {420, 600}, 1.5},
                               {{500, 400}, {500, 900}, 0.75},
                               {{500, 700}, {700, 500}, 2.0},
                               {{500, 600}, {60, 40}, 1.0}};
class ResizeTest : public VelkoPdfViewTest, public ::testing::WithParamInterface<Resize> {};
INSTANTIATE_TEST_SUITE_P(Sizes, ResizeTest, ::testing::ValuesIn(kResizes));

TEST_P(ResizeTest, KeepsThePagePointAtTheTopLeftAndTheZoom) {
    m_pView->resize(GetParam().before);
    ASSERT_TRUE(OpenUntilSharp(*m_pView, WritePages("pages.pdf", 20)));
    m_pView->GotoPage(7);
    m_pView->ZoomTo(GetParam().dbZoom);
    m_pView->ScrollBy(37.0, 211.0);
    ASSERT_TRUE(SettlesSharp());
    const auto pManager = vkit::ControlParts(Control()).PageViewMgr();
    const int nPage = pManager->GetVisiblePages().front();
    const auto pPlace = pManager->GetViewer()->GetPageScreenOffset(nPage);
    const Windows::Foundation::Point ptTopLeft{
        static_cast<float>(std::max(0.0, pPlace->dbOffsetX)),
        static_cast<float>(std::max(0.0, pPlace->dbOffsetY))};
    const auto pBefore = Control().DevicePointToPagePoint(ptTopLeft);
    const double dbZoom = m_pView->Zoom();

    m_pView->resize(GetParam().after);
    EXPECT_EQ(Control().GetScale(), static_cast<float>(dbZoom));
    const auto ptAfter = OnScreen(pBefore->nPageIndex, pBefore->pt.X, pBefore->pt.Y);
    EXPECT_NEAR(ptAfter.Y, ptTopLeft.Y, 1.5F);
    const bool bWider =
        Control().GetPageRectAtPoint(ptAfter, nPage).Width >= GetParam().after.width();
    if (bWider) { // a narrower page is centred
        EXPECT_NEAR(ptAfter.X, ptTopLeft.X, 1.5F);
    }
    EXPECT_TRUE(SettlesSharp());
}

// One page at a time: the page stays alone, in the middle or at its edges, and
// as far as these allow the point at the top left stays where it is.
TEST_P(ResizeTest, KeepsTheOnlyPageInItsPlace) {
    m_pView->resize(GetParam().before);
    ASSERT_TRUE(OpenUntilSharp(*m_pView, WritePages("pages.pdf", 20)));
    m_pView->SetLayoutMode(View::Layout::SinglePage);
    m_pView->GotoPage(7);
    m_pView->ZoomTo(2.0 * GetParam().dbZoom);
    m_pView->ScrollBy(-1e5, 0.0);
    const auto pManager = vkit::ControlParts(Control()).PageViewMgr();
    const auto fnPlace = [&] {
        EXPECT_EQ(pManager->GetVisiblePages(), std::vector<std::int32_t>{7});
        return *pManager->GetViewer()->GetPageScreenOffset(7);
    };
    const auto fnExpectInPlace = [&](double dbWidth) {
        const auto place = fnPlace();
        if (place.nWidth <= dbWidth) {
            EXPECT_EQ(place.dbOffsetX, (dbWidth - place.nWidth) * 0.5);
        } else {
            EXPECT_LE(place.dbOffsetX, 0.0);
            EXPECT_GE(place.dbOffsetX, dbWidth - place.nWidth);
        }
    };
    fnExpectInPlace(GetParam().before.width());
    const double dbLeft = fnPlace().dbOffsetX;
    m_pView->resize(GetParam().after);
    fnExpectInPlace(GetParam().after.width());
    if (dbLeft <= 0.0 && fnPlace().nWidth > GetParam().after.width()) {
        EXPECT_NEAR(fnPlace().dbOffsetX, dbLeft, 1.5);
    }
    for (const double dbStep : {1e5, -1e5, 30.0, -30.0}) { // scrolling turns no page
        m_pView->ScrollBy(dbStep, 0.0);
        fnExpectInPlace(GetParam().after.width());
    }
    EXPECT_EQ(Control().GetScale(), static_cast<float>(2.0 * GetParam().dbZoom));
    EXPECT_TRUE(SettlesSharp());
}

// A flick over single pages turns one page, however fast; inside a zoomed page
// it turns none.
TEST_F(VelkoPdfViewTest, AFlickTurnsOnePage) {
    m_pView->resize(500, 600);
    ASSERT_TRUE(OpenUntilSharp(*m_pView, WritePages("pages.pdf", 20)));
    m_pView->SetLayoutMode(View::Layout::SinglePage);
    m_pView->GotoPage(9);
    quint64 nTime = 1000;
    const auto fnMouse = [&](QEvent::Type eType, double dbX, bool bDown) {
        testing::SendMouse(m_pView->Window(), eType, {dbX, 300.0}, bDown, nTime += 8);
    };
    const auto fnFlick = [&](double dbFrom, double dbTo) {
        nTime += 3000;
        fnMouse(QEvent::MouseButtonPress, dbFrom, true);
        for (const double dbShare : {0.1, 0.3, 0.6, 1.0}) {
            fnMouse(QEvent::MouseMove, dbFrom + (dbTo - dbFrom) * dbShare, true);
        }
        fnMouse(QEvent::MouseButtonRelease, dbTo, false);
        EXPECT_TRUE(m_pView->Window().IsInertiaRunning());
        EXPECT_TRUE(RunUntil([&] { return !m_pView->Window().IsInertiaRunning(); }));
        EXPECT_EQ(Control().GetVisiblePages().size(), 1U);
        return Control().GetCurrentPageIndex();
    };
    EXPECT_EQ(fnFlick(450, 150), 10);
    EXPECT_EQ(fnFlick(450, 250), 11);
    EXPECT_EQ(fnFlick(50, 350), 10);
    m_pView->ZoomTo(3.0);
    m_pView->ScrollBy(1e5, 0.0);
    m_pView->ScrollBy(-400.0, 0.0);
    EXPECT_EQ(fnFlick(450, 150), 10);
    EXPECT_NEAR(vkit::ControlParts(Control()).Viewer()->GetPageScreenOffset(10)->dbOffsetX,
                500 - 2448, 1.0); // at its right edge
    EXPECT_TRUE(SettlesSharp());
}

class WheelTest : public VelkoPdfViewTest {
protected:
    void Wheel(int nAngleX, int nAngleY, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        const QPointF pt(200, 150);
        QWheelEvent event(pt, m_pView->Window().mapToGlobal(pt), {}, {nAngleX, nAngleY},
                          Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&m_pView->Window(), &event);
    }
    double Left(int nPage) { return OnScreen(nPage, 0.0F, 792.0F).X; }
    double Top(int nPage) { return OnScreen(nPage, 0.0F, 792.0F).Y; }
};

TEST_F(WheelTest, ZoomsAboutThePointerByAFifthANotchAndFinerInProportion) {
    ASSERT_TRUE(OpenUntilSharp(*m_pView, WritePages("pages.pdf", 5)));
    m_pView->ZoomTo(1.0); // a narrower page would stay in the middle
    m_pView->GotoPage(2);
    ASSERT_TRUE(SettlesSharp());
    const auto pUnder = Control().DevicePointToPagePoint({200.0F, 150.0F});
    Wheel(0, 120, Qt::ControlModifier);
    EXPECT_NEAR(Control().GetScale(), 1.2, 1e-3);
    for (int nStep = 0; nStep < 8; ++nStep) {
        Wheel(0, 15, Qt::ControlModifier);
    }
    EXPECT_NEAR(Control().GetScale(), 1.44, 1e-3);
    EXPECT_FALSE(m_pView->IsSharp()) << "nothing is rendered before the wheel rests";
    EXPECT_TRUE(SettlesSharp());
    const auto pt = OnScreen(pUnder->nPageIndex, pUnder->pt.X, pUnder->pt.Y);
    constexpr float kSteps = 9.0F; // each lays pages out in whole pixels
    EXPECT_NEAR(pt.X, 200.0F, kSteps);
    EXPECT_NEAR(pt.Y, 150.0F, kSteps);
    EXPECT_EQ(m_pView->FitMode(), View::Fit::None);
    for (int nNotch = 0; nNotch < 20; ++nNotch) {
        Wheel(0, -120, Qt::ControlModifier);
    }
    EXPECT_TRUE(RunUntil([&] { return m_pView->IsSharp(); }));
    EXPECT_NEAR(Control().GetScale(), m_pView->LeastZoom(), 1e-3);
}

TEST_F(WheelTest, ScrollsSidewaysWithShiftAndTilted) {
    ASSERT_TRUE(OpenUntilSharp(*m_pView, WritePages("pages.pdf", 5)));
    for (const auto eLayout : {View::Layout::Continuous, View::Layout::SinglePage}) {
        m_pView->SetLayoutMode(eLayout);
        m_pView->ZoomTo(3.0);
        ASSERT_TRUE(SettlesSharp());
        const double dbLeft = Left(0);
        const double dbTop = Top(0);
        Wheel(0, -60, Qt::ShiftModifier);
        EXPECT_NEAR(Left(0), dbLeft - 60.0, 1.0);
        Wheel(-120, 0);
        EXPECT_NEAR(Left(0), dbLeft - 180.0, 1.0);
        Wheel(180, 0);
        EXPECT_NEAR(Left(0), dbLeft, 1.0);
        EXPECT_NEAR(Top(0), dbTop, 1.0);
    }
}

TEST_F(WheelTest, InASinglePageItScrollsToTheEdgeAndThenTurns) {
    ASSERT_TRUE(OpenUntilSharp(*m_pView, WritePages("pages.pdf", 5)));
    m_pView->SetLayoutMode(View::Layout::SinglePage);
    m_pView->GotoPage(1);
    m_pView->FitPage();
    ASSERT_TRUE(SettlesSharp());
    Wheel(0, -120);
    EXPECT_EQ(Control().GetCurrentPageIndex(), 2) << "a whole page is in sight";
    Wheel(0, -60);
    EXPECT_EQ(Control().GetCurrentPageIndex(), 2) << "half a notch turns nothing";
    Wheel(0, -60);
    EXPECT_EQ(Control().GetCurrentPageIndex(), 3);
    Wheel(0, 120);
    EXPECT_EQ(Control().GetCurrentPageIndex(), 2);
    m_pView->ZoomTo(1.5);
    m_pView->ScrollBy(0.0, -1e5);
    ASSERT_TRUE(SettlesSharp());
    const double dbTop = Top(2);
    Wheel(0, -120);
    EXPECT_NEAR(Top(2), dbTop - 120.0, 1.0) << "the page's lower part was not seen yet";
    int nNotches = 1;
    for (; Control().GetCurrentPageIndex() == 2 && nNotches < 99; ++nNotches) {
        Wheel(0, -120);
    }
    const double dbHidden = 792.0 / 72.0 * 96.0 * 1.5 - 600.0;
    EXPECT_EQ(nNotches, static_cast<int>(std::ceil(dbHidden / 120.0)) + 1);
    EXPECT_EQ(Control().GetCurrentPageIndex(), 3);
    Wheel(0, 120);
    EXPECT_EQ(Control().GetCurrentPageIndex(), 2);
    EXPECT_NEAR(OnScreen(2, 0.0F, 0.0F).Y, 600.0, 2.0) << "back at the end of the page before";
}

TEST_F(VelkoPdfViewTest, AResizeIsOneVisibleStep) {
    ASSERT_TRUE(OpenUntilSharp(*m_pView, WritePages("pages.pdf", 3)));
    ASSERT_TRUE(SettlesSharp());
    // Every frame that is painted shows rendered pixels, none a blank page.
    int nPaints = 0;
    int nBlank = 0;
    QObject::connect(m_pView.get(), &VelkoPdfView::Painted, m_pView.get(), [&] {
        ++nPaints;
        nBlank += m_pView->Window().IsFrameHeld() || m_pView->IsSharp() ? 0 : 1;
    });
    m_pView->Window().update();
    ASSERT_TRUE(RunUntil([&] { return nPaints > 0; })) << "the reader has seen the page";
    for (const int nWidth : {520, 560, 480}) {
        m_pView->resize(nWidth, 600);
        ASSERT_TRUE(SettlesSharp());
    }
    EXPECT_GT(nPaints, 3);
    EXPECT_EQ(nBlank, 0);
}

TEST_F(VelkoPdfViewTest, AHeldFrameStaysUntilItIsReleased) {
    ASSERT_TRUE(OpenUntilSharp(*m_pView, WritePages("pages.pdf", 3)));
    ASSERT_TRUE(SettlesSharp());
    auto& window = m_pView->Window();
    const QImage shown = window.grab().toImage();
    const QImage frame = window.FrontImage();
    EXPECT_EQ(shown.convertToFormat(frame.format()), frame) << "painted pixel by pixel";
    window.HoldFrame();
    m_pView->ScrollBy(0.0, 100.0);
    EXPECT_EQ(window.grab().toImage(), shown);
    window.ReleaseFrame();
    EXPECT_NE(window.grab().toImage(), shown);
}

TEST_F(VelkoPdfViewTest, TheLoopStaysLiveWhileAPageRenders) {
    constexpr int kTickMs = 5;
    ASSERT_TRUE(OpenUntilSharp(*m_pView, WritePages("heavy.pdf", 3, 4'000)));
    ASSERT_TRUE(SettlesSharp());
    QElapsedTimer gap;
    qint64 nLongest = 0;
    int nTicks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        nLongest = std::max(nLongest, gap.restart());
        ++nTicks;
    });
    timer.start(kTickMs);
    gap.start();
    QElapsedTimer rendering;
    rendering.start();
    m_pView->ZoomTo(Control().GetMaxScale());
    m_pView->GotoPage(2);
    ASSERT_TRUE(SettlesSharp());
    // However slow the machine, the loop turns many times while the page renders.
    EXPECT_GT(nTicks, 10);
    EXPECT_LT(nLongest, rendering.elapsed() / 2) << nTicks << " ticks";
}

TEST_F(VelkoPdfViewTest, AFailingHandlerOfTheHostIsReportedAndTheViewGoesOn) {
    const auto token = Control().RenderCanvasEvent.add(
        [](const auto&, const auto&) { throw std::runtime_error("host cannot paint"); });
    m_pView->Open(WritePages("pages.pdf", 2));
    ASSERT_TRUE(RunUntil([&] { return m_pView->ViewState() != State::Opening; }));
    Control().RenderCanvasEvent.remove(token);
    ASSERT_TRUE(OpenUntilSharp(*m_pView, WritePages("pages.pdf", 2)));
    m_failures.clear();
    Control().PageChangedEvent.add(
        [](const auto&, const auto&) { throw std::runtime_error("host failed"); });
    std::string strLog;
    Platform::Debug::SetSink([&](std::string_view strText) { strLog += strText; });
    m_pView->GotoPage(1);
    ASSERT_TRUE(RunUntil([&] { return m_failures.size() == 1; }));
    EXPECT_NE(strLog.find("host failed"), std::string::npos) << strLog;
    Platform::Debug::SetSink({});
    EXPECT_TRUE(RunUntil([&] { return m_pView->CurrentPage() == 1 && m_pView->IsSharp(); }));
}

TEST_F(VelkoPdfViewTest, APageThatCannotBeShownSaysSoOnItsPlace) {
    const auto fnBoxPixels = [&] {
        const QColor box(255, 244, 206);
        const QImage frame = m_pView->Window().FrontImage();
        const auto place = Control().GetPageScreenRect(0);
        int nInside = 0;
        for (int nY = 0; place && nY < frame.height(); ++nY) {
            for (int nX = 0; nX < frame.width(); ++nX) {
                const bool bInside = nX >= place->dbOffsetX && nY >= place->dbOffsetY &&
                                     nX < place->dbOffsetX + place->nWidth &&
                                     nY < place->dbOffsetY + place->nHeight;
                nInside += bInside && frame.pixelColor(nX, nY) == box ? 1 : 0;
            }
        }
        return nInside;
    };
    QFile whole(WritePages("whole.pdf", 1));
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    std::string strBytes = whole.readAll().toStdString();
    const std::size_t nKids = strBytes.find("/Kids [10 0 R");
    ASSERT_NE(nKids, std::string::npos);
    strBytes.replace(nKids, 13, "/Kids [02 0 R"); // the tree's own root: no page at all
    m_pView->Open(Write("damaged.pdf", strBytes));
    EXPECT_TRUE(RunUntil([&] { return fnBoxPixels() > 1'000; }));
    ASSERT_TRUE(OpenUntilSharp(*m_pView, whole.fileName()));
    EXPECT_EQ(fnBoxPixels(), 0);
}

// What is wrong, and after a colon what to do, without a name out of the program.
TEST(OpenFailureTest, EveryFailureHasASentenceForTheReader) {
    QStringList reasons;
    for (int nCode = 1; nCode < 41; ++nCode) {
        reasons << vkit::ReasonOf(common::ErrorCode{nCode})
                << vkit::ReasonOf(vkit::PageFailure{0, common::ErrorCode{nCode}, "code"});
    }
    const auto fnRaise = [&](const auto&... failures) {
        (..., (reasons << vkit::ReasonOf(std::make_exception_ptr(failures))));
    };
    fnRaise(Platform::FileNotFoundException(), Platform::AccessDeniedException(),
            Platform::WriteFaultException(), Platform::DiskFullException(),
            Platform::InvalidCastException("m_pDocument"), std::runtime_error("std::runtime_error"),
            std::bad_alloc());
    const QRegularExpression sentence("^[A-Z][^_.]*[^:_.]: [^_.:]*\\.$");
    for (const QString& strReason : reasons) {
        EXPECT_TRUE(sentence.match(strReason).hasMatch()) << strReason.toStdString();
        EXPECT_FALSE(strReason.contains("Err") || strReason.contains("xception"));
    }
}

}
}
