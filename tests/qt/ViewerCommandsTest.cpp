// The desktop viewer's commands by real keys, clicks and menus.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QAction>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <cmath>
#include <functional>
#include <vector>

#include "app/viewer/CommandBar.h"
#include "app/viewer/NoticeBar.h"
#include "app/viewer/PageMenu.h"
#include "app/viewer/RecentList.h"
#include "app/viewer/RecentMenu.h"
#include "app/viewer/RecentRow.h"
#include "app/viewer/StartPane.h"
#include "app/viewer/ValueField.h"
#include "component/KeptView.h"
#include "platform/qt/QtElementWindow.h"
#include "surface/PDFViewCanvas.h"
#include "tests/qt/WindowFixture.h"
#include "widget/LinkTarget.h"
#include "widget/ShownText.h"
#include "widget/text/PageTexts.h"

namespace velko {
namespace {

using testing::RunUntil;
using View = vkit::VelkoPdfView;

class ViewerCommandsTest : public testing::WindowFixture {
protected:
    void Key(int nKey, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(
            m_pWindow->focusWidget() != nullptr ? m_pWindow->focusWidget() : m_pWindow.get(),
            static_cast<Qt::Key>(nKey), modifiers);
    }
    View& TheView() { return m_pWindow->View(); }
    bool Settles() { return ViewFixture::Settles(TheView()); }
    viewer::ValueField* Field(const QString& strName) {
        for (auto* const pField : m_pWindow->findChildren<viewer::ValueField*>()) {
            if (pField->accessibleName() == strName) {
                return pField;
            }
        }
        return nullptr;
    }
    QAction* ActionOf(const QString& strText) {
        for (QAction* pAction : m_pWindow->actions()) {
            if (QString(pAction->text()).remove('&') == strText) {
                return pAction;
            }
        }
        return nullptr;
    }
    // The middle of a rectangle of the first page, in the pages' widget.
    QPoint OnPage(float fX, float fY) {
        const auto pt = TheView().Control()->PagePointToDevicePoint(0, {fX, fY});
        return {static_cast<int>(pt.X), static_cast<int>(pt.Y)};
    }
};

struct KeyCase {
    int nKey;
    Qt::KeyboardModifiers modifiers;
    const char* szAction; // its mark shows the outcome; may be empty
    std::function<bool(View&)> fnOutcome;
};

TEST_F(ViewerCommandsTest, EachKeyDoesWhatTheMenuSaysAndTheMarksAreTrue) {
    ASSERT_TRUE(ActionOf("Fit width")->isEnabled() == false) << "there is no document yet";
    ASSERT_TRUE(ShowUntilSharp(WritePages("pages.pdf", 9)));
    EXPECT_TRUE(ActionOf("Fit page")->isChecked());
    EXPECT_FALSE(ActionOf("Back")->isEnabled());
    const std::vector<KeyCase> cases{
        {Qt::Key_1, Qt::ControlModifier, "Fit width",
         [](View& view) { return view.FitMode() == View::Fit::Width; }},
        {Qt::Key_3, Qt::ControlModifier, "Fit height",
         [](View& view) { return view.FitMode() == View::Fit::Height; }},
        {Qt::Key_0, Qt::ControlModifier, "", [](View& view) { return view.Zoom() == 1.0; }},
        {Qt::Key_Plus, Qt::ControlModifier, "", [](View& view) { return view.Zoom() > 1.0; }},
        {Qt::Key_Minus, Qt::NoModifier, "", [](View& view) { return view.Zoom() == 1.0; }},
        {Qt::Key_End, Qt::ControlModifier, "", [](View& view) { return view.CurrentPage() == 8; }},
        {Qt::Key_Left, Qt::AltModifier, "", [](View& view) { return view.CurrentPage() == 0; }},
        {Qt::Key_Right, Qt::AltModifier, "", [](View& view) { return view.CurrentPage() == 8; }},
        {Qt::Key_Home, Qt::NoModifier, "", [](View& view) { return view.CurrentPage() == 0; }},
        {Qt::Key_2, Qt::ControlModifier, "Fit page",
         [](View& view) { return view.FitMode() == View::Fit::Page; }},
        {Qt::Key_PageDown, Qt::ControlModifier, "",
         [](View& view) { return view.CurrentPage() == 1; }},
        {Qt::Key_R, Qt::NoModifier, "", [](View& view) { return view.Rotation() == 1; }},
        {Qt::Key_R, Qt::ShiftModifier, "", [](View& view) { return view.Rotation() == 0; }},
        {Qt::Key_I, Qt::ControlModifier, "Night mode", [](View& view) { return view.NightMode(); }},
        {Qt::Key_F11, Qt::NoModifier, "Full screen",
         [](View& view) { return view.window()->isFullScreen(); }},
    };
    for (const KeyCase& c : cases) {
        SCOPED_TRACE(QKeySequence(c.nKey | int(c.modifiers)).toString().toStdString());
        Key(c.nKey, c.modifiers);
        ASSERT_TRUE(RunUntil([&] { return c.fnOutcome(TheView()); }));
        ASSERT_TRUE(Settles());
        EXPECT_TRUE(*c.szAction == '\0' || ActionOf(c.szAction)->isChecked());
    }
    Key(Qt::Key_Escape);
    EXPECT_FALSE(m_pWindow->isFullScreen());
    EXPECT_TRUE(m_pWindow->findChild<viewer::CommandBar*>()->isVisible());
    Key(Qt::Key_L, Qt::ControlModifier);
    QTest::keyClicks(m_pWindow->focusWidget(), "6");
    Key(Qt::Key_Return);
    EXPECT_TRUE(RunUntil([&] { return TheView().CurrentPage() == 5; }));
    Key(Qt::Key_W, Qt::ControlModifier);
    EXPECT_TRUE(RunUntil([&] { return !ActionOf("Fit page")->isEnabled(); }));
}

TEST_F(ViewerCommandsTest, TheFieldsTakeWhatIsTypedAndSayWhatCannotBe) {
    ASSERT_TRUE(ShowUntilSharp(WritePages("pages.pdf", 9)));
    auto* const pZoom = Field("Zoom");
    const auto fnType = [&](viewer::ValueField* pField, const char* szText) {
        pField->setFocus();
        QTest::mouseClick(pField, Qt::LeftButton);
        pField->selectAll();
        QTest::keyClicks(pField, szText);
        QTest::keyClick(pField, Qt::Key_Return);
    };
    for (const auto& [szTyped, szShown] : std::vector<std::pair<const char*, const char*>>{
             {"150", "150 %"}, {"120", "120 %"}, {"100 %", "100 %"}, {"133,5", "134 %"}}) {
        fnType(pZoom, szTyped);
        EXPECT_TRUE(RunUntil([&] { return pZoom->text() == szShown; })) << szTyped;
        ASSERT_TRUE(Settles());
    }
    EXPECT_NEAR(TheView().Zoom(), 1.335, 1e-6);
    pZoom->setFocus();
    QTest::keyClicks(pZoom, "70");
    TheView().setFocus();
    EXPECT_EQ(pZoom->text(), "134 %") << "what is left behind is no zoom";

    auto* const pPage = Field("Page");
    fnType(pPage, "99");
    auto* const pAlert =
        QAccessible::queryAccessibleInterface(m_pWindow->findChild<viewer::NoticeBar*>());
    EXPECT_EQ(pAlert->role(), QAccessible::AlertMessage) << "screen readers speak what comes up";
    EXPECT_EQ(pAlert->text(QAccessible::Name), m_pWindow->Notice());
    EXPECT_TRUE(m_pWindow->Notice().contains("from 1 to 9")) << "a page that there is not";
    EXPECT_GT(TheView().y(), viewer::CommandBar::kHeight) << "the notice lies on no page";
    EXPECT_EQ(TheView().CurrentPage(), 0);
    fnType(pPage, "7");
    EXPECT_TRUE(RunUntil([&] { return TheView().CurrentPage() == 6; }));
    EXPECT_TRUE(m_pWindow->Notice().isEmpty()) << "what went well ends the notice";
    EXPECT_EQ(TheView().y(), viewer::CommandBar::kHeight);
    fnType(pPage, "chapter");
    EXPECT_TRUE(RunUntil([&] { return m_pWindow->Notice().contains("from 1 to 9"); }));
}

TEST_F(ViewerCommandsTest, AFitThatWasMadeBesideANoticeIsRightWhenThatHasGone) {
    ASSERT_TRUE(ShowUntilSharp(WritePages("pages.pdf", 3)));
    const double dbZoom = TheView().Zoom();
    m_pWindow->OpenFile(Write("empty.pdf", ""));
    ASSERT_TRUE(RunUntil([&] {
        return !m_pWindow->Notice().isEmpty() && TheView().ViewState() == View::State::Shown;
    }));
    ASSERT_TRUE(Settles());
    Key(Qt::Key_Escape);
    EXPECT_TRUE(RunUntil([&] { return m_pWindow->Notice().isEmpty() && Settles(); }));
    EXPECT_EQ(TheView().FitMode(), View::Fit::Page);
    EXPECT_NEAR(TheView().Zoom(), dbZoom, 1e-3);
}

TEST_F(ViewerCommandsTest, TheFullScreenHasTheBarWhenItIsCalled) {
    ASSERT_TRUE(ShowUntilSharp(WritePages("pages.pdf", 15)));
    const auto* pBar = m_pWindow->findChild<viewer::CommandBar*>();
    Key(Qt::Key_F11);
    ASSERT_TRUE(RunUntil([&] { return !pBar->isVisible(); }));
    const auto fnAround = [&] {
        return TheView().Window().grab().toImage().pixelColor(2, 2).lightness();
    };
    EXPECT_TRUE(RunUntil([&] { return fnAround() < 60; })) << "it is dark around the pages";
    QTest::mouseMove(&TheView().Window(), {200, 300});
    Key(Qt::Key_L, Qt::ControlModifier);
    EXPECT_TRUE(m_pWindow->isFullScreen() && pBar->isVisible());
    EXPECT_EQ(TheView().height(), m_pWindow->height()) << "it lies over the pages";
    QTest::keyClicks(m_pWindow->focusWidget(), "12");
    Key(Qt::Key_Return);
    EXPECT_TRUE(RunUntil([&] { return TheView().CurrentPage() == 11; }));
    EXPECT_FALSE(pBar->isVisible());
    QTest::mouseMove(&TheView().Window(), {200, 0});
    EXPECT_TRUE(RunUntil([&] { return pBar->isVisible(); }));
    QTest::mouseMove(&TheView().Window(), {200, 300});
    EXPECT_TRUE(RunUntil([&] { return !pBar->isVisible(); }));
    Key(Qt::Key_L, Qt::ControlModifier);
    Key(Qt::Key_Escape);
    EXPECT_TRUE(m_pWindow->isFullScreen() && !pBar->isVisible()) << "first the field is left";
    Key(Qt::Key_Escape);
    EXPECT_FALSE(m_pWindow->isFullScreen());
    EXPECT_TRUE(RunUntil([&] { return fnAround() > 200; }));
}

TEST_F(ViewerCommandsTest, TheKeysThatCloseAndEndAreInForceInTheWindowsOfHelp) {
    ASSERT_TRUE(ShowUntilSharp(WritePages("pages.pdf", 2)));
    int nEnds = 0;
    QObject::connect(m_pWindow.get(), &viewer::MainWindow::EndWanted, [&] { ++nEnds; });
    for (const char* szName : {"Keys", "About Velko Viewer"}) {
        const auto fnHelp = [&] { return m_pWindow->findChildren<QDialog*>(szName); };
        ActionOf(szName)->trigger();
        ActionOf(szName)->trigger();
        ASSERT_EQ(fnHelp().size(), 1) << "one of them is enough";
        ASSERT_TRUE(RunUntil([&] { return fnHelp()[0]->isActiveWindow(); }));
        QTest::keyClick(fnHelp()[0]->focusWidget(), Qt::Key_Q, Qt::ControlModifier);
        QTest::keyClick(fnHelp()[0]->focusWidget(), Qt::Key_W, Qt::ControlModifier);
        EXPECT_TRUE(RunUntil([&] { return fnHelp().isEmpty(); }));
    }
    EXPECT_EQ(nEnds, 2);
    EXPECT_EQ(TheView().PageCount(), 2) << "the document is not what was to close";
}

TEST_F(ViewerCommandsTest, AFitOutlastsRotationAndAnOwnZoomIsKept) {
    ASSERT_TRUE(ShowUntilSharp(WritePages("pages.pdf", 5)));
    Key(Qt::Key_1, Qt::ControlModifier);
    ASSERT_TRUE(Settles());
    Key(Qt::Key_R);
    ASSERT_TRUE(RunUntil([&] { return TheView().Rotation() == 1; }));
    const double dbTurned = TheView().width() / (792.0 / 72.0 * 96.0);
    EXPECT_NEAR(TheView().Zoom(), dbTurned, 0.01) << "the page's height lies across";
    EXPECT_EQ(TheView().FitMode(), View::Fit::Width);
    TheView().ZoomTo(1.75);
    TheView().GotoPage(3);
    ASSERT_TRUE(Settles());
    Key(Qt::Key_R);
    ASSERT_TRUE(RunUntil([&] { return TheView().Rotation() == 2; }));
    EXPECT_EQ(TheView().Zoom(), 1.75);
    EXPECT_EQ(TheView().CurrentPage(), 3);
}

// --- links -----------------------------------------------------------------

class LinkTest : public ViewerCommandsTest {
protected:
    // Links in a column at x 100, each 100 below the one before, from y 600 down.
    QString WriteLinks(const std::vector<std::string>& targets) {
        testing::PdfPage page;
        int nTop = 600;
        for (const std::string& strTarget : targets) {
            page.annots.push_back("<< /Type /Annot /Subtype /Link /Rect [90 " +
                                  std::to_string(nTop - 20) + " 110 " + std::to_string(nTop) +
                                  "] " + strTarget + " >>");
            nTop -= 100;
        }
        page.strContent = "1 0 0 rg 10 10 50 50 re f";
        return Write("links.pdf", testing::MakePdf(std::vector<testing::PdfPage>(6, page)));
    }
    void Mouse(QEvent::Type eType, QPoint pt, bool bDown) {
        testing::SendMouse(TheView().Window(), eType, pt, bDown);
    }
    void Click(int nLink) {
        const QPoint pt = OnPage(100.0F, 590.0F - 100.0F * static_cast<float>(nLink));
        Mouse(QEvent::MouseButtonPress, pt, true);
        Mouse(QEvent::MouseButtonRelease, pt, false);
    }
};

TEST_F(LinkTest, AClickFollowsADragDoesNotAndBackReturns) {
    ASSERT_TRUE(ShowUntilSharp(
        WriteLinks({"/Dest [3 /FitH 700]", "/A << /S /URI /URI (https://example.org/a) >>",
                    "/A << /S /Launch /F (calc.exe) >>", "/A << /S /Named /N /LastPage >>",
                    "/Dest (nowhere)", "/A << /S /URI /URI (#page=99) >>"})));
    auto& window = TheView().Window();
    ASSERT_TRUE(RunUntil([&] { return TheView().Texts().TextOf(0) != nullptr; }));
    const QPoint ptLink = OnPage(100.0F, 590.0F);
    EXPECT_TRUE(RunUntil([&] { // a window that just came up may tell of a leave meanwhile
        Mouse(QEvent::MouseMove, ptLink, false);
        return window.cursor().shape() == Qt::PointingHandCursor;
    }));
    Mouse(QEvent::MouseButtonPress, ptLink, true);
    Mouse(QEvent::MouseMove, ptLink - QPoint(0, 60), true);
    EXPECT_EQ(window.cursor().shape(), Qt::ClosedHandCursor) << "the first step says it";
    Mouse(QEvent::MouseMove, ptLink - QPoint(0, 90), true);
    Mouse(QEvent::MouseButtonRelease, ptLink - QPoint(0, 90), false);
    ASSERT_TRUE(Settles());
    EXPECT_FALSE(TheView().CanGoBack()) << "a drag follows nothing";
    TheView().GotoPage(0);
    ASSERT_TRUE(Settles());
    const double dbZoom = TheView().Zoom();
    Click(0);
    ASSERT_TRUE(RunUntil([&] { return TheView().CurrentPage() == 3; }));
    Mouse(QEvent::MouseMove, ptLink, false);
    EXPECT_TRUE(RunUntil([&] { return window.cursor().shape() == Qt::ArrowCursor; }))
        << "the link has gone from under the pointer";
    Key(Qt::Key_Left, Qt::AltModifier);
    ASSERT_TRUE(RunUntil([&] { return TheView().CurrentPage() == 0; }));
    EXPECT_EQ(TheView().Zoom(), dbZoom);
    ASSERT_TRUE(Settles());
    Click(1);
    EXPECT_TRUE(RunUntil([&] { return m_pWindow->Notice().contains("https://example.org/a"); }));
    Click(2);
    EXPECT_TRUE(RunUntil([&] { return m_pWindow->Notice().contains("calc.exe"); }));
    for (const int nBroken : {4, 5}) {
        Key(Qt::Key_Escape);
        EXPECT_TRUE(m_pWindow->Notice().isEmpty());
        Click(nBroken);
        EXPECT_TRUE(RunUntil([&] { return m_pWindow->Notice().contains("nowhere"); })) << nBroken;
    }
    Click(3);
    EXPECT_TRUE(RunUntil([&] { return TheView().CurrentPage() == 5; }));
}

TEST_F(LinkTest, WhatADocumentNamesIsOpenedOnlyWhereItIsHarmlessAndSaidBefore) {
    using namespace vkit;
    const FilePath document("/books/one.pdf");
    const auto fnUri = [&](const char* szUri) {
        velko::pdf::LinkGoal goal;
        goal.strUri = szUri;
        return TargetOf(goal, document);
    };
    const auto fnOther = [&](const char* szKind, const char* szValue) {
        velko::pdf::LinkGoal goal;
        goal.strOtherKind = szKind;
        goal.strOtherValue = szValue;
        return TargetOf(goal, document);
    };
    const std::vector<std::pair<LinkTarget, const char*>> harmless{
        {fnUri("https://good.example@evil.example/x"), "https://evil.example/x"},
        {fnUri("mailto:a@b.example?attach=/etc/passwd&subject=x%26y"),
         "mailto:a@b.example?subject=x%26y"},
        {fnUri("mailto:a@b.example?attachment=/etc/passwd"), "mailto:a@b.example"},
        {fnUri("WWW.example.org"), "http://www.example.org"},
        {fnUri("file:///tmp/a%20b.pdf"), "/tmp/a b.pdf"},
        {fnUri("../two.PDF"), "/two.PDF"},
        {fnOther("GoToR", "part\\three.pdf"), "/books/part/three.pdf"},
        {fnOther("GoToR", "/far/four.pdf"), "/far/four.pdf"}};
    for (const auto& [target, szText] : harmless) {
        const auto* const pAddress = std::get_if<LinkToAddress>(&target);
        const auto* const pFile = std::get_if<LinkToFile>(&target);
        ASSERT_TRUE(pAddress != nullptr || pFile != nullptr) << szText;
        EXPECT_EQ(
            pFile != nullptr ? pFile->path.Text() : pAddress->address.toString(QUrl::FullyEncoded),
            szText);
    }
    for (const char* szUri :
         {"javascript:alert(1)", "data:text/html,x", "ftp://a.example/b.pdf", "smb://far/b.pdf",
          "file://far/share/b.pdf", "file:///bin/sh", "file:///tmp/a.pdf%00.sh", "http:///x",
          "vnd.other:x", "calc.exe", "file:///tmp/a.desktop"}) {
        EXPECT_TRUE(std::holds_alternative<RefusedLink>(fnUri(szUri))) << szUri;
    }
    for (const char* szKind : {"Launch", "JavaScript", "SubmitForm", "ImportData", "Rendition",
                               "GoToE", "Movie", "Sound", "Hide", "ResetForm", "Trans"}) {
        EXPECT_TRUE(std::holds_alternative<RefusedLink>(fnOther(szKind, "b.pdf"))) << szKind;
    }
    EXPECT_TRUE(std::holds_alternative<RefusedLink>(fnOther("GoToR", "run.sh")));
    EXPECT_EQ(ShownText(QString("a.example/") + QChar(0x202E) + "fdp.exe\r\n"),
              QString("a.example/") + QChar(0xFFFD) + "fdp.exe")
        << "letters that are turned around";
}

TEST_F(LinkTest, AnotherDocumentIsOpenedInAWindowOnceTheReaderAgrees) {
    ASSERT_TRUE(ShowUntilSharp(WriteLinks({"/A << /S /GoToR /F (other.pdf) /D [0 /Fit] >>"})));
    QSignalSpy wanted(m_pWindow.get(), &viewer::MainWindow::WindowWanted);
    Click(0);
    const QString strOther = QFileInfo(m_folder.filePath("other.pdf")).absoluteFilePath();
    ASSERT_TRUE(RunUntil([&] { return m_pWindow->Notice().contains(strOther); }));
    EXPECT_EQ(wanted.count(), 0);
    m_pWindow->findChild<viewer::NoticeBar*>()->findChild<QPushButton*>()->click();
    ASSERT_EQ(wanted.count(), 1);
    EXPECT_EQ(wanted[0][0].value<vkit::FilePath>().Text(), strOther);
}

TEST_F(LinkTest, AFitThatALinkAsksForStaysInForceAndAPlaceAloneLeavesTheZoom) {
    ASSERT_TRUE(ShowUntilSharp(
        WriteLinks({"/Dest [3 /FitH 400]", "/Dest [4 /Fit]", "/Dest [2 /XYZ null 600 0]"})));
    const auto fnFollow = [&](int nLink, int nPage) {
        TheView().GotoPage(0);
        ASSERT_TRUE(Settles());
        Click(nLink);
        ASSERT_TRUE(RunUntil([&] { return TheView().CurrentPage() == nPage; }));
        ASSERT_TRUE(Settles());
    };
    const auto fnTop = [&](int nPage, float fY) {
        return TheView().Control()->PagePointToDevicePoint(nPage, {0.0F, fY}).Y;
    };
    fnFollow(0, 3);
    EXPECT_EQ(TheView().FitMode(), View::Fit::Width);
    EXPECT_NEAR(fnTop(3, 400.0F), 0.0F, 1.5F);
    fnFollow(1, 4);
    EXPECT_EQ(TheView().FitMode(), View::Fit::Page);
    TheView().ZoomTo(1.25);
    fnFollow(2, 2);
    EXPECT_NEAR(TheView().Zoom(), 1.25, 1e-3);
    EXPECT_NEAR(fnTop(2, 600.0F), 0.0F, 1.5F);
}

TEST_F(LinkTest, BackBringsTheFitThatWasInForceAlsoInAWindowOfAnotherSize) {
    ASSERT_TRUE(ShowUntilSharp(WriteLinks({"/Dest [3 /XYZ 0 700 1.5]"})));
    for (const auto eLayout : {View::Layout::Continuous, View::Layout::SinglePage}) {
        TheView().SetLayoutMode(eLayout);
        TheView().GotoPage(0);
        TheView().FitWidth();
        ASSERT_TRUE(Settles());
        Click(0);
        ASSERT_TRUE(RunUntil([&] { return TheView().CurrentPage() == 3; }));
        EXPECT_EQ(TheView().FitMode(), View::Fit::None);
        m_pWindow->resize(m_pWindow->width() - 100, m_pWindow->height());
        ASSERT_TRUE(Settles());
        TheView().GoBack();
        ASSERT_TRUE(RunUntil([&] { return TheView().CurrentPage() == 0; }));
        EXPECT_EQ(TheView().FitMode(), View::Fit::Width);
        EXPECT_EQ(TheView().Control()->GetPageScreenRect(0)->nWidth, TheView().Window().width());
        TheView().GoForward();
        ASSERT_TRUE(RunUntil([&] { return TheView().CurrentPage() == 3; }));
        EXPECT_NEAR(TheView().Zoom(), 1.5, 1e-3);
        EXPECT_EQ(TheView().FitMode(), View::Fit::None);
    }
}

TEST_F(LinkTest, TheMenuAtAWebLinkCopiesItsAddress) {
    ASSERT_TRUE(ShowUntilSharp(WriteLinks({"/A << /S /URI /URI (https://example.org/a) >>"})));
    auto& window = TheView().Window();
    ASSERT_TRUE(RunUntil([&] { return TheView().Texts().TextOf(0) != nullptr; }));
    const QPoint ptLink = OnPage(100.0F, 590.0F);
    QString strTarget;
    QObject::connect(&TheView(), &View::LinkHovered, &TheView(),
                     [&](const QString& strText) { strTarget = strText; });
    ASSERT_TRUE(RunUntil([&] {
        Mouse(QEvent::MouseMove, ptLink, false);
        return !strTarget.isEmpty();
    }));
    QContextMenuEvent event(QContextMenuEvent::Mouse, ptLink, window.mapToGlobal(ptLink));
    QCoreApplication::sendEvent(&window, &event);
    const auto fnMenu = [&] { return m_pWindow->findChild<viewer::PageMenu*>(); };
    ASSERT_TRUE(RunUntil([&] { return fnMenu() != nullptr; }));
    const auto* pMenu = fnMenu();
    ASSERT_TRUE(pMenu != nullptr && pMenu->actions()[1]->text().contains("address"));
    pMenu->actions()[1]->trigger();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "https://example.org/a");
}

// --- recent files, the dark -------------------------------------

TEST_F(ViewerCommandsTest, RecentFilesOpenFromTheMenuAndMissingOnesAreMarked) {
    const QString strKept = WritePages("kept.pdf", 3);
    const QString strGone = WritePages("gone.pdf", 2);
    TheView().KeepPlace(true);
    ASSERT_TRUE(ShowUntilSharp(strGone));
    ASSERT_TRUE(ShowUntilSharp(strKept));
    TheView().CloseDocument();
    ASSERT_TRUE(RunUntil([] { return vkit::RecentFiles().size() == 2; }));
    QFile::remove(strGone);
    auto& menu = m_pWindow->findChild<viewer::CommandBar*>()->Menu().Recent();
    menu.Fill();
    ASSERT_GE(menu.actions().size(), 2);
    EXPECT_TRUE(RunUntil([&] { return !menu.actions()[1]->isEnabled(); }));
    EXPECT_TRUE(menu.actions()[1]->text().endsWith("gone.pdf\tnot found"));
    auto* const pList = m_pWindow->findChild<viewer::RecentList*>();
    ASSERT_EQ(pList->Rows().size(), 2U);
    EXPECT_EQ(m_pWindow->focusWidget(), pList->Rows()[0]) << "the keys are at the latest";
    QTest::keyClick(pList->Rows()[1], Qt::Key_Delete);
    ASSERT_EQ(vkit::RecentFiles(), std::vector<std::string>{strKept.toStdString()});
    pList->ClearButton()->click();
    EXPECT_EQ(vkit::RecentFiles().size(), 1U) << "it asks first";
    menu.actions()[0]->trigger();
    ASSERT_TRUE(RunUntil([&] { return TheView().PageCount() == 3; }));
    menu.actions().last()->trigger(); // asks whether the list is to be cleared
    EXPECT_FALSE(vkit::RecentFiles().empty());
    QTest::keyClick(m_pWindow->focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(vkit::RecentFiles().empty());
}

TEST_F(ViewerCommandsTest, TheRowWithTheKeysIsInSightAlsoInASmallWindow) {
    TheView().KeepPlace(true);
    m_pWindow->resize(400, 300);
    for (int nFile = 0; nFile < 8; ++nFile) {
        ASSERT_TRUE(ShowUntilSharp(WritePages(QString::number(nFile), 1)));
    }
    TheView().CloseDocument();
    const auto& rows = m_pWindow->findChild<viewer::RecentList*>()->Rows();
    const auto* const pPane = m_pWindow->findChild<viewer::StartPane*>();
    const auto fnIsInSight = [&](const QWidget* pRow) {
        return pPane->rect().contains(QRect(pRow->mapTo(pPane, QPoint()), pRow->size()));
    };
    ASSERT_TRUE(RunUntil([&] { return rows.size() == 8 && !fnIsInSight(rows[7]); }));
    for (std::size_t nRow = 0; nRow < 7; ++nRow) {
        QTest::keyClick(rows[nRow], Qt::Key_Down);
    }
    EXPECT_TRUE(RunUntil([&] { return fnIsInSight(rows[7]); }));
    auto* const pButton = m_pWindow->findChild<viewer::CommandBar*>()->findChild<QToolButton*>();
    pButton->setFocus();
    QTest::keyClick(pButton, Qt::Key_Escape);
    EXPECT_TRUE(RunUntil([&] { return rows[0]->hasFocus(); })) << "there are no pages to go to";
}

// As contrasts are counted by.
double Luminance(const QColor& color) {
    const auto fnLinear = [](double dbValue) {
        return dbValue <= 0.04045 ? dbValue / 12.92 : std::pow((dbValue + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * fnLinear(color.redF()) + 0.7152 * fnLinear(color.greenF()) +
           0.0722 * fnLinear(color.blueF());
}

TEST_F(ViewerCommandsTest, NothingFlashesUpInTheDark) {
    const auto fnShows = [&](const QColor& paper) {
        return RunUntil([&] {
            const QImage frame = TheView().Window().FrontImage();
            return frame.pixelColor(OnPage(300.0F, 200.0F)) == paper;
        });
    };
    constexpr int kBright = 200;
    ASSERT_TRUE(ShowUntilSharp(WritePages("pages.pdf", 30)));
    Key(Qt::Key_I, Qt::ControlModifier);
    const auto [paper, ink] = vkit::NightPageColors();
    EXPECT_GE((Luminance(ink) + 0.05) / (Luminance(paper) + 0.05), 7.0) << "readable for hours";
    ASSERT_TRUE(fnShows(paper));
    ASSERT_TRUE(Settles());
    int nFrames = 0;
    int nBright = 0;
    QObject::connect(&TheView(), &View::Painted, &TheView(), [&] {
        QImage frame = TheView().Window().FrontImage();
        ++nFrames;
        for (int nY = 0; nY < frame.height(); nY += 7) {
            for (int nX = 0; nX < frame.width(); nX += 7) {
                nBright += frame.pixelColor(nX, nY).lightness() > kBright ? 1 : 0;
            }
        }
    });
    TheView().ScrollBy(0.0, 700.0);
    TheView().ZoomTo(2.0);
    ASSERT_TRUE(Settles());
    m_pWindow->resize(700, 800);
    TheView().RotateBy(1);
    TheView().GotoPage(20);
    ASSERT_TRUE(Settles());
    TheView().Open(WritePages("other.pdf", 2));
    ASSERT_TRUE(RunUntil([&] { return TheView().PageCount() == 2; }));
    ASSERT_TRUE(Settles());
    EXPECT_GT(nFrames, 2);
    EXPECT_EQ(nBright, 0);
    TheView().Control()->RenderCanvasEvent.add([](const auto&, const auto& pArgs) {
        pArgs->Canvas->FillRect({0, 0, 20, 20}, 0xFFFFFFFFU); // white is a host's as it is
    });
    TheView().Control()->UpdateViewer();
    EXPECT_EQ(TheView().Window().FrontImage().pixelColor(10, 10), QColor(Qt::white));
    const QImage window = m_pWindow->grab().toImage();
    EXPECT_LT(window.pixelColor(2, 2).lightness(), 100) << "the bar goes into the dark too";
    EXPECT_LT(window.pixelColor(2, window.height() - 3).lightness(), 100) << "and what is around";
    TheView().GotoPage(0);
    ASSERT_TRUE(Settles());
    Key(Qt::Key_I, Qt::ControlModifier);
    ASSERT_TRUE(fnShows(Qt::white));
    ASSERT_TRUE(Settles());
    EXPECT_EQ(m_pWindow->grab().toImage().pixelColor(2, window.height() - 3),
              QColor(224, 224, 224));
}

}
}
