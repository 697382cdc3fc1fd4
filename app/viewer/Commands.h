// The viewer's commands as actions: their names, their keys, what they do, and
// whether they can be done and are in force now, read from the view.
//
// Threads: UI thread only.
#pragma once

#include <QAction>
#include <QObject>
#include <array>

#include "widget/VelkoPdfView.h"

namespace velko::viewer {

enum class Command {
    Open,
    OpenInWindow,
    NewWindow,
    Save,
    SaveAs,
    Properties,
    Close,
    Quit,
    Undo,
    Redo,
    Highlight,
    Note,
    WriteMark,
    DeleteMark,
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
    SidePanel,
    SwapKeys,
    Menu,
    PageMenu,
    Keys,
    About,
    kCount
};

class Commands : public QObject {
    Q_OBJECT

public:
    // The actions are in force in `pWindow`, also where no menu shows them.
    Commands(vkit::VelkoPdfView& view, QWidget* pWindow);

    QAction* operator[](Command eCommand) const {
        return m_actions[static_cast<std::size_t>(eCommand)];
    }

    // Whether the window fills the screen, which only it knows.
    void SetFullScreen(bool bFull);
    void SetSidePanel(bool bShown); // likewise

signals:
    void Done(); // a command of the view's
    // A command that is the window's to carry out.
    void Wanted(velko::viewer::Command eCommand);

private:
    void FollowView();
    void NameSteps();

    vkit::VelkoPdfView& m_view;
    std::array<QAction*, static_cast<std::size_t>(Command::kCount)> m_actions{};
};

}
