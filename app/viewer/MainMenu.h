// The menu of all commands.
//
// Threads: UI thread only.
#pragma once

#include <QMenu>

#include "app/viewer/Commands.h"

namespace velko::viewer {

class RecentMenu;

class MainMenu : public QMenu {
public:
    MainMenu(vkit::VelkoPdfView& view, const Commands& commands, QWidget* pParent);

    RecentMenu& Recent() const { return *m_pRecent; }

private:
    void AddOwnWindows();
    void AddReloads();
    QMenu* AddGroup(const QString& strName, const Commands& commands,
                    std::initializer_list<Command> group);

    RecentMenu* m_pRecent; // a child
};

}
