// The password dialog as the reader has it: widgets, keys, clicks, a screen reader.
#include <gtest/gtest.h>

#include <unistd.h>
#include <QAccessible>
#include <QInputMethodEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTest>

#include "app/viewer/PasswordFd.h"
#include "control/IJudgePasswordHelper.h"
#include "control/PDFViewCtrl.h"
#include "platform/qt/QtElementWindow.h"
#include "platform/qt/QtSecretEdit.h"
#include "platform/ui/Window.h"
#include "tests/qt/WindowFixture.h"

namespace velko {
namespace {

using testing::RunUntil;
using View = vkit::VelkoPdfView;
using State = View::State;

class PasswordDialogTest : public testing::WindowFixture {
protected:
    void Ask() {
        TheView().Open(WriteLocked(3));
        ASSERT_TRUE(RunUntil([&] { return TheView().ViewState() == State::PasswordNeeded; }));
        ASSERT_NE(Box(), nullptr);
    }
    View& TheView() { return m_pWindow->View(); }
    template <class Widget>
    QList<Widget*> Shown() {
        auto found = TheView().Window().findChildren<Widget*>();
        found.removeIf([](const Widget* pWidget) { return !pWidget->isVisible(); });
        return found;
    }
    QLineEdit* Box() { return Shown<QLineEdit>().value(0); }
    QPushButton* Button(const QString& strText) {
        for (auto* const pButton : Shown<QPushButton>()) {
            if (pButton->text() == strText) {
                return pButton;
            }
        }
        return nullptr;
    }
    bool Says(const QString& strWords) {
        const auto labels = Shown<QLabel>();
        return std::any_of(labels.begin(), labels.end(),
                           [&](const QLabel* pLabel) { return pLabel->text().contains(strWords); });
    }
    // As the window system delivers it: to whatever lies on top there.
    void Click(QWidget* pAt, Qt::MouseButton eButton = Qt::LeftButton) {
        QTest::mouseClick(m_pWindow->windowHandle(), eButton, {},
                          pAt->mapTo(m_pWindow.get(), pAt->rect().center()));
    }
    bool Comes(State eState) {
        return RunUntil([&] { return TheView().ViewState() == eState; });
    }
};

TEST_F(PasswordDialogTest, IsUsedByKeysAlone) {
    Ask();
    EXPECT_EQ(m_pWindow->focusWidget(), Box());
    EXPECT_TRUE(Says("locked.pdf"));
    QTest::keyClick(Box(), Qt::Key_Return);
    EXPECT_TRUE(Says("Enter the password"));
    QTest::keyClicks(Box(), "guess");
    std::vector<bool> waits; // what the pointer says while it is judged, and after
    TheView().Window().View().PointerCursorChanged.add(
        [&] { waits.push_back(QGuiApplication::overrideCursor() != nullptr); });
    QTest::keyClick(Box(), Qt::Key_Return);
    EXPECT_EQ(waits, (std::vector<bool>{true, false}));
    EXPECT_TRUE(Says("does not open"));
    EXPECT_FALSE(Says("Enter the password"));
    EXPECT_TRUE(Box()->text().isEmpty());
    EXPECT_TRUE(Box()->hasFocus());
    for (const char* szNext : {"OK", "Cancel"}) { // the keys stay in the dialog
        QTest::keyClick(m_pWindow->focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(m_pWindow->focusWidget(), Button(szNext));
    }
    QTest::keyClick(m_pWindow->focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(m_pWindow->focusWidget(), Box());
    m_pWindow->setFocus(); // as commands of the window do
    EXPECT_EQ(m_pWindow->focusWidget(), Box());
    QTest::keyClicks(Box(), "secret");
    QTest::keyClick(m_pWindow->focusWidget(), Qt::Key_Tab);
    QTest::keyClick(m_pWindow->focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(Comes(State::Shown));
    EXPECT_EQ(TheView().PageCount(), 3);
    EXPECT_EQ(Box(), nullptr);
    EXPECT_EQ(m_pWindow->focusWidget(), &TheView().Window()) << "the pages have the keys again";
}

TEST_F(PasswordDialogTest, IsCancelledByEscapeAClickAndAButtonOfTheMouse) {
    const QString strBefore = WritePages("before.pdf", 2);
    ASSERT_TRUE(ShowUntilSharp(strBefore));
    const std::function<void()> ways[] = {
        [&] { QTest::keyClick(Box(), Qt::Key_Escape); },
        [&] { QTest::keyClick(Box(), Qt::Key_Left, Qt::AltModifier); },
        [&] { Click(Button("Cancel")); },
        [&] { Click(Box()->parentWidget()->parentWidget(), Qt::BackButton); },
    };
    for (const auto& fnCancel : ways) {
        Ask();
        QTest::keyClicks(Box(), "secret");
        fnCancel();
        ASSERT_TRUE(Comes(State::Shown)) << "what was shown before is back";
        EXPECT_EQ(TheView().File().Text(), strBefore);
        EXPECT_EQ(Box(), nullptr);
    }
    Ask();
    QTest::keyClicks(Box(), "secret");
    Click(Button("OK"));
    EXPECT_TRUE(Comes(State::Shown));
    EXPECT_EQ(TheView().PageCount(), 3);
}

TEST_F(PasswordDialogTest, AClickBesideTheBoxKeepsWhatWasTyped) {
    Ask();
    QTest::keyClicks(Box(), "sec");
    QTest::mouseClick(m_pWindow->windowHandle(), Qt::LeftButton, {},
                      TheView().mapTo(m_pWindow.get(), QPoint(20, 20)));
    EXPECT_EQ(m_pWindow->focusWidget(), Box());
    QTest::keyClicks(m_pWindow->focusWidget(), "ret");
    QTest::keyClick(m_pWindow->focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(Comes(State::Shown));
}

TEST_F(PasswordDialogTest, AKeyThatIsHeldDownAnswersOnce) {
    Ask();
    QTest::keyClicks(Box(), "guess");
    for (const bool bRepeated : {false, true, true}) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_Return, {}, "\r", bRepeated);
        QCoreApplication::sendEvent(m_pWindow->focusWidget(), &event);
    }
    EXPECT_TRUE(Says("does not open"));
    EXPECT_FALSE(Says("Enter the password"));
}

TEST_F(PasswordDialogTest, HintsCanBeReadInColorsThatChange) {
    const QPalette before = QGuiApplication::palette();
    Ask();
    QTest::keyClick(Box(), Qt::Key_Return);
    const auto fnGap = [](const QWidget* pWidget, QPalette::ColorRole eText,
                          QPalette::ColorRole eOn) {
        const QPalette& palette = pWidget->palette();
        return std::abs(palette.color(eText).lightness() - palette.color(eOn).lightness());
    };
    for (const bool bDark : {false, true}) {
        QPalette palette(bDark ? QColor(30, 30, 30) : QColor(240, 240, 240));
        palette.setColor(QPalette::PlaceholderText, QColor(0, 0, 0, 128)); // whatever stands around
        QApplication::setPalette(palette);
        EXPECT_GT(fnGap(Box(), QPalette::PlaceholderText, QPalette::Base), 100) << bDark;
        int nAlerts = 0;
        for (const auto* const pLabel : Shown<QLabel>()) {
            nAlerts += pLabel->text() == "Enter the password." &&
                               fnGap(pLabel, QPalette::WindowText, QPalette::Window) > 100
                           ? 1
                           : 0;
        }
        EXPECT_EQ(nAlerts, 1) << bDark;
    }
    QApplication::setPalette(before);
}

// What a screen reader comes to from here on: role and name, in its order.
void Walk(QAccessibleInterface& at, QStringList& found) {
    if (at.state().invisible) {
        return;
    }
    found << QString("%1 %2").arg(qAccessibleRoleString(at.role()), at.text(QAccessible::Name));
    for (int nChild = 0; nChild < at.childCount(); ++nChild) {
        Walk(*at.child(nChild), found);
    }
}

TEST_F(PasswordDialogTest, SpeaksToAScreenReader) {
    Ask();
    QTest::keyClicks(Box(), "x");
    QTest::keyClick(Box(), Qt::Key_Return);
    auto* pDialog = QAccessible::queryAccessibleInterface(Box());
    EXPECT_TRUE(pDialog->state().passwordEdit);
    while (pDialog != nullptr && pDialog->role() != QAccessible::Dialog) {
        pDialog = pDialog->parent();
    }
    ASSERT_NE(pDialog, nullptr);
    QStringList found;
    Walk(*pDialog, found);
    found.removeAll("Client "); // areas
    const QStringList expected{
        "Dialog Password",
        "StaticText This document is protected",
        "StaticText locked.pdf",
        "EditableText Password",
        "AlertMessage That password does not open the document. Try another.",
        "Button OK",
        "Button Cancel"};
    EXPECT_EQ(found.join('\n').toStdString(), expected.join('\n').toStdString());
}

TEST_F(PasswordDialogTest, TheRectangleOfTheKeyboardMovesTheWidgetsAndTheirPlaceFollowsTheWindow) {
    Ask();
    auto* const pDialog = Box()->parentWidget();
    const QSize half = TheView().size() / 2;
    EXPECT_NEAR(pDialog->geometry().center().x(), half.width(), 1);
    EXPECT_NEAR(pDialog->geometry().center().y(), half.height(), 1);
    m_pWindow->resize(400, 300);
    const QRect rcInside = TheView().Window().rect();
    EXPECT_TRUE(rcInside.contains(pDialog->geometry())) << "of a small window too";
    EXPECT_TRUE(pDialog->rect().contains(Button("Cancel")->geometry()));
}

TEST_F(PasswordDialogTest, WhateverEndsTheQuestionLeavesNoWidget) {
    const auto fnIsGone = [](const QPointer<QLineEdit>& pBox) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return pBox.isNull();
    };
    Ask();
    QPointer<QLineEdit> pBox = Box();
    TheView().Open(WritePages("free.pdf", 1));
    ASSERT_TRUE(Comes(State::Shown));
    EXPECT_TRUE(fnIsGone(pBox));
    Ask();
    pBox = Box();
    TheView().CloseDocument();
    EXPECT_TRUE(fnIsGone(pBox));
    Ask();
    TheView().Open(Write("second.pdf", [] {
        testing::PdfOptions locked;
        locked.strUserPassword = "other";
        return testing::MakePdf({testing::PdfPage()}, locked);
    }()));
    ASSERT_TRUE(RunUntil([&] { return Says("second.pdf"); }));
    EXPECT_EQ(Shown<QLineEdit>().size(), 1);
    QTest::keyClicks(Box(), "other");
    // A host that destroys everything inside the event of the open.
    TheView().Control()->OpenDocEvent.add([&](const auto&, const auto&) { m_pWindow.reset(); });
    QTest::keyClick(Box(), Qt::Key_Return);
    EXPECT_EQ(m_pWindow, nullptr);
}

TEST_F(PasswordDialogTest, TheLastDocumentAskedForIsTheOneThatAsks) {
    const QString strBefore = WritePages("before.pdf", 2);
    ASSERT_TRUE(ShowUntilSharp(strBefore));
    for (int nRound = 0; nRound < 2; ++nRound) { // a question takes the place of another
        Ask();
        QCoreApplication::processEvents(); // what the first one's end left to be done
        EXPECT_EQ(TheView().ViewState(), State::PasswordNeeded);
        EXPECT_NE(Box(), nullptr);
    }
    QTest::keyClick(Box(), Qt::Key_Escape);
    ASSERT_TRUE(Comes(State::Shown));
    EXPECT_EQ(TheView().File().Text(), strBefore);
}

TEST_F(PasswordDialogTest, AQuestionGivenUpAtOnceIsOver) {
    TheView().Open(WriteLocked());
    ASSERT_TRUE(RunUntil([&] { return TheView().Control()->PasswordJudge() != nullptr; }));
    TheView().Control()->PasswordJudge()->OnPasswordCancel();
    EXPECT_TRUE(Comes(State::Empty));
}

TEST_F(PasswordDialogTest, WhatWasTypedIsClearedWhereItStood) {
    Platform::Qt::QtSecretEdit edit(nullptr);
    Platform::SecretText typed;
    edit.OnTyped = [&](Platform::SecretText secret) { typed = std::move(secret); };
    QTest::keyClicks(&edit, "correct horse");
    EXPECT_EQ(typed, "correct horse");
    const QString strShared = edit.text(); // the edit's own memory
    QTest::keyClicks(&edit, {});
    const auto* const pWhere = strShared.constData();
    edit.SetSecret({});
    EXPECT_EQ(strShared.constData(), pWhere);
    EXPECT_EQ(strShared, QString(13, QChar(0)));
    EXPECT_TRUE(edit.text().isEmpty());
    edit.SetSecret("again");
    EXPECT_EQ(edit.text(), "again");
    edit.insert(" and again\r\n"); // as a line is copied
    EXPECT_EQ(typed, "again and again");
}

TEST_F(PasswordDialogTest, AccentsCountHoweverTheyAreCoded) {
    testing::PdfOptions locked;
    locked.strUserPassword = "caf\u00e9";
    TheView().Open(Write("accent.pdf", testing::MakePdf({testing::PdfPage()}, locked)));
    ASSERT_TRUE(Comes(State::PasswordNeeded));
    QTest::keyClicks(Box(), "cafe");
    QTest::keyClick(Box(), Qt::Key_Return);
    EXPECT_TRUE(Says("does not open"));
    QInputMethodEvent event;
    event.setCommitString(QStringLiteral("cafe\u0301"));
    QCoreApplication::sendEvent(Box(), &event);
    QTest::keyClick(Box(), Qt::Key_Return);
    EXPECT_TRUE(Comes(State::Shown));
}

TEST_F(PasswordDialogTest, ADescriptorGivesAPassword) {
    const auto fnRead = [](const std::string& strBytes) {
        int ends[2];
        EXPECT_EQ(::pipe(ends), 0);
        EXPECT_EQ(::write(ends[1], strBytes.data(), strBytes.size()),
                  static_cast<ssize_t>(strBytes.size()));
        ::close(ends[1]);
        return viewer::ReadPassword(ends[0]);
    };
    EXPECT_EQ(fnRead("secret\r\n"), Platform::SecretText("secret"));
    EXPECT_EQ(fnRead("\n\n"), Platform::SecretText("\n"));
    EXPECT_EQ(fnRead(""), Platform::SecretText());
    EXPECT_FALSE(viewer::ReadPassword(9999));
}

}
}
