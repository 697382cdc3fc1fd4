#include "app/viewer/MainMenu.h"

#include "app/viewer/ColorMenu.h"
#include "app/viewer/RecentMenu.h"

namespace velko::viewer {

MainMenu::MainMenu(vkit::VelkoPdfView& view, const Commands& commands, QWidget* pParent)
    : QMenu(pParent), m_pRecent(new RecentMenu(this)) {
    addAction(commands[Command::Open]);
    addMenu(m_pRecent);
    addAction(commands[Command::Close]);
    addSeparator();
    AddGroup("&Go", commands,
             {Command::PreviousPage, Command::NextPage, Command::FirstPage, Command::LastPage,
              Command::EnterPage, Command::Back, Command::Forward});
    AddGroup("&Zoom", commands,
             {Command::ZoomIn, Command::ZoomOut, Command::ActualSize, Command::FitPage,
              Command::FitWidth, Command::FitHeight});
    AddGroup("&Layout", commands,
             {Command::Continuous, Command::SinglePage, Command::RotateRight, Command::RotateLeft});
    addMenu(new ColorMenu(view, commands[Command::Night], this));
    addAction(commands[Command::FullScreen]);
    addSeparator();
    addAction(commands[Command::Quit]);
}

QMenu* MainMenu::AddGroup(const QString& strName, const Commands& commands,
                          std::initializer_list<Command> group) {
    QMenu* const pMenu = addMenu(strName);
    for (const Command eCommand : group) {
        pMenu->addAction(commands[eCommand]);
    }
    return pMenu;
}

}
