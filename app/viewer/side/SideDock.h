// When the side panel is there, and where: beside the pages, or over them in a window
// that is too narrow for both or fills the screen, where it comes when it is called and
// goes with a click on the pages or Escape.
//
// Its width, its tab and whether it stands beside the pages are kept in the settings.
// The room of a panel that is kept is there from the beginning; what is in it comes when
// the window's bar is filled (`Complete`).
// Lifetime: a child of the window, goes before the view. Threads: UI thread only.
#pragma once

#include <QObject>
#include <QTimer>

#include "app/viewer/WindowParts.h"
#include "app/viewer/side/SidePanel.h"
#include "widget/VelkoPdfView.h"

namespace velko::viewer {

class SideDock : public QObject {
    Q_OBJECT

public:
    SideDock(vkit::VelkoPdfView& view, WindowParts& parts, QWidget* pWindow);

    // From now on the panel may be filled; tabs are added before.
    void Complete();
    void AddTab(SidePanel::Tab tab) { m_pPanel->AddTab(std::move(tab)); }
    SidePanel& Panel() const { return *m_pPanel; }

    // Whether there are pages, or a document is on its way: else there is no panel.
    void SetDocument(bool bThere);

    bool IsShown() const;
    void Toggle();
    void Show(SideTab eTab); // and gives it the keys
    void SwapKeys();         // between the panel and the pages
    bool Leave();            // closes what lies over the pages; false when nothing does

signals:
    void Changed(); // it is shown or is not

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    bool IsOver() const; // where it is shown, it lies over the pages
    WindowParts::Side Room(QSize window) const;
    void Call(bool bShown);
    void Close();
    void Update();
    void TakeWidth(int nWidth);

    vkit::VelkoPdfView& m_view;
    WindowParts& m_parts;
    QWidget* const m_pWindow;
    SidePanel* const m_pPanel; // the window's child
    QTimer m_keepWidth;
    int m_nWidth;
    bool m_bBeside;         // wanted beside the pages
    bool m_bCalled = false; // wanted over the pages
    bool m_bDocument = false;
    bool m_bComplete = false;
};

}
