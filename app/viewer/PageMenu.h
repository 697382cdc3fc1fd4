// The menu at a place of the pages: what can be done with the link there, and the
// commands for what is seen.
//
// Threads: UI thread only.
#pragma once

#include <QMenu>
#include <QUrl>

#include "app/viewer/Commands.h"

namespace velko::viewer {

class PageMenu : public QMenu {
    Q_OBJECT

public:
    // `strTarget` is what the link there leads to; empty without one.
    // What the view has chosen, a note say, has its own commands first, then what is
    // selected of the text.
    PageMenu(vkit::VelkoPdfView& view, const Commands& commands, const QString& strTarget,
             QWidget* pParent);

signals:
    void BrowseWanted(const QUrl& address);

private:
    void AddLink(const QString& strTarget);
    // Whether anything is selected.
    bool AddSelected(const vkit::VelkoPdfView& view, const Commands& commands);
    void AddChosen(vkit::VelkoPdfView& view, const Commands& commands);
    void AddColors(vkit::VelkoPdfView& view);
};

}
