// The page of keys, and the presentation: what is changed there holds, and comes back.
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include "app/viewer/WindowList.h"
#include "app/viewer/keys/KeyField.h"
#include "app/viewer/keys/KeysDialog.h"
#include "app/viewer/keys/OwnKeys.h"
#include "platform/qt/QtElementWindow.h"
#include "tests/qt/WindowFixture.h"

namespace velko {
namespace {

using testing::RunUntil;
using viewer::Command;
using viewer::Commands;
using View = vkit::VelkoPdfView;

class ViewerKeysTest : public testing::WindowFixture {
protected:
    ~ViewerKeysTest() override { viewer::OwnKeys::ForgetAll(); }

    viewer::KeysDialog& OpenDialog() {
        Press(Qt::Key_F1);
        EXPECT_TRUE(RunUntil([&] { return Dialog() != nullptr; }));
        return *Dialog();
    }
    viewer::KeysDialog* Dialog() { return m_pWindow->findChild<viewer::KeysDialog*>(); }
    Commands& TheCommands() { return *m_pWindow->findChild<Commands*>(); }
    void Press(int nKey, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&TheView().Window(), static_cast<Qt::Key>(nKey), modifiers);
    }
    View& TheView() { return m_pWindow->View(); }
    bool Settles() { return ViewFixture::Settles(TheView()); }

    // The only row that the search finds.
    static void Find(viewer::KeysDialog& dialog, const QString& strText) {
        auto* const pSearch = dialog.findChild<QLineEdit*>();
        pSearch->clear();
        QTest::keyClicks(pSearch, strText);
    }
    static void Click(viewer::KeysDialog& dialog, const QString& strText) {
        for (auto* const pButton : dialog.findChildren<QPushButton*>()) {
            if (QString(pButton->text()).remove('&') == strText) {
                ASSERT_TRUE(pButton->isVisible() && pButton->isEnabled()) << strText.toStdString();
                pButton->click();
                return;
            }
        }
        FAIL() << strText.toStdString();
    }
    static void Answer(viewer::KeysDialog& dialog, int nKey, Qt::KeyboardModifiers modifiers) {
        QTest::keyClick(dialog.findChild<viewer::KeyField*>(), static_cast<Qt::Key>(nKey),
                        modifiers);
    }
};

TEST_F(ViewerKeysTest, KeysAreFoundChangedTakenAwayAndKept) {
    ASSERT_TRUE(ShowUntilSharp(WritePages("pages.pdf", 9)));
    viewer::KeysDialog& dialog = OpenDialog();
    Find(dialog, "ctrl+end");
    EXPECT_EQ(dialog.findChild<QTreeWidget*>()->currentItem()->text(0), "Last page");
    Click(dialog, "Change…");
    Answer(dialog, Qt::Key_L, Qt::ShiftModifier | Qt::ControlModifier);
    Press(Qt::Key_L, Qt::ShiftModifier | Qt::ControlModifier);
    EXPECT_TRUE(RunUntil([&] { return TheView().CurrentPage() == 8; }));
    EXPECT_FALSE(Commands::FirstKeys(Command::LastPage)
                     .contains(TheCommands().KeysOf(Command::LastPage).first()));

    // A key of another command is asked about; of the pages it is refused.
    Find(dialog, "first page");
    Click(dialog, "Add…");
    Answer(dialog, Qt::Key_I, Qt::ControlModifier);
    EXPECT_EQ(TheCommands().HolderOf(QKeySequence("Ctrl+I")), Command::Night);
    Click(dialog, "Use it here");
    EXPECT_EQ(TheCommands().HolderOf(QKeySequence("Ctrl+I")), Command::FirstPage);
    EXPECT_TRUE(TheCommands().KeysOf(Command::Night).isEmpty());
    EXPECT_EQ(TheCommands().KeysOf(Command::FirstPage).size(), 2);
    Click(dialog, "Change…");
    Answer(dialog, Qt::Key_Space, Qt::NoModifier);
    EXPECT_FALSE(TheCommands().HolderOf(QKeySequence(Qt::Key_Space)).has_value());
    Click(dialog, "Change…");
    Answer(dialog, Qt::Key_Escape, Qt::NoModifier);
    EXPECT_EQ(TheCommands().KeysOf(Command::FirstPage).size(), 2);

    // They hold in a window that comes later, and are given back in all.
    viewer::MainWindow other(View::CreateControl(), {500, 400});
    other.CompleteBar();
    EXPECT_EQ(other.findChild<Commands*>()->HolderOf(QKeySequence("Ctrl+I")), Command::FirstPage);
    Click(dialog, "All as at first");
    other.ReadKeys();
    for (const Commands* pCommands : {&TheCommands(), other.findChild<Commands*>()}) {
        for (int n = 0; n < static_cast<int>(Command::kCount); ++n) {
            const auto eCommand = static_cast<Command>(n);
            EXPECT_EQ(pCommands->KeysOf(eCommand), Commands::FirstKeys(eCommand));
        }
    }
}

TEST_F(ViewerKeysTest, NoTwoCommandsComeWithOneKey) {
    m_pWindow->CompleteBar();
    for (int n = 0; n < static_cast<int>(Command::kCount); ++n) {
        const auto eCommand = static_cast<Command>(n);
        for (const QKeySequence& key : Commands::FirstKeys(eCommand)) {
            EXPECT_EQ(TheCommands().HolderOf(key), eCommand) << key.toString().toStdString();
        }
    }
}

TEST_F(ViewerKeysTest, APresentationShowsPageByPageAndComesBackToWhatWas) {
    ASSERT_TRUE(ShowUntilSharp(WritePages("pages.pdf", 9)));
    TheView().ZoomTo(0.7);
    TheView().GotoPage(2);
    ASSERT_TRUE(Settles());
    const QRect rcPages = TheView().geometry();
    Press(Qt::Key_F5);
    ASSERT_TRUE(Settles());
    EXPECT_TRUE(m_pWindow->isFullScreen());
    EXPECT_EQ(TheView().geometry(), m_pWindow->rect());
    EXPECT_EQ(TheView().LayoutMode(), View::Layout::SinglePage);
    EXPECT_EQ(TheView().CurrentPage(), 2);
    Press(Qt::Key_PageDown);
    QTest::mouseClick(&TheView().Window(), Qt::LeftButton, {}, {5, 5});
    ASSERT_TRUE(Settles());
    EXPECT_EQ(TheView().CurrentPage(), 4);
    for (const int nKey : {Qt::Key_R, Qt::Key_T, Qt::Key_W, Qt::Key_W, Qt::Key_F6}) {
        Press(nKey); // commands of the window elsewhere
    }
    EXPECT_EQ(TheView().Rotation(), 0);
    EXPECT_EQ(TheView().LayoutMode(), View::Layout::SinglePage);
    EXPECT_EQ(TheView().FitMode(), View::Fit::Page);
    EXPECT_TRUE(TheView().Window().hasFocus());
    Press(Qt::Key_B);
    Press(Qt::Key_Space); // the page comes back first
    Press(Qt::Key_7);
    Press(Qt::Key_Return);
    ASSERT_TRUE(Settles());
    EXPECT_EQ(TheView().CurrentPage(), 6);
    Press(Qt::Key_Escape);
    ASSERT_TRUE(RunUntil([&] { return TheView().geometry() == rcPages; }));
    ASSERT_TRUE(Settles());
    EXPECT_FALSE(m_pWindow->isFullScreen());
    EXPECT_EQ(TheView().LayoutMode(), View::Layout::Continuous);
    EXPECT_EQ(TheView().CurrentPage(), 6);
    EXPECT_NEAR(TheView().Zoom(), 0.7, 0.001);

    // It ends with its document.
    Press(Qt::Key_F5);
    TheView().CloseDocument();
    EXPECT_TRUE(RunUntil([&] { return !m_pWindow->isFullScreen(); }));
}

}
}
