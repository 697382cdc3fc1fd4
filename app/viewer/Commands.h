// The viewer's commands as actions: their names, their keys, what they do, and
// whether they can be done and are in force now, read from the view.
//
// Threads: UI thread only.
#pragma once

#include <QAction>
#include <QKeySequence>
#include <QList>
#include <QObject>
#include <array>
#include <optional>

#include "widget/VelkoPdfView.h"

namespace velko::viewer {

enum class Command {
    Open,
    OpenInWindow,
    NewWindow,
    Save,
    SaveAs,
    Properties,
    Reload,
    Close,
    Quit,
    Undo,
    Redo,
    Copy,
    SelectAll,
    Highlight,
    Note,
    WriteMark,
    DeleteMark,
    Find,
    FindNext,
    FindPrevious,
    PreviousPage,
    NextPage,
    FirstPage,
    LastPage,
    EnterPage,
    Back,
    Forward,
    ZoomIn,
    ZoomOut,
    ActualSize,
    FitPage,
    FitWidth,
    FitHeight,
    RotateRight,
    RotateLeft,
    Continuous,
    SinglePage,
    Reading,
    TextPictures,
    Night,
    FullScreen,
    Present,
    Bookmark,
    SidePanel,
    SwapKeys,
    Menu,
    PageMenu,
    Keys,
    About,
    kCount
};
Q_NAMESPACE // for the names of the commands
Q_ENUM_NS(Command)

class Commands : public QObject {
    Q_OBJECT

public:
    using Keys = QList<QKeySequence>;

    // The actions are in force in `pWindow`, also where no menu shows them.
    Commands(vkit::VelkoPdfView& view, QWidget* pWindow);

    QAction* operator[](Command eCommand) const {
        return m_actions[static_cast<std::size_t>(eCommand)];
    }

    // Whether the window fills the screen, which only it knows.
    void SetFullScreen(bool bFull);
    void SetSidePanel(bool bShown); // likewise

    // --- keys: the reader's own, else those that the command comes with ---
    static QString NameOf(Command eCommand); // as a reader calls it
    static Keys FirstKeys(Command eCommand);
    Keys KeysOf(Command eCommand) const { return (*this)[eCommand]->shortcuts(); }
    std::optional<Command> HolderOf(const QKeySequence& key) const;
    // Takes the keys away from whatever command has them.
    void SetKeys(Command eCommand, const Keys& keys);
    void ResetKeys(); // of all commands
    void ReadKeys();  // another window has changed them

signals:
    void Done(); // a command of the view's is carried out
    void KeysChanged();
    // A command that is the window's to carry out.
    void Wanted(velko::viewer::Command eCommand);

private:
    void FollowView();
    void NameSteps();
    void KeepKeys(Command eCommand, const Keys& keys);

    vkit::VelkoPdfView& m_view;
    std::array<QAction*, static_cast<std::size_t>(Command::kCount)> m_actions{};
};

}
