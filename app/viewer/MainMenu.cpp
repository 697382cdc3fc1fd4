#include "app/viewer/MainMenu.h"

#include "app/viewer/ColorMenu.h"
#include "app/viewer/MenuStyle.h"
#include "app/viewer/RecentMenu.h"
#include "app/viewer/ReloadNotices.h"
#include "app/viewer/ViewerSettings.h"

namespace velko::viewer {

MainMenu::MainMenu(vkit::VelkoPdfView& view, const Commands& commands, QWidget* pParent)
    : QMenu(pParent), m_pRecent(new RecentMenu(this)) {
    addAction(commands[Command::Open]);
    addAction(commands[Command::OpenInWindow]);
    addMenu(m_pRecent);
    addAction(commands[Command::NewWindow]);
    AddOwnWindows();
    addActions({commands[Command::Save], commands[Command::SaveAs], commands[Command::Reload]});
    AddReloads();
    addActions({commands[Command::Properties], commands[Command::Close]});
    addSeparator();
    AddGroup("&Edit", commands,
             {Command::Undo, Command::Redo, Command::Copy, Command::SelectAll, Command::Highlight,
              Command::Note, Command::WriteMark, Command::DeleteMark});
    addAction(commands[Command::Find]);
    AddGroup("&Go", commands,
             {Command::FindNext, Command::FindPrevious, Command::PreviousPage, Command::NextPage,
              Command::FirstPage, Command::LastPage, Command::EnterPage, Command::Back,
              Command::Forward, Command::Bookmark});
    AddGroup("&Zoom", commands,
             {Command::ZoomIn, Command::ZoomOut, Command::ActualSize, Command::FitPage,
              Command::FitWidth, Command::FitHeight});
    AddGroup("&Layout", commands,
             {Command::Continuous, Command::SinglePage, Command::Reading, Command::TextPictures,
              Command::RotateRight, Command::RotateLeft});
    addMenu(new ColorMenu(view, commands[Command::Night], this));
    addActions(
        {commands[Command::SidePanel], commands[Command::FullScreen], commands[Command::Present]});
    addSeparator();
    addActions({commands[Command::Keys], commands[Command::About]});
    addSeparator();
    addAction(commands[Command::Quit]);
    StyleMenu(*this);
}

void MainMenu::AddOwnWindows() {
    QAction* const pAction = addAction("A window for &each document");
    pAction->setCheckable(true);
    connect(pAction, &QAction::triggered, this,
            [](bool bOwn) { ViewerSettings::OpensOwnWindows(bOwn); });
    connect(this, &QMenu::aboutToShow, pAction,
            [pAction] { pAction->setChecked(ViewerSettings::OpensOwnWindows()); });
}

void MainMenu::AddReloads() {
    QAction* const pAction = addAction("Reload &by itself when the file changes");
    pAction->setCheckable(true);
    connect(pAction, &QAction::triggered, this, &ReloadNotices::SetAutomatic);
    connect(this, &QMenu::aboutToShow, pAction,
            [pAction] { pAction->setChecked(ViewerSettings::ReloadsChanged()); });
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
