// The colours of the pages, as a menu: a few that are pleasant to read on, the
// reader's own, and what becomes of scans in them.
//
// Threads: UI thread only.
#pragma once

#include <QActionGroup>
#include <QMenu>

#include "widget/VelkoPdfView.h"

namespace velko::viewer {

class ColorMenu : public QMenu {
public:
    // `pNight` is the command of that name.
    ColorMenu(vkit::VelkoPdfView& view, QAction* pNight, QWidget* pParent);

private:
    void AddPreset(const QString& strName, const vkit::PageColors& colors);
    void AddOwn(const QString& strName, QColor vkit::PageColors::*pColor);
    void AddScans();
    void AskFor(const QString& strTitle, QColor vkit::PageColors::*pColor);
    void FollowView();

    vkit::VelkoPdfView& m_view;
    QActionGroup* m_pPresets;
    QActionGroup* m_pScans = nullptr; // the choices for scans
};

}
